#include "text/SearchWords.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

TEST(SearchWords, FindsEveryWordWhateverItsCaseAccentsAndOrder) {
    struct Case {
        const char* query;
        const char* text;
        bool isFound;
    };
    const Case cases[] = {
        {"token claude", "Claude Code kostet einen Token", true},
        {"TOKEN  codex", "Claude Code kostet einen Token", false},
        {"uber", "Über Vellmark", true},
        {"ÜBER", "U\u0308ber Vellmark", true},
        {"schliessen", "Fenster schließen", true},
        {"n'a pas", "… n’a pas répondu à temps.", true},
        {"30 %", "weniger als 30\u00a0% übrig", true},
        {"echec", "En cas d’échec", true},
        {"", "", true},
        {" \t\u00a0", "anything", true},
        {"a", "", false},
        {"\xff\xfe", "not UTF-8", false},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(SearchWords(each.query).areIn(each.text), each.isFound)
            << each.query << " in " << each.text;
    }
    EXPECT_TRUE(SearchWords(" \u00a0").empty());
    EXPECT_FALSE(SearchWords("?").empty());
}

} // namespace
} // namespace vellmark::tests
