#include "platform/PreferencesFile.h"
#include "presentation/LegalDocument.h"
#include "presentation/LegalModel.h"
#include "probes/claude/ClaudeUsageProvider.h"
#include "store/ActivityLog.h"
#include "store/HistoryThinning.h"
#include "support/Matchers.h"
#include "support/TemporaryDirectory.h"

#include <string>

namespace vellmark::tests {
namespace {

constexpr LegalDocument documents[] = {LegalDocument::terms, LegalDocument::privacy};
constexpr const char* languages[] = {"de", "en", "es", "fr", "it"};

std::string wholeText(const LegalText& text) {
    std::string whole = text.title;
    for (const TextBlock& block : text.blocks) {
        whole += "\n" + block.text;
    }
    return whole;
}

TEST(LegalTexts, SayTheSameInEveryLanguage) {
    const auto shape = [](const LegalText& text) {
        std::string kinds;
        for (const TextBlock& block : text.blocks) {
            kinds += "hpi"[static_cast<int>(block.kind)];
        }
        return kinds;
    };
    for (const LegalDocument document : documents) {
        const LegalText english = legalText(document, Localization("en"));
        EXPECT_GT(english.blocks.size(), 20U);
        for (const std::string language : languages) {
            const LegalText text = legalText(document, Localization(language));
            EXPECT_EQ(shape(text), shape(english)) << text.title << ", " << language;
            EXPECT_EQ(text == english, language == "en") << text.title << ", " << language;
            for (const TextBlock& block : text.blocks) {
                EXPECT_EQ(std::string("#-*`").find(block.text.front()), std::string::npos)
                    << "markup is left: " << block.text;
            }
        }
        EXPECT_EQ(legalText(document, Localization("ja")), english);
    }
}

TEST(LegalTexts, PromiseWhatTheProgramDoes) {
    const auto number = [](auto value) { return std::to_string(static_cast<int>(value)); };
    for (const char* language : languages) {
        const auto privacy = wholeText(legalText(LegalDocument::privacy, Localization(language)));
        EXPECT_THAT(privacy, HasSubstr(" " + number(HistoryThinning::daysKeptWhole) + " "));
        EXPECT_THAT(privacy, HasSubstr(" " + number(HistoryThinning::daysKept) + " "));
        EXPECT_THAT(privacy, HasSubstr(" " + number(ActivityLog::daysKept) + " "));
        const auto terms = wholeText(legalText(LegalDocument::terms, Localization(language)));
        const double minutes = ClaudeUsageProvider::defaultCostlyInterval.count() / 60;
        EXPECT_THAT(terms, HasSubstr(" " + number(minutes) + " "));
        EXPECT_THAT(terms, HasSubstr("2.1.169"));
    }
}

TEST(LegalModel, AsksUntilThisVersionIsAcceptedAndAfterANewerOne) {
    const TemporaryDirectory directory;
    const auto preferences = makePreferencesFile(directory / "preferences.json");
    constexpr std::string_view key = "LegalNoticeAcceptedVersion";
    LegalModel legal(*preferences);
    EXPECT_TRUE(legal.needsNotice());
    legal.accept();
    EXPECT_FALSE(legal.needsNotice());
    EXPECT_FALSE(LegalModel(*makePreferencesFile(directory / "preferences.json")).needsNotice());
    preferences->setNumber(key, LegalModel::textsVersion + 1); // by a newer program
    EXPECT_FALSE(legal.needsNotice());
    preferences->setNumber(key, LegalModel::textsVersion - 1);
    EXPECT_TRUE(legal.needsNotice());
    preferences->setString(key, "yes");
    EXPECT_TRUE(legal.needsNotice());
}

} // namespace
} // namespace vellmark::tests
