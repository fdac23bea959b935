// What Claude Code 2.1.330 really showed in the scripted session, recorded against a service with
// made-up figures. The expected figures are the service's, percentages and minutes rounded down as
// the CLI does.

#include "probes/AgentScenario.h"
#include "probes/claude/ClaudeSessionInterpretation.h"
#include "probes/claude/ClaudeUsageParser.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"
#include "text/Dates.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

Instant minute(const std::string& text) {
    return parseISO8601("2026-" + text + ":00Z", false).value();
}

Instant second(const std::string& text) {
    return parseISO8601("2026-11-22T" + text + "Z", false).value();
}

UsageWindow session(double used, const std::string& reset) {
    return {"session", used, 300, minute("11-22T" + reset)};
}
UsageWindow week(const std::string& id, double used, const std::string& reset) {
    return {id, used, 10080, minute(reset)};
}

struct Recording {
    std::string name;
    std::string recorded;
    int exitStatus = 20;
    std::vector<UsageWindow> windows = {};
    std::optional<std::string> credit = {};
    /// Absent: the figures are live.
    std::optional<Seconds> age = {};
    bool lacksEndMarker = false;
    /// In place of a reading.
    std::optional<UsageProviderError> reason = {};
};

const std::string spentSome = "$15.40 / $50.00 spent · Resets Dec 1 (Europe/Zurich)";
const std::string spentAll = "$50.00 / $50.00 spent · Resets Dec 1 (Europe/Zurich)";
constexpr Seconds minuteOld{60};
/// Where the page tells no age.
constexpr Seconds hourOld{3600};

/// The figures that most recordings are about, with the resets of the recording.
std::vector<UsageWindow> usual(const std::string& sessionReset, const std::string& weekReset,
                               bool hasModel = true) {
    std::vector<UsageWindow> windows = {session(34, sessionReset), week("weekly", 18, weekReset)};
    if (hasModel) {
        windows.push_back(week("fable-weekly", 58, weekReset));
    }
    return windows;
}

/// Those that come after them.
std::vector<UsageWindow> changed() {
    return {session(77, "04:42"), week("weekly", 22, "11-26T15:38"),
            week("fable-weekly", 100, "11-26T15:38")};
}

/// What the CLI had kept, of which the page tells no age.
Recording kept(std::string name, std::string recorded, std::vector<UsageWindow> windows) {
    return {std::move(name), std::move(recorded), 20, std::move(windows), {}, hourOld, true};
}

Recording failed(std::string name, std::string recorded, int exitStatus,
                 UsageProviderError reason) {
    return {.name = std::move(name),
            .recorded = std::move(recorded),
            .exitStatus = exitStatus,
            .reason = std::move(reason)};
}

const Recording recordings[] = {
    {"first", "03:18:54", 20, usual("05:48", "11-26T18:25"), spentSome},
    {"first-unprobed", "03:19:35", 0, usual("05:49", "11-26T18:26"), spentSome},
    {"within-a-minute", "03:19:02", 20, changed(), spentAll},
    // The figures of "first-unprobed", 8 s before: for a minute the CLI itself takes them for new
    // and does not ask again, without a word on the screen.
    {"within-a-minute-unprobed", "03:19:43", 20, usual("05:49", "11-26T18:26"), spentSome},
    {"changed", "03:19:10", 20, changed(), spentAll},
    {"changed-unprobed", "03:19:52", 20, changed(), spentAll},
    {"full",
     "03:22:02",
     20,
     {session(100, "03:30"), week("weekly", 100, "11-23T03:20"),
      week("fable-weekly", 100, "11-23T03:20")},
     spentSome},
    {"zero", "03:21:53", 20, {{"session", 0, 300, {}}, {"weekly", 0, 10080, {}}}},
    // The page leaves Opus out.
    {"three-models",
     "03:22:11",
     20,
     {session(34, "05:52"), week("weekly", 18, "11-26T18:28"),
      week("fable-weekly", 58, "11-26T18:27"), week("sonnet-weekly", 7, "11-26T21:13")},
     spentSome},
    {"credits-off", "03:22:21", 20, usual("05:52", "11-26T18:28", false)},
    {"pro", "03:22:51", 20, usual("05:52", "11-26T18:29", false)},
    {.name = "rows-absent",
     .recorded = "03:22:39",
     .windows = usual("05:50", "11-26T18:27", false),
     .lacksEndMarker = true},
    kept("slow", "03:21:44", usual("05:51", "11-26T18:28", false)),
    kept("429", "03:19:27", usual("05:49", "11-26T18:25", false)),
    kept("429-first", "03:20:44", usual("05:50", "11-26T18:27", false)),
    kept("500-first", "03:20:53", usual("05:50", "11-26T18:27", false)),
    {"429-unprobed", "03:19:59", 0, changed(), spentAll, minuteOld},
    failed(
        "429-old-unprobed", "03:20:34", 126,
        UsageProviderError::claudeServiceRefused("The usage page is rate limited until 4:26am.")),
    failed("no-snapshot-offline", "03:21:29", 126,
           UsageProviderError::claudePageError("Couldn't load usage")),
    failed("nulls", "03:22:30", 20, UsageProviderError(Kind::claudeNoQuotas)),
    failed("no-subscription", "03:23:38", 124, UsageProviderError::timeout("Claude")),
    failed("api-key", "03:24:26", 124, UsageProviderError::timeout("Claude")),
    failed("logged-out", "03:25:05", 128, UsageProviderError(Kind::claudeNotLoggedIn)),
};

std::string capture(const std::string& name) {
    return contentOf(sourceFile("tests/probes/claude/data/screen-" + name + ".raw"));
}

TEST(ClaudeRecordings, AreTheServicesFiguresOrSayWhyNot) {
    for (const Recording& recording : recordings) {
        SCOPED_TRACE(recording.name);
        const Instant now = second(recording.recorded);
        const ClaudeScreen screen(capture(recording.name));
        const auto reason = errorOf([&] {
            const AgentUsageSnapshot snapshot =
                interpretClaudeSession(screen, {recording.exitStatus, false}, now);
            EXPECT_EQ(snapshot.windows, recording.windows);
            EXPECT_EQ(snapshot.source,
                      recording.age ? SnapshotSource::stale : SnapshotSource::live);
            EXPECT_EQ(snapshot.updatedAt, now - recording.age.value_or(Seconds(0)));
            EXPECT_EQ(snapshot.accountLabel, "user@example.com");
            EXPECT_EQ(snapshot.plan, recording.name == "pro" ? "Claude Pro" : "Claude Max");
            EXPECT_EQ(snapshot.credit, recording.credit
                                           ? std::optional(CreditInfo::line(*recording.credit))
                                           : std::nullopt);
            const auto lacksMarker = [](const SnapshotNote& note) {
                return std::holds_alternative<SnapshotNote::ClaudeEndMarkerMissing>(note.value);
            };
            EXPECT_EQ(std::ranges::any_of(snapshot.notes, lacksMarker), recording.lacksEndMarker);
            EXPECT_EQ(snapshot.isIncomplete, recording.lacksEndMarker);
            EXPECT_EQ(snapshot.error.has_value(), recording.age.has_value())
                << "why it is not live";
            const SnapshotNote creditsOff{SnapshotNote::AgentSays{"Usage credits are off"}};
            const std::set<std::string> withoutCredits = {"zero", "credits-off", "pro"};
            EXPECT_EQ(std::ranges::count(snapshot.notes, creditsOff),
                      withoutCredits.contains(recording.name) ? 1 : 0);
            EXPECT_TRUE(ClaudeUsageParser::stamps(screen));
        });
        EXPECT_EQ(reason, recording.reason);
    }
}

// Recorded with another zone than the probe's sessions have: only the figures can be right.
TEST(ClaudeRecordings, AreReadWithoutTheirZone) {
    const ClaudeScreen screen(capture("los-angeles"));
    const auto snapshot = interpretClaudeSession(screen, {20, false}, second("03:19:19"));
    ASSERT_EQ(snapshot.windows.size(), 3u);
    EXPECT_EQ(snapshot.windows[0].usedPercent, 34);
    EXPECT_EQ(snapshot.windows[1].usedPercent, 18);
    EXPECT_EQ(snapshot.windows[1].resetsAt, minute("11-26T09:25"));
    EXPECT_EQ(snapshot.windows[2].usedPercent, 58);
}

TEST(ClaudeRecordings, TellWhyFiguresAreNotNew) {
    const std::pair<const char*, std::optional<ClaudeUsageParser::Staleness>> cases[] = {
        {"changed", std::nullopt},
        {"slow", {{"Refreshing usage…", std::nullopt, true}}},
        {"500-first", {{"Couldn't refresh usage data", std::nullopt, false}}},
        {"429",
         {{"Per-model breakdown unavailable (rate limited until 4:25am)", std::nullopt, false}}},
        {"429-unprobed",
         {{"Showing last-known usage as of 1m ago (rate limited until 4:25am)", minuteOld, false}}},
    };
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(ClaudeUsageParser::staleness(ClaudeScreen(capture(name))), expected) << name;
    }
}

// Cut off anywhere, a page has true figures or none: a percentage is drawn below its heading.
TEST(ClaudeRecordings, NeverMixDrawings) {
    const std::string whole = capture("changed-unprobed");
    const Instant now = second("03:19:52");
    const std::vector<UsageWindow> before = usual("05:49", "11-26T18:26");
    const std::vector<UsageWindow> after = changed();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        std::vector<UsageWindow> windows;
        errorOf([&] {
            windows = interpretClaudeSession(ClaudeScreen(whole.substr(0, length)), {15, true}, now)
                          .windows;
        });
        for (std::size_t index = 0; index < windows.size(); ++index) {
            const UsageWindow& window = windows[index];
            const auto isLike = [&](const UsageWindow& other) {
                return other.id == window.id && other.usedPercent == window.usedPercent &&
                       (!window.resetsAt || other.resetsAt == window.resetsAt);
            };
            EXPECT_TRUE(isLike(before[index]) || isLike(after[index])) << length;
        }
    }
}

} // namespace
} // namespace vellmark::tests
