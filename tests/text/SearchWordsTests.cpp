#include "text/SearchWords.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

TEST(SearchWords, FindsEveryWordWhateverItsCaseAccentsAndOrder) {
    const std::tuple<const char*, const char*, bool> cases[] = {
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
    for (const auto& [query, text, isFound] : cases) {
        EXPECT_EQ(SearchWords(query).areIn(text), isFound) << query << " in " << text;
    }
    EXPECT_TRUE(SearchWords(" \u00a0").empty());
    EXPECT_FALSE(SearchWords("?").empty());
}

} // namespace
} // namespace vellmark::tests
