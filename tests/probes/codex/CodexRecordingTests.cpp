// What `codex app-server` 0.169.0 answered in states whose figures were known.

#include "probes/AgentScenario.h"
#include "probes/codex/CodexReading.h"
#include "support/ProjectDirectories.h"

#include <string>
#include <variant>
#include <vector>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

struct Window {
    std::string id;
    double used;
    std::optional<double> minutes;
    /// Seconds since 1970.
    double resetsAt;
    std::optional<std::string> label = std::nullopt;
};

struct Reading {
    const char* plan;
    std::vector<Window> windows;
    bool hasCredits = true;
    UsageAllowance allowance = {.ordinaryUsageAllowed = true};
};

struct Recording {
    const char* file;
    std::variant<Reading, UsageProviderError> expected;
};

UsageProviderError refused(const std::string& status) {
    return UsageProviderError::codexReadFailed(
        "failed to fetch codex rate limits: GET http://127.0.0.1:8080/backend-api/wham/usage "
        "failed: " +
        status + "; content-type=application/json; body={\"detail\": \"refused by the figures\"}");
}

const char* const spark = "GPT-5.3-Codex-Spark";

const std::vector<Recording> recordings = {
    {"plus",
     Reading{"Plus", {{"session", 42, 300, 1795324033}, {"weekly", 13, 10080, 1795616833}}}},
    {"weekly-only", Reading{"Prolite", {{"session", 76, 10080, 1795716833}}}},
    {"further-limit",
     Reading{"Pro",
             {{"session", 42, 300, 1795324034},
              {"weekly", 13, 10080, 1795616834},
              {"limit:gpt-5.3-codex-spark|primary", 5, 300, 1795319833, spark},
              {"limit:gpt-5.3-codex-spark|secondary", 0, 10080, 1795816833, spark}}}},
    {"used-up", Reading{"Plus",
                        {{"session", 100, 300, 1795317433}, {"weekly", 100, 10080, 1795403233}},
                        false}},
    {"zero",
     Reading{"Plus", {{"session", 0, 300, 1795334833}, {"weekly", 0, 10080, 1795921633}}, false}},
    {"unknown-plan",
     Reading{"Unknown", {{"session", 42, 300, 1795324034}, {"weekly", 13, 10080, 1795616834}}}},
    {"everything", Reading{"Plus",
                           {{"session", 42, 300, 1795330571},
                            {"weekly", 13, 10080, 1795623371},
                            {"individual", 40, {}, 1795332371},
                            {"limit:gpt-5.3-codex-spark|primary", 5, 300, 1795326371, spark},
                            {"limit:gpt-5.3-codex-spark|secondary", 0, 10080, 1795823371, spark}},
                           true,
                           {.ordinaryUsageAllowed = false,
                            .reachedType = "workspace_member_usage_limit_reached",
                            .bankedResets = 3,
                            .bankedResetExpiresAt = instantFromUnixSeconds(1795723371)}}},
    {"no-windows", UsageProviderError(Kind::codexNoWindows)},
    {"401", refused("401 Unauthorized")},
    {"429", refused("429 Too Many Requests")},
    {"500", refused("500 Internal Server Error")},
    {"api-key", UsageProviderError(Kind::codexAPIKey)},
    {"logged-out", UsageProviderError(Kind::codexNotLoggedIn)},
};

const Instant now = instantFromUnixSeconds(1795316900);

AgentUsageSnapshot snapshotOf(const Reading& reading) {
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::codex();
    snapshot.accountLabel = "user@example.com";
    snapshot.plan = reading.plan;
    for (const Window& window : reading.windows) {
        snapshot.windows.push_back({window.id, window.used, window.minutes,
                                    instantFromUnixSeconds(window.resetsAt), window.label});
    }
    if (reading.hasCredits) {
        snapshot.credit = CreditInfo::available();
    }
    snapshot.allowance = reading.allowance;
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = now;
    return snapshot;
}

TEST(CodexRecordings, AreReadAsWhatTheyWere) {
    for (const Recording& recording : recordings) {
        SCOPED_TRACE(recording.file);
        const std::string output = contentOf(
            sourceFile(std::string("tests/probes/codex/data/") + recording.file + ".jsonl"));
        ASSERT_FALSE(output.empty());
        const auto* figures = std::get_if<Reading>(&recording.expected);
        const auto reason = errorOf([&] {
            const AgentUsageSnapshot snapshot = codexSnapshot(output, now, "/home/user");
            ASSERT_TRUE(figures);
            EXPECT_EQ(snapshot, snapshotOf(*figures));
        });
        const auto* refusal = std::get_if<UsageProviderError>(&recording.expected);
        EXPECT_EQ(reason, refusal ? std::optional(*refusal) : std::nullopt);
    }
}

} // namespace
} // namespace vellmark::tests
