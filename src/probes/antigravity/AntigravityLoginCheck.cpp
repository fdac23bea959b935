#include "probes/antigravity/AntigravityLoginCheck.h"

#include "platform/RegularFile.h"
#include "process/ChildEnvironment.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace vellmark {

namespace {

/// Variables that hold a key of the service.
constexpr std::array keyVariables{"GEMINI_API_KEY", "GOOGLE_API_KEY", "ANTIGRAVITY_API_KEY"};

/// Files that are there when the user has logged in without the credential store.
constexpr std::array tokenFiles{
    "~/.gemini/antigravity-cli/antigravity-oauth-token", // the CLI's own token, without a store
    "~/.gemini/oauth_creds.json",                        // the token of a login by browser
    "~/.gemini/.env",                                    // variables such as those above
};

/// Settings that may hold a key: the CLI's own, and those of the whole family of tools.
constexpr std::array settingsFiles{"~/.gemini/antigravity-cli/settings.json",
                                   "~/.gemini/settings.json"};
constexpr std::array<std::string_view, 5> keyMembers{"apiKey", "api_key", "geminiApiKey",
                                                     "GEMINI_API_KEY", "GOOGLE_API_KEY"};
constexpr std::size_t largestSettings = 1u << 20;

bool holdsKeyMember(const JSON& value) {
    if (value.is_object()) {
        return std::ranges::any_of(value.items(), [](const auto& member) {
            return std::ranges::find(keyMembers, member.key()) != keyMembers.end() ||
                   holdsKeyMember(member.value());
        });
    }
    return value.is_array() && std::ranges::any_of(value, holdsKeyMember);
}

bool settingsHoldKey(const std::filesystem::path& file) {
    std::error_code ignored;
    const auto settings = readRegularFile(file, ignored, largestSettings);
    try {
        return settings && holdsKeyMember(parsedJSON(*settings));
    } catch (const JSONDecodingError&) {
        return false;
    }
}

bool anotherWayIsAtHand(const Machine& machine) {
    // A variable that is withheld from the CLI is no way to log in.
    const Environment environment = childEnvironment(machine);
    std::error_code ignored;
    return std::ranges::any_of(keyVariables,
                               [&](const char* name) {
                                   const auto found = environment.find(name);
                                   return found != environment.end() && !found->second.empty();
                               }) ||
           std::ranges::any_of(tokenFiles,
                               [&](const char* file) {
                                   return std::filesystem::exists(machine.resolved(file), ignored);
                               }) ||
           std::ranges::any_of(settingsFiles, [&](const char* file) {
               return settingsHoldKey(machine.resolved(file));
           });
}

} // namespace

std::optional<bool> antigravityIsLoggedIn(const Machine& machine) {
    const auto hasItem = machine.credentials->hasGenericPassword("gemini", "antigravity");
    return hasItem == false && anotherWayIsAtHand(machine) ? std::nullopt : hasItem;
}

} // namespace vellmark
