#include "probes/AgentScenario.h"
#include "probes/claude/ClaudeQuery.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"
#include "text/Dates.h"

#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

const Instant now = *parseISO8601("2026-11-22T03:25:00Z", false);

std::string recording(const std::string& name) {
    return contentOf(sourceFile("tests/probes/claude/data/" + name));
}

AgentUsageSnapshot reading(const std::string& output, const ClaudeLogin& login,
                           const std::string& version) {
    const ClaudeQueryReply reply = parseClaudeQueryReply(output, "r1");
    EXPECT_EQ(reply.kind, ClaudeQueryReply::Kind::answered);
    return claudeQuerySnapshot(reply.answer, login, VersionNumber::parse(version), now);
}

/// "session 34 2026-11-22T05:48:39.271 weekly …", with the model's name where there is one.
std::string told(const AgentUsageSnapshot& snapshot) {
    std::string text;
    for (const UsageWindow& window : snapshot.windows) {
        char used[32];
        std::snprintf(used, sizeof used, "%g", window.usedPercent);
        text += (text.empty() ? "" : ", ") + window.id + " " + used;
        if (window.resetsAt) {
            text += " " + formatDate(*window.resetsAt, "MM-dd'T'HH:mm:ss.SSS", TimeZone::utc());
        }
        if (window.label) {
            text += " (" + *window.label + ")";
        }
    }
    return text;
}

// What the real CLI answered to made-up figures: the true ones stand in the expectations.

TEST(ClaudeQuery, ReadsTheTrueFiguresOfARecordedAnswer) {
    static constexpr const char* spent = "$15.40 / $50.00 spent";
    struct Case {
        const char* file;
        const char* windows;
        const char* credit = spent;
        const char* version = "2.1.330";
    };
    const char* const changed = "session 77.4 11-22T04:42:00.661, weekly 22 11-26T15:38:40.661, "
                                "fable-weekly 100 11-26T15:38:40.661 (Fable)";
    const char* const first = "session 34 11-22T05:48:39.271, weekly 18 11-26T18:25:19.271, "
                              "fable-weekly 58 11-26T18:25:19.271 (Fable)";
    for (const Case& test : {
             Case{"query-first.jsonl", first},
             Case{"query-within-a-minute.jsonl", first},
             Case{"query-changed.jsonl", changed, "$50.00 / $50.00 spent"},
             Case{"query-los-angeles.jsonl", changed, "$50.00 / $50.00 spent"},
             Case{"query-full.jsonl",
                  "session 100 11-22T03:30:34.790, weekly 100 11-23T03:20:34.790, "
                  "fable-weekly 100 11-23T03:20:34.790 (Fable)"},
             Case{"query-three-models.jsonl",
                  "session 34 11-22T05:52:02.673, weekly 18 11-26T18:28:42.673, "
                  "fable-weekly 58 11-26T18:27:14.790 (Fable), "
                  "opus-weekly 3 11-27T00:00:34.790 (Opus), "
                  "sonnet-weekly 7 11-26T21:13:54.790 (Sonnet)"},
             Case{"query-zero.jsonl", "session 0, weekly 0", nullptr},
             Case{"query-credits-off.jsonl",
                  "session 34 11-22T05:52:11.978, weekly 18 11-26T18:28:51.978", nullptr},
             Case{"query-pro.jsonl", "session 34 11-22T05:52:40.999, weekly 18 11-26T18:29:20.999",
                  nullptr},
             // Before there was a place for models of their own, they stood in the rows alone.
             Case{"query-2.1.169.jsonl",
                  "session 34 11-22T05:48:37.387, weekly 18 11-26T18:25:17.387, "
                  "fable-weekly 58 11-26T18:25:17.387 (Fable)",
                  spent, "2.1.169"},
             Case{"query-2.1.235.jsonl",
                  "session 34 11-22T05:48:43.014, weekly 18 11-26T18:25:23.014, "
                  "fable-weekly 58 11-26T18:25:23.014 (Fable)",
                  spent, "2.1.235"},
         }) {
        SCOPED_TRACE(test.file);
        const auto snapshot = reading(recording(test.file), {}, test.version);
        EXPECT_EQ(told(snapshot), test.windows);
        EXPECT_EQ(snapshot.credit,
                  test.credit ? std::optional(CreditInfo::line(test.credit)) : std::nullopt);
        EXPECT_EQ(snapshot.source, SnapshotSource::live);
        EXPECT_EQ(snapshot.updatedAt, now);
        EXPECT_EQ(snapshot.error, std::nullopt);
    }
    const auto credits = reading(recording("query-first.jsonl"), {}, "2.1.330").balances;
    ASSERT_EQ(credits.size(), 1u);
    EXPECT_EQ(credits[0], (BalanceInfo{extraUsageBalanceID, 34.6, "USD", 50.0}));
}

TEST(ClaudeQuery, CallsNothingLiveThatTheCLIHadKept) {
    for (const char* file : {"query-429.jsonl", "query-429-hour.jsonl", "query-rows-absent.jsonl",
                             "query-2.1.290-429.jsonl", "query-2.1.282-429.jsonl"}) {
        SCOPED_TRACE(file);
        const auto snapshot = reading(recording(file), {}, "2.1.290");
        EXPECT_FALSE(snapshot.windows.empty());
        EXPECT_EQ(snapshot.source, SnapshotSource::stale);
        EXPECT_EQ(snapshot.updatedAt, now - Seconds(3600));
        EXPECT_TRUE(snapshot.mayBeNewer);
        EXPECT_EQ(snapshot.error, UsageProviderError(Kind::claudeServiceUnavailable));
    }
    // A CLI of an unknown version is taken as one that tells.
    EXPECT_EQ(claudeQuerySnapshot(parseClaudeQueryReply(recording("query-429.jsonl"), "r1").answer,
                                  {}, std::nullopt, now)
                  .source,
              SnapshotSource::stale);
    // These do not tell; whoever reads them is told that.
    for (const char* file : {"query-2.1.235.jsonl", "query-2.1.235-429.jsonl"}) {
        const auto snapshot = reading(recording(file), {}, "2.1.235");
        EXPECT_EQ(snapshot.source, SnapshotSource::live);
        EXPECT_EQ(snapshot.notes,
                  (std::vector<SnapshotNote>{{SnapshotNote::AgeNotTold{"2.1.235"}}}));
    }
    EXPECT_TRUE(reading(recording("query-2.1.169.jsonl"), {}, "2.1.169").notes.empty());
}

TEST(ClaudeQuery, SaysExactlyWhyThereAreNoFigures) {
    const ClaudeLogin member{.isLoggedIn = true};
    const ClaudeLogin byKey{.isLoggedIn = true, .usesAPIKey = true};
    const std::tuple<const char*, ClaudeLogin, Kind> cases[] = {
        {"query-429-first.jsonl", member, Kind::claudeServiceUnavailable},
        {"query-429-old.jsonl", member, Kind::claudeServiceUnavailable},
        {"query-500-first.jsonl", member, Kind::claudeServiceUnavailable},
        {"query-no-snapshot-offline.jsonl", member, Kind::claudeServiceUnavailable},
        {"query-slow.jsonl", member, Kind::claudeServiceUnavailable},
        {"query-2.1.169-429.jsonl", member, Kind::claudeServiceRefused},
        {"query-nulls.jsonl", member, Kind::claudeNoQuotas},
        {"query-no-subscription.jsonl", member, Kind::claudeNoSubscription},
        {"query-api-key.jsonl", byKey, Kind::claudeAPIKey},
        {"query-api-key.jsonl", member, Kind::claudeNoSubscription},
        {"query-logged-out.jsonl", {}, Kind::claudeNotLoggedIn},
    };
    for (const auto& [file, login, reason] : cases) {
        SCOPED_TRACE(file);
        const auto error = errorOf([&] { reading(recording(file), login, "2.1.330"); });
        ASSERT_TRUE(error) << "figures";
        EXPECT_EQ(error->kind(), reason) << error->what();
    }
}

TEST(ClaudeQuery, CountsOnlyTheAnswerToItsOwnRequest) {
    using Reply = ClaudeQueryReply::Kind;
    const auto kind = [](const std::string& output) {
        return parseClaudeQueryReply(output, "r1").kind;
    };
    const std::string answer =
        R"({"type":"control_response","response":{"subtype":"success","request_id":"r1",)"
        R"("response":{"rate_limits":{"five_hour":{"utilization":1}}}}})";
    const std::string refusal = R"({"type":"control_response","response":{"subtype":"error",)"
                                R"("request_id":"r1","error":"busy"}})";
    std::string foreign = answer;
    foreign.replace(foreign.find("r1"), 2, "r2");
    EXPECT_EQ(kind(answer), Reply::answered);
    EXPECT_EQ(kind("noise\n[1]\n" + foreign + "\n" + answer + "\r\n{\"type\":1}\n"),
              Reply::answered);
    EXPECT_EQ(kind(foreign + "\n"), Reply::none);
    EXPECT_EQ(kind(answer.substr(0, answer.size() - 1)), Reply::none);
    EXPECT_EQ(kind(""), Reply::none);
    EXPECT_EQ(kind(refusal), Reply::failed);
    EXPECT_EQ(kind(recording("query-2.1.124-plain.jsonl")), Reply::unsupported);
    EXPECT_EQ(kind(recording("query-2.1.158.jsonl")), Reply::none);
    EXPECT_TRUE(isClaudeQueryOutput("x\n" + foreign));
    EXPECT_FALSE(isClaudeQueryOutput("Current session\n11% used\n"));
    EXPECT_NE(claudeQueryRequest("r1").find("\"skip_behaviors\":true"), std::string::npos);
}

TEST(ClaudeQuery, TakesWhatItCanOfAnAnswerOfAnotherShape) {
    const auto windows = [](const std::string& limits) {
        return told(reading(R"({"type":"control_response","response":{"subtype":"success",)"
                            R"("request_id":"r1","response":{"rate_limits":)" +
                                limits + "}}}",
                            {}, "2.1.330"));
    };
    EXPECT_EQ(windows(R"({"limits":[{"kind":"weekly_all","percent":7,"resets_at":5},)"
                      R"({"kind":"weekly_scoped","percent":3,"scope":{"model":)"
                      R"({"display_name":"Big Model 2"}}},{"kind":"new","percent":1},3,null]})"),
              "weekly 7, big-model-2-weekly 3 (Big Model 2)");
    EXPECT_EQ(windows(R"({"limits":[],"five_hour":{"utilization":12.5,"resets_at":)"
                      R"("2026-11-22T06:00:00Z"},"seven_day":{"utilization":"many"},)"
                      R"("model_scoped":{"a":1}})"),
              "session 12.5 11-22T06:00:00.000");
    std::string many;
    for (int model = 0; model < 5000; ++model) {
        many += R"({"display_name":"m)" + std::to_string(model) + R"(","utilization":1},)";
    }
    const auto bounded = parseClaudeQueryReply(
        R"({"type":"control_response","response":{"subtype":"success","request_id":"r1",)"
        R"("response":{"rate_limits":{"model_scoped":[)" +
            many + "0]}}}}",
        "r1");
    EXPECT_EQ(bounded.answer.windows.size(), 50u);
}

TEST(ClaudeLogin, IsReadFromTheCLIsStatus) {
    const std::pair<const char*, ClaudeLogin> cases[] = {
        {"auth-subscription.json",
         {.isLoggedIn = true, .email = "user@example.com", .plan = "Max 20x"}},
        {"auth-pro.json", {.isLoggedIn = true, .email = "user@example.com", .plan = "Pro"}},
        {"auth-no-subscription.json",
         {.isLoggedIn = true, .lacksSubscription = true, .email = "user@example.com"}},
        {"auth-api-key.json", {.isLoggedIn = true, .usesAPIKey = true}},
        {"auth-logged-out.json", {.isLoggedIn = false}},
    };
    for (const auto& [file, login] : cases) {
        EXPECT_EQ(parseClaudeLogin(recording(file)), login) << file;
    }
    for (const char* text :
         {"", "null", "[]", "{}", R"({"loggedIn":"yes"})", R"({"loggedIn":true)"}) {
        EXPECT_EQ(parseClaudeLogin(text), ClaudeLogin{}) << text;
    }
    EXPECT_EQ(parseClaudeLogin(R"({"loggedIn":true,"subscriptionType":"max"})").plan, "Max");
}

} // namespace
} // namespace vellmark::tests
