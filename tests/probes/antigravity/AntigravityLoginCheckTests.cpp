#include "probes/antigravity/AntigravityLoginCheck.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vellmark::tests {
namespace {

TEST(AntigravityLoginCheck, SaysNoOnlyWhereNoOtherWayIsAtHand) {
    const struct {
        std::string variable;
        /// Below the home directory, with its contents.
        std::string file;
        std::string contents;
        std::optional<bool> expected;
    } cases[] = {
        {"", "", "", false},
        {"GEMINI_API_KEY=key", "", "", std::nullopt},
        {"GOOGLE_API_KEY=key", "", "", std::nullopt},
        {"GEMINI_API_KEY=", "", "", false},
        {"ANTIGRAVITY_API_KEY=not passed on", "", "", false},
        {"", ".gemini/oauth_creds.json", "", std::nullopt},
        {"", ".gemini/antigravity-cli/antigravity-oauth-token", "", std::nullopt},
        {"", ".gemini/.env", "", std::nullopt},
        {"", ".gemini/settings.json", R"({"theme":"dark","model":{"name":"apiKey"}})", false},
        {"", ".gemini/settings.json", R"({"auth":[{"apiKey":"k"}]})", std::nullopt},
        {"", ".gemini/antigravity-cli/settings.json", R"({"env":{"GEMINI_API_KEY":"k"}})",
         std::nullopt},
        {"", ".gemini/settings.json", R"({"apiKey":)", false},
    };
    for (const auto& [variable, file, contents, expected] : cases) {
        const TemporaryDirectory directory;
        Machine machine = Machine::sandbox(directory.path());
        for (const char* name : {"GEMINI_API_KEY", "GOOGLE_API_KEY"}) {
            machine.environment.erase(name);
        }
        if (const auto equals = variable.find('='); equals != std::string::npos) {
            machine.environment[variable.substr(0, equals)] = variable.substr(equals + 1);
        }
        if (!file.empty()) {
            directory.write("home/" + file, contents);
        }
        EXPECT_EQ(antigravityIsLoggedIn(machine), expected) << variable << file << contents;
        directory.write("credentials/gemini/antigravity", "");
        EXPECT_EQ(antigravityIsLoggedIn(machine), true) << variable << file << contents;
    }
}

TEST(AntigravityLoginCheck, IsNotHeldUpByAPipeInTheSettingsPlace) {
    const TemporaryDirectory directory;
    const Machine machine = Machine::sandbox(directory.path());
    std::filesystem::create_directories(machine.home / ".gemini");
    ASSERT_EQ(::mkfifo((machine.home / ".gemini/settings.json").c_str(), 0600), 0);
    EXPECT_EQ(antigravityIsLoggedIn(machine), false);
}

} // namespace
} // namespace vellmark::tests
