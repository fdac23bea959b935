#include "ClaudeAccount.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>

namespace simulator {

namespace {

/// "Max 20x Account" as "max_20x".
std::string planTier(const Scenario& scenario) {
    std::string tier = claudePlan(scenario);
    tier.erase(std::min(tier.find(" Account"), tier.size()));
    std::transform(tier.begin(), tier.end(), tier.begin(), [](unsigned char letter) {
        return letter == ' ' ? '_' : static_cast<char>(std::tolower(letter));
    });
    return tier;
}

/// A CLI from before plans had tiers.
bool isOld(const Scenario& scenario) {
    return scenario.is({"query-missing", "query-unsupported", "query-refused", "query-older"});
}

} // namespace

std::string claudeVersion(const Scenario& scenario) {
    const std::string played = scenario.is({"query-unsupported"}) ? "2.1.124"
                               : scenario.is({"query-missing"})   ? "2.1.158"
                               : scenario.is({"query-refused"})   ? "2.1.169"
                               : scenario.is({"query-older"})     ? "2.1.235"
                                                                  : "2.1.330";
    return scenario.text("version", played);
}

std::string claudeEmail(const Scenario& scenario) {
    return scenario.text("email", "name@example.org");
}

std::string claudeOrganization(const Scenario& scenario) {
    return scenario.text("organization", claudeEmail(scenario) + "'s Organization");
}

std::string claudePlan(const Scenario& scenario) {
    return scenario.text("plan", "Max 20x Account");
}

std::string claudeSubscription(const Scenario& scenario) {
    if (scenario.is({"query-no-subscription", "query-api-key", "logged-out"})) {
        return "null";
    }
    const std::string tier = planTier(scenario);
    return '"' + tier.substr(0, tier.find('_')) + '"';
}

std::string claudeAuthStatus(const Scenario& scenario, const std::string& loggedIn) {
    const bool usesKey = scenario.is({"query-api-key"});
    const char* home = std::getenv("HOME");
    const std::string directory = std::string(home ? home : "") + "/.claude";
    std::string fields;
    const auto add = [&fields](const std::string& name, const std::string& value) {
        fields.append(fields.empty() ? "" : ",").append("\n  \"" + name + "\": " + value);
    };
    const auto inQuotes = [](const std::string& text) { return '"' + text + '"'; };
    add("loggedIn", loggedIn);
    add("authMethod", inQuotes(loggedIn == "false" ? "none" : usesKey ? "api_key" : "claude.ai"));
    add("apiProvider", inQuotes("firstParty"));
    add("analyticsDisabled", "false");
    add("projectsDirectory", inQuotes(directory + "/projects"));
    add("configDirectory", inQuotes(directory));
    add("loginExpiresAt", "null");
    if (usesKey) {
        add("apiKeySource", inQuotes("/login managed key"));
    } else if (loggedIn != "false") {
        const std::string subscription = claudeSubscription(scenario);
        add("email", inQuotes(claudeEmail(scenario)));
        add("orgName", inQuotes(claudeOrganization(scenario)));
        add("subscriptionType", subscription);
        if (!isOld(scenario)) {
            add("planTier", inQuotes(subscription == "null" ? "other" : planTier(scenario)));
        }
    }
    return '{' + fields + "\n}\n";
}

void sendToModel(const Scenario& scenario) {
    std::ofstream(scenario.directory() / "messages", std::ios::app) << "quota\n";
}

ClaudeFigures::ClaudeFigures(const Scenario& scenario)
    : spent(scenario.number("spent", 3.20)), spendLimit(scenario.number("spend-limit", 20)) {
    const Figures figures(scenario);
    session = figures.window("session", 54, 2 * hours + 12 * minutes, 5 * hours);
    week = figures.window("week", 71, 1 * days + 19 * hours, 7 * days);
    if (scenario.text("fable-used", "") != "none") {
        model = figures.window("fable", 84, 1 * days + 19 * hours, 7 * days);
    }
}

} // namespace simulator
