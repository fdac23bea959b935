#include "support/TemporaryDirectory.h"
#include "text/Catalog.h"
#include "text/Localization.h"
#include "text/Pattern.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <optional>

namespace vellmark {

using testing::HasSubstr;

namespace {

/// What the catalog compiler says about a catalog with these strings; empty when it takes them.
class CatalogCompiler : public testing::Test {
protected:
    std::string complaint(const std::string& catalog) {
        const auto file = directory_.write("Test.xcstrings", catalog);
        const std::string command = std::string(VELLMARK_CATALOG_COMPILER) + " " + file.string() +
                                    " " + (directory_ / "Table.cpp").string() + " 2>&1";
        FILE* output = popen(command.c_str(), "r");
        std::array<char, 4096> buffer{};
        const std::size_t length = std::fread(buffer.data(), 1, buffer.size(), output);
        const int status = pclose(output);
        const std::string text(buffer.data(), length);
        EXPECT_EQ(status == 0, text.empty()) << text;
        return text;
    }

    /// About a catalog with one key; `odd` is the text of one language, `text` that of the others,
    /// and none where it is absent.
    std::string complaintAbout(const std::string& text, std::optional<std::string> odd,
                               std::string_view oddLanguage = "en") {
        std::string localizations;
        for (const std::string_view code : Localization::languages()) {
            const std::optional<std::string> value = code == oddLanguage ? odd : text;
            if (value) {
                localizations.append(localizations.empty() ? "\"" : ",\"").append(code);
                localizations += R"(":{"stringUnit":{"value":")" + *value + R"("}})";
            }
        }
        return complaint(R"({"sourceLanguage":"de","version":"1.0","strings":{"a.key":{)"
                         R"("localizations":{)" +
                         localizations + "}}}}");
    }

    std::string table() const { return tests::contentOf(directory_ / "Table.cpp"); }

private:
    tests::TemporaryDirectory directory_;
};

} // namespace

TEST(Localization, FallsBackToGermanThenToTheKey) {
    EXPECT_EQ(Localization("en").text("health.critical"), "Critical");
    EXPECT_EQ(Localization("de").text("health.critical"), "Kritisch");
    EXPECT_EQ(Localization("it").text("health.critical"), "Critico");
    EXPECT_EQ(Localization("ar").text("health.critical"), "Kritisch");
    EXPECT_EQ(Localization("en").text("no.such.key"), "no.such.key");
    EXPECT_EQ(Localization("en").text(""), "");
}

TEST(Localization, FrenchCountsNoneInTheSingular) {
    for (const std::string_view code : Localization::languages()) {
        const Localization words{std::string(code)};
        EXPECT_TRUE(words.takesSingular(1)) << code;
        EXPECT_EQ(words.takesSingular(0), code == "fr");
        EXPECT_FALSE(words.takesSingular(2)) << code;
        EXPECT_FALSE(words.takesSingular(21)) << code;
    }
}

TEST(Localization, TextsAreSetAsTheirLanguageDoes) {
    const Pattern frenchBlank(" [:;!?»]|«[^\u00A0]|[^\u00A0]»|\u202F");
    const Pattern typed(R"(\.\.\.|')");
    const Pattern quoted("[«»„]");
    for (const CatalogEntry& entry : catalogEntries()) {
        for (std::size_t index = 0; index < catalogLanguages.size(); ++index) {
            const std::string_view code = catalogLanguages[index];
            const std::string text(entry.texts[index].view());
            const std::string where = std::string(entry.key.view()) + ", " + std::string(code);
            EXPECT_FALSE(code == "fr" && frenchBlank.search(text)) << where << ": " << text;
            EXPECT_FALSE(code != "en" && typed.search(text)) << where << ": " << text;
            EXPECT_FALSE((code == "it" || code == "es") && quoted.search(text)) << where;
            EXPECT_EQ(text.find("  "), std::string::npos) << where;
        }
    }
}

TEST(Localization, PlaceholdersTakeTheirArguments) {
    // A key that no catalog has is its own text.
    const Localization words("en");
    EXPECT_EQ(words.format("%@: %lld %%", {"a", 7}), "a: 7 %");
    EXPECT_EQ(words.format("%2$@ %1$@ %2$@", {"a", "b"}), "b a b");
    EXPECT_EQ(words.format("%@ %@ %3$lld", {"a"}), "a %@ %3$lld");
    EXPECT_EQ(words.format("100 % %d %5 %", {"a"}), "100 % %d %5 %");
    EXPECT_EQ(words.format("%@", {"%@ %lld"}), "%@ %lld");
    EXPECT_EQ(words.format("%lld %lld", {1284, -5}), "1,284 -5");
    EXPECT_EQ(Localization("de").format("%lld", {1284}), "1.284");
}

TEST_F(CatalogCompiler, TakesGoodCatalogs) {
    EXPECT_EQ(complaintAbout("%1$@ von %2$lld, 5 %", "%2$lld of %1$@ %%"), "");
    EXPECT_EQ(complaintAbout(R"(ä\n\"\\??)", "x"), "");
    // Each text once, with its place for each language.
    EXPECT_THAT(table(), HasSubstr(R"("\303\244\012\042\134\077\077")"));
    EXPECT_THAT(table(), HasSubstr("{{0, 5}, {{{5, 7}, {12, 1}, {5, 7}"));
    EXPECT_EQ(complaint(R"({"sourceLanguage":"de","strings":{},"version":"1.0"})"), "");
}

TEST_F(CatalogCompiler, RefusesTextsThatDoNotFit) {
    EXPECT_THAT(complaintAbout("%@", "%lld"), HasSubstr("a.key"));
    EXPECT_THAT(complaintAbout("%@ %@", "%@"), HasSubstr("differ"));
    EXPECT_THAT(complaintAbout("%1$@ %2$@", "%2$@ %1$lld"), HasSubstr("differ"));
    EXPECT_THAT(complaintAbout("%d", "%d"), HasSubstr("unknown placeholder"));
    EXPECT_THAT(complaintAbout("x", ""), HasSubstr("empty"));
    for (const std::string_view code : Localization::languages()) {
        const std::string where = R"(key "a.key", language ")" + std::string(code) + "\": ";
        EXPECT_THAT(complaintAbout("x", std::nullopt, code), HasSubstr(where + "there is no text"));
        // All are compared with the first.
        EXPECT_THAT(complaintAbout("%@ %@", "%@", code),
                    HasSubstr(code == "de" ? "differ" : where + "the placeholders differ"));
        EXPECT_THAT(complaintAbout("x", "x %@", code), HasSubstr("differ"));
    }
}

TEST_F(CatalogCompiler, RefusesWhatIsNoCompleteCatalog) {
    EXPECT_THAT(complaint(R"({"sourceLanguage":"de","strings":{"k":{}}})"), HasSubstr("\"de\""));
    for (const char* other :
         {"", "[]", "{", "key = value;", R"({"strings":[],"sourceLanguage":"de"})",
          R"({"strings":{}})", R"({"sourceLanguage":"en","strings":{}})"}) {
        EXPECT_THAT(complaint(other), HasSubstr("not a String Catalog")) << other;
    }
}

} // namespace vellmark
