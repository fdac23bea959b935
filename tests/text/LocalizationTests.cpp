#include "support/TemporaryDirectory.h"
#include "text/Localization.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

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

    std::string complaintAbout(const std::string& german, const std::string& english) {
        return complaint(R"({"sourceLanguage":"de","version":"1.0","strings":{"a.key":{)"
                         R"("localizations":{"de":{"stringUnit":{"value":")" +
                         german + R"("}},"en":{"stringUnit":{"value":")" + english + R"("}}}}}})");
    }

    std::string table() const { return tests::contentOf(directory_ / "Table.cpp"); }

private:
    tests::TemporaryDirectory directory_;
};

} // namespace

TEST(Localization, FallsBackToGermanThenToTheKey) {
    EXPECT_EQ(Localization("en").text("health.critical"), "Critical");
    EXPECT_EQ(Localization("de").text("health.critical"), "Kritisch");
    EXPECT_EQ(Localization("fr").text("health.critical"), "Kritisch");
    EXPECT_EQ(Localization("en").text("no.such.key"), "no.such.key");
    EXPECT_EQ(Localization("en").text(""), "");
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
    EXPECT_THAT(table(), HasSubstr(R"({"a.key", "\303\244\012\042\134\077\077", "x"})"));
    EXPECT_EQ(complaint(R"({"sourceLanguage":"de","strings":{},"version":"1.0"})"), "");
}

TEST_F(CatalogCompiler, RefusesTextsThatDoNotFit) {
    EXPECT_THAT(complaintAbout("%@", "%lld"), HasSubstr("a.key"));
    EXPECT_THAT(complaintAbout("%@ %@", "%@"), HasSubstr("differ"));
    EXPECT_THAT(complaintAbout("%1$@ %2$@", "%2$@ %1$lld"), HasSubstr("differ"));
    EXPECT_THAT(complaintAbout("%d", "%d"), HasSubstr("unknown placeholder"));
    EXPECT_THAT(complaintAbout("", "x"), HasSubstr("empty"));
}

TEST_F(CatalogCompiler, RefusesWhatIsNoCompleteCatalog) {
    const std::string missing =
        R"({"sourceLanguage":"de","strings":{"k":{"localizations":{"de":{"stringUnit":)"
        R"({"value":"x"}}}}}})";
    EXPECT_THAT(complaint(missing), HasSubstr(R"(key "k", language "en": there is no text)"));
    EXPECT_THAT(complaint(R"({"sourceLanguage":"de","strings":{"k":{}}})"), HasSubstr("\"de\""));
    for (const char* other :
         {"", "[]", "{", "key = value;", R"({"strings":[],"sourceLanguage":"de"})",
          R"({"strings":{}})", R"({"sourceLanguage":"en","strings":{}})"}) {
        EXPECT_THAT(complaint(other), HasSubstr("not a String Catalog")) << other;
    }
}

} // namespace vellmark
