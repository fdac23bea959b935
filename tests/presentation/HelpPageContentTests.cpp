#include "AgentNames.h"
#include "model/UsageProviderErrorCases.h"
#include "presentation/HelpPageContent.h"
#include "presentation/MainMenuContent.h"
#include "presentation/ShortcutText.h"
#include "probes/ProviderRegistry.h"
#include "support/Matchers.h"

#include <cctype>
#include <set>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

constexpr const char* languages[] = {"de", "en", "es", "fr", "it"};

std::vector<HelpEntry> entries(const std::vector<HelpGroup>& groups) {
    std::vector<HelpEntry> all;
    for (const HelpGroup& group : groups) {
        all.insert(all.end(), group.entries.begin(), group.entries.end());
    }
    return all;
}

std::vector<HelpEntry> found(const std::string& query, const Localization& words) {
    return entries(helpPageContent(HelpSection::reading, query, words).groups);
}

TEST(HelpPageContent, HasMessageAndCureOfEveryFailureInEveryLanguage) {
    for (const char* language : languages) {
        const Localization words(language);
        const std::vector<HelpEntry> failures = entries(helpFailures(words));
        EXPECT_THAT(failures, Each(Field(&HelpEntry::title, Not(ContainsRegex("%(@|lld)")))));
        for (const ErrorCase& failure : errorCases) {
            const std::string key = std::string("help.cure.") + failure.name;
            EXPECT_NE(words.text(key), key) << "no cure for " << failure.name;
            EXPECT_TRUE(failure.messageKey.empty() ||
                        words.text(failure.messageKey) != failure.messageKey)
                << failure.name;
            EXPECT_THAT(failures, Contains(Field(&HelpEntry::text, words.text(key))))
                << failure.name << ", " << language;
        }
    }
}

TEST(HelpPageContent, FindsTheCureByTheMessageThatIsShown) {
    const UsageProviderError shown[] = {
        UsageProviderError::executableMissing("Antigravity CLI"),
        UsageProviderError::claudeReadFailed(126, "boom"),
        UsageProviderError::timeout("Codex"),
        UsageProviderError(ErrorKind::claudeNotLoggedIn),
        UsageProviderError::antigravityReadingCosts("1.1.3"),
    };
    for (const char* language : languages) {
        const Localization words(language);
        for (const UsageProviderError& error : shown) {
            std::string message = error.message(words);
            if (error.kind() == ErrorKind::timeout) {
                message.erase(0, message.find(' ')); // any agent may be named
            }
            message = message.substr(0, message.find_first_of("(:"));
            const std::string cure = words.text(std::string("help.cure.") + error.what());
            EXPECT_THAT(found(message, words), Contains(Field(&HelpEntry::text, cure))) << message;
        }
    }
}

TEST(HelpPageContent, ShowsTheCommandThatHelps) {
    for (const ProviderRegistration& agent : providerRegistry()) {
        const CLISetupInfo& info = agent.descriptor.setup->info;
        const auto missing = found(
            english.format("error.executableMissing", {english.text(agent.descriptor.sourceKey)}),
            english);
        ASSERT_EQ(missing.size(), 1U) << agent.descriptor.id.rawValue;
        EXPECT_THAT(missing.front().commands, ElementsAre(info.installCommand));
        const std::string name = agent.descriptor.id.rawValue;
        const auto loggedOut = found(english.text("error." + name + ".notLoggedIn"), english);
        ASSERT_FALSE(loggedOut.empty());
        EXPECT_THAT(loggedOut.front().commands, ElementsAre(info.loginCommand));
    }
}

TEST(HelpPageContent, LooksInEverySectionAndSaysWhenThereIsNothing) {
    const HelpPageContent nothing = helpPageContent(HelpSection::marks, "zzz", english);
    EXPECT_TRUE(nothing.groups.empty());
    EXPECT_THAT(nothing.nothingFound, HasSubstr("zzz"));
    // Every section can be found by what it holds.
    std::set<std::string> titles;
    for (const char* word : {"pace", "triangle", "broke off", "Quit Vellmark", "support page"}) {
        for (const HelpGroup& group : helpPageContent(HelpSection::reading, word, english).groups) {
            titles.insert(group.title.substr(0, group.title.find(" · ")));
        }
    }
    EXPECT_EQ(titles.size(), nothing.sections.size());
    const HelpPageContent whole = helpPageContent(HelpSection::failures, " ", english);
    EXPECT_EQ(whole.groups, helpFailures(english));
    EXPECT_TRUE(whole.nothingFound.empty());
}

TEST(HelpPageContent, ListsEveryKeyOfTheMenusOnce) {
    std::multiset<std::string> listed;
    const HelpPageContent content = helpPageContent(HelpSection::keyboard, {}, english);
    for (const HelpEntry& entry : content.groups.front().entries) {
        listed.insert(entry.title + " " + entry.keys.front());
    }
    for (const MenuContent& menu : mainMenuContent(english)) {
        for (const MenuItemContent& item : menu.items) {
            if (item.key != 0) {
                const std::string key(1, static_cast<char>(std::toupper(item.key)));
                const std::string keys = shortcutText({Shortcut::Held::command, key}, english);
                EXPECT_EQ(listed.count(item.title + " " + keys), 1U) << item.title;
            }
        }
    }
}

TEST(ShortcutText, NamesKeysAsTheSystemAndTheLanguageDo) {
    const Shortcut refresh{Shortcut::Held::command, "R"};
    const Shortcut back{Shortcut::Held::alt, "←"};
    EXPECT_EQ(shortcutText(refresh, Localization("de"), CommandKey::control), "Strg+R");
    EXPECT_EQ(shortcutText(refresh, english, CommandKey::command), "⌘R");
    EXPECT_EQ(shortcutText(back, english, CommandKey::control), "Alt+←");
    EXPECT_EQ(shortcutText(back, english, CommandKey::command), "⌘←");
    EXPECT_EQ(shortcutText({Shortcut::Held::nothing, "F10"}, english, CommandKey::command), "F10");
}

} // namespace
} // namespace vellmark::tests
