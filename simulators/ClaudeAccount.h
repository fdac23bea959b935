#pragma once

#include "Figures.h"
#include "Scenario.h"

#include <optional>
#include <string>

namespace simulator {

// The account that the simulated Claude is logged in with: the same on its screens, in its login
// status and in its answers.

/// "2.1.330"; scenarios that play an older CLI have that one's.
std::string claudeVersion(const Scenario& scenario);
std::string claudeEmail(const Scenario& scenario);
std::string claudeOrganization(const Scenario& scenario);
/// As the status screen names it: "Max 20x Account".
std::string claudePlan(const Scenario& scenario);
/// Its first word in lower case, as JSON text: "\"max\""; "null" without a subscription.
std::string claudeSubscription(const Scenario& scenario);

/// What `auth status --json` prints; `loggedIn` is the field's JSON text.
std::string claudeAuthStatus(const Scenario& scenario, const std::string& loggedIn);

/// Sends a message to a model, at the account's expense: a line more in "messages" in the scenario
/// directory.
void sendToModel(const Scenario& scenario);

/// The account's figures as they stand now.
struct ClaudeFigures {
    explicit ClaudeFigures(const Scenario& scenario);

    Figure session;
    Figure week;
    /// The week of the model "Fable", where there is one.
    std::optional<Figure> model;
    /// Dollars.
    double spent;
    double spendLimit;
};

} // namespace simulator
