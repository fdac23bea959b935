#pragma once

#include "probes/AgentUsageProvider.h"
#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vellmark::tests {

/// What a fetch came to: a snapshot, or the error that it threw.
using FetchOutcome = std::variant<AgentUsageSnapshot, UsageProviderError>;

inline FetchOutcome outcomeOf(AgentUsageProvider& provider) {
    try {
        return provider.fetch();
    } catch (const UsageProviderError& error) {
        return error;
    }
}

/// What `read` throws; nothing when it comes to an end.
template<typename Read>
std::optional<UsageProviderError> errorOf(Read&& read) {
    try {
        read();
    } catch (const UsageProviderError& error) {
        return error;
    }
    return std::nullopt;
}

/// Absent: a snapshot.
inline std::optional<UsageProviderError::Kind> failureOf(const FetchOutcome& outcome) {
    const auto* error = std::get_if<UsageProviderError>(&outcome);
    return error ? std::optional(error->kind()) : std::nullopt;
}

/// One row of an agent's failure table, or of what it must read: the scenario that leads there and
/// the outcome.
struct AgentScenario {
    std::string scenario;
    /// Absent: a snapshot with the windows of `windowIDs`.
    std::optional<UsageProviderError> error;
    std::vector<std::string> windowIDs;
    /// For tests in which time is to run out.
    Seconds limit{60};
};

inline AgentScenario reads(std::string scenario, std::vector<std::string> windowIDs) {
    return {std::move(scenario), {}, std::move(windowIDs)};
}
inline AgentScenario fails(std::string scenario, UsageProviderError error,
                           Seconds limit = Seconds(60)) {
    return {std::move(scenario), std::move(error), {}, limit};
}
inline AgentScenario fails(std::string scenario, UsageProviderError::Kind kind,
                           Seconds limit = Seconds(60)) {
    return fails(std::move(scenario), UsageProviderError(kind), limit);
}

/// Simulated agents, of which nothing may be left.
class ScenarioTest : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_FALSE(sandbox.leftTemporaryFiles());
        EXPECT_EQ(sandbox.survivors(), std::vector<std::string>());
    }

    AgentSandbox sandbox;
};

/// The scenario's name in letters, digits and underscores, as the test runner wants it.
inline std::string scenarioTestName(const testing::TestParamInfo<AgentScenario>& test) {
    const std::string& scenario = test.param.scenario;
    std::string name = scenario.substr(0, scenario.find('\n'));
    std::replace(name.begin(), name.end(), '-', '_');
    return scenario.find('=') == std::string::npos ? name : name + "_adjusted";
}

inline void PrintTo(const AgentScenario& scenario, std::ostream* out) {
    *out << testing::PrintToString(scenario.scenario);
}

inline std::vector<std::string> windowIDsOf(const AgentUsageSnapshot& snapshot) {
    std::vector<std::string> ids;
    for (const UsageWindow& window : snapshot.windows) {
        ids.push_back(window.id);
    }
    return ids;
}

inline void expectOutcome(const FetchOutcome& outcome, const AgentScenario& expected) {
    if (const auto* error = std::get_if<UsageProviderError>(&outcome)) {
        ASSERT_TRUE(expected.error)
            << error->what() << ": " << testing::PrintToString(error->texts());
        EXPECT_EQ(error->kind(), expected.error->kind()) << error->what();
        EXPECT_EQ(error->texts(), expected.error->texts());
        EXPECT_EQ(error->code(), expected.error->code());
        return;
    }
    ASSERT_FALSE(expected.error) << "a snapshot instead of " << expected.error->what();
    EXPECT_EQ(windowIDsOf(std::get<AgentUsageSnapshot>(outcome)), expected.windowIDs);
}

/// `error` is one, or its kind.
template<typename Error>
void expectFailure(const FetchOutcome& outcome, Error error) {
    expectOutcome(outcome, fails("", std::move(error)));
}

} // namespace vellmark::tests
