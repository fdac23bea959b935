#include "probes/antigravity/AntigravityLoginCheck.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace vellmark::tests {
namespace {

TEST(AntigravityLoginCheck, SaysNoOnlyWhereNoOtherWayIsAtHand) {
    struct Case {
        std::optional<bool> expected;
        Environment variables = {};
        /// Below the home directory, with its contents.
        std::string file = {};
        std::string contents = {};
    };
    for (const auto& [expected, variables, file, contents] : {
             Case{false},
             Case{std::nullopt, {{"GEMINI_API_KEY", "key"}}},
             Case{std::nullopt, {{"GOOGLE_API_KEY", "key"}}},
             Case{false, {{"GEMINI_API_KEY", ""}, {"ANTIGRAVITY_API_KEY", "not passed on"}}},
             Case{std::nullopt, {}, ".gemini/oauth_creds.json"},
             Case{std::nullopt, {}, ".gemini/antigravity-cli/antigravity-oauth-token"},
             Case{std::nullopt, {}, ".gemini/.env"},
             Case{false, {}, ".gemini/settings.json", R"({"model":{"name":"apiKey"}})"},
             Case{std::nullopt, {}, ".gemini/settings.json", R"({"auth":[{"apiKey":"k"}]})"},
             Case{std::nullopt,
                  {},
                  ".gemini/antigravity-cli/settings.json",
                  R"({"env":{"GEMINI_API_KEY":"k"}})"},
             Case{false, {}, ".gemini/settings.json", R"({"apiKey":)"},
         }) {
        SCOPED_TRACE(testing::PrintToString(variables) + file + contents);
        const TemporaryDirectory directory;
        Machine machine = Machine::sandbox(directory.path());
        machine.environment = variables;
        if (!file.empty()) {
            directory.write("home/" + file, contents);
        }
        EXPECT_EQ(antigravityIsLoggedIn(machine), expected);
        directory.write("credentials/gemini/antigravity", "");
        EXPECT_EQ(antigravityIsLoggedIn(machine), true);
    }
}

TEST(AntigravityLoginCheck, IsNotHeldUpByAPipeInTheSettingsPlace) {
    const TemporaryDirectory directory;
    const Machine machine = Machine::sandbox(directory.path());
    fs::create_directories(machine.home / ".gemini");
    ASSERT_EQ(::mkfifo((machine.home / ".gemini/settings.json").c_str(), 0600), 0);
    EXPECT_EQ(antigravityIsLoggedIn(machine), false);
}

} // namespace
} // namespace vellmark::tests
