#include "platform/SystemDirectories.h"
#include "platform/UserLocale.h"

#include <gtest/gtest.h>

namespace vellmark {
namespace {

TEST(SystemDirectories, AbsolutePathsInTheVariablesCount) {
    const auto expect = [](const Environment& environment, const char* support,
                           const char* configuration, const char* temporary) {
        const auto directories = SystemDirectories::of("/home/ada", environment);
        EXPECT_EQ(directories.applicationSupport, support);
        EXPECT_EQ(directories.configuration, configuration);
        EXPECT_EQ(directories.temporary, temporary);
    };
    expect({}, "/home/ada/.local/share", "/home/ada/.config", "/tmp");
    expect({{"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}}, "/home/ada/.local/share",
           "/home/ada/.config", "/tmp");
    expect({{"XDG_DATA_HOME", "/data"}, {"XDG_CONFIG_HOME", "/cfg"}, {"TMPDIR", "/t"}}, "/data",
           "/cfg", "/t");
}

TEST(UserLocale, FollowsTheVariablesInTheirOrder) {
    const std::pair<Environment, UserLocale> cases[] = {
        {{{"LANG", "de_CH.UTF-8"}}, {{"de"}, "de_CH"}},
        {{{"LANG", "en_US.UTF-8"}, {"LC_TIME", "de_DE@euro"}}, {{"en"}, "de_DE"}},
        {{{"LANG", "en_US"}, {"LC_MESSAGES", "de_AT"}, {"LC_ALL", ""}}, {{"de"}, "en_US"}},
        {{{"LANG", "en_US"}, {"LC_MESSAGES", "de_AT"}, {"LC_ALL", "fr_FR.UTF-8"}},
         {{"fr"}, "fr_FR"}},
        {{{"LANG", "de"}}, {{"de"}, "de"}},
        {{{"LANG", "pt_PT.UTF-8"}, {"LANGUAGE", "pt:fr_CH.UTF-8::it"}},
         {{"pt", "fr", "it", "pt"}, "pt_PT"}},
        {{{"LC_ALL", "C.UTF-8"}, {"LANG", "de_DE"}, {"LANGUAGE", "de:fr"}}, {{}, ""}},
        {{{"LANG", "POSIX"}}, {{}, ""}},
        {{}, {{}, ""}},
    };
    for (const auto& [environment, expected] : cases) {
        const auto locale = UserLocale::of(environment);
        EXPECT_EQ(locale.languageCodes, expected.languageCodes);
        EXPECT_EQ(locale.formatIdentifier, expected.formatIdentifier);
    }
}

} // namespace
} // namespace vellmark
