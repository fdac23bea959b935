#include "probes/AgentScenario.h"
#include "probes/antigravity/AntigravityOutput.h"
#include "probes/antigravity/AntigravityReading.h"
#include "probes/antigravity/AntigravityResetTime.h"
#include "probes/antigravity/AntigravityWindowName.h"

#include <gmock/gmock.h>

#include <utility>

namespace vellmark {
namespace {

using Kind = UsageProviderError::Kind;
using ::testing::ElementsAre;

const Instant now{Seconds(800'000'000)};
/// 2025-06-01 00:00 UTC.
constexpr double firstOfJune = 1748736000;

/// A local zone that no abbreviation stands for.
TimeZone localZone() {
    return *TimeZone::named("Asia/Kolkata");
}

Instant june1(double hours) {
    return instantFromUnixSeconds(firstOfJune + hours * 3600);
}

std::vector<AntigravityQuotaRow> rows(std::string_view output) {
    return AntigravityOutput::read(output, localZone()).rows;
}

std::string document(const std::string& groups) {
    return R"({"command":{"name":"usage","data":{"groups":)" + groups +
           R"(}},"response":"Usage","status":"SUCCESS"})";
}

/// A run that has printed `output`.
struct SavedRun {
    std::string output;
    std::string log;
    std::int32_t exitStatus = 0;
    bool timedOut = false;

    AgentUsageSnapshot snapshot() const {
        return antigravitySnapshot({.output = AntigravityOutput::read(output, localZone()),
                                    .log = log,
                                    .exitStatus = exitStatus,
                                    .timedOut = timedOut,
                                    .version = "1.1.9"},
                                   now);
    }
};

std::optional<UsageProviderError> failure(const SavedRun& run) {
    return tests::errorOf([&] { run.snapshot(); });
}

TEST(AntigravityWindowName, IsBroughtToASlug) {
    const std::pair<const char*, AntigravityWindowName> cases[] = {
        {"Weekly limit remaining", {"weekly", 10080}},
        {"5h, weekly", {"weekly", 10080}},
        {"5 Hours remaining", {"5h", 300}},
        {"15h limit remaining", {"15h", std::nullopt}},
        {"DAILY", {"daily", 1440}},
        {"Monthly Limit Remaining", {"monthly", std::nullopt}},
        {"Flash remaining", {"Flash", std::nullopt}},
        {"  Limit Remaining REMAINING ", {"other", std::nullopt}},
    };
    for (const auto& [text, expected] : cases) {
        const auto name = AntigravityWindowName::of(text);
        EXPECT_EQ(name.slug, expected.slug) << text;
        EXPECT_EQ(name.minutes, expected.minutes) << text;
    }
}

TEST(AntigravityResetTime, IsReadInEveryFormThatTheCLIUses) {
    const std::pair<const char*, std::optional<Instant>> cases[] = {
        {"2025-06-01T14:00:00Z", june1(14)},
        {"2025-06-01T14:00:00+02:00 (in 3 days)", june1(12)},
        {"2025-06-01T14:00:00.500Z", june1(14 + 0.5 / 3600)},
        {"2025-06-01 14:00 CEST", june1(12)},
        {"resets 2025-06-01 14:00:30 pdt", june1(21 + 30.0 / 3600)},
        {"(2025-06-01T14:00UTC)", june1(14)},
        {"2025-06-01 14:00", june1(8.5)},
        {"2025-06-01 14:00 QQQ", june1(8.5)},
        {"2025-06-01 14:00 BST", june1(13)},
        {"2025-13-01 14:00 UTC", std::nullopt},
        {"2025-06-01 25:00 UTC", std::nullopt},
        {"tomorrow", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(antigravityResetTime(text, localZone()), expected) << text;
    }
}

TEST(AntigravityLine, IsReadByWordsOrByColumns) {
    const std::pair<const char*, AntigravityQuotaRow> cases[] = {
        {"Gemini Models  Weekly limit remaining  37,5%  2025-06-01 14:00 CEST",
         {"Gemini Models", "weekly", 10080, 37.5, june1(12)}},
        {"Claude and GPT models 5-hour limit remaining 80 %",
         {"Claude and GPT models", "5h", 300, 80, std::nullopt}},
        {"Gemini Models\u00a0\u00a05\u00a0h limit remaining\u00a037,5\u00a0%",
         {"Gemini Models", "5h", 300, 37.5, std::nullopt}},
        {"\tImages\tFlash remaining\t64.25%\t2025-06-01T14:00:00Z",
         {"Images", "Flash", std::nullopt, 64.25, june1(14)}},
        {"Images   Pro images remaining 9%", {"Images", "Pro images", std::nullopt, 9, {}}},
        {"Gemini Models Daily remaining 120%", {"Gemini Models", "daily", 1440, 100, {}}},
        {"Gemini Models weekly: not used yet.", {"Gemini Models", "weekly", 10080, 100, {}}},
        {"Gemini Models  Weekly limit remaining  Not used yet (resets later)",
         {"Gemini Models", "weekly", 10080, 100, {}}},
    };
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(readAntigravityLine(line, localZone()), expected) << line;
    }
    for (const char* line :
         {"Gemini Models", "not used yet", "Gemini Models not used yet",
          "Weekly limit remaining 40%", "Gemini 40% remaining", "Gemini Weekly limit remaining",
          "Gemini Weekly used 40%", "Gemini remaining 40%", "", "%", "remaining 5%"}) {
        EXPECT_EQ(readAntigravityLine(line, localZone()), std::nullopt) << line;
    }
}

TEST(AntigravityOutput, ReadsTheDocumentsGroups) {
    EXPECT_THAT(
        rows(document(R"([
            {"buckets":[{"window":"Weekly limit","name":"ignored","remaining_fraction":0.25,
                         "reset_time":"2025-06-01T14:00:00Z"},
                        {"name":"5-hour limit","remaining_fraction":-0.2,"window":7},
                        {"remaining_fraction":1.5,"reset_time":5}],
             "name":"Gemini Models"},
            {"name":"Claude and GPT models","buckets":[{"window":"Daily","remaining_fraction":1}]}
        ])")),
        ElementsAre(
            AntigravityQuotaRow{"Gemini Models", "weekly", 10080, 25, june1(14)},
            AntigravityQuotaRow{"Gemini Models", "5h", 300, 0, std::nullopt},
            AntigravityQuotaRow{"Gemini Models", "other", std::nullopt, 100, std::nullopt},
            AntigravityQuotaRow{"Claude and GPT models", "daily", 1440, 100, std::nullopt}));
}

TEST(AntigravityOutput, SkipsWhatLacksItsFields) {
    EXPECT_THAT(rows(document(R"([
            null, 5, [], {}, {"name":5,"buckets":[{"remaining_fraction":1}]},
            {"buckets":[{"remaining_fraction":1}]}, {"name":"A","buckets":{"x":1}}, {"name":"B"},
            {"name":"C","buckets":[null,{},{"remaining_fraction":"0.5"},
                                   {"remaining_fraction":true},{"remaining_fraction":0.5}]}
        ])")),
                ElementsAre(AntigravityQuotaRow{"C", "other", std::nullopt, 50, std::nullopt}));
}

TEST(AntigravityOutput, LeavesOutWhatIsDisabledAndShowsWhatIsUnused) {
    EXPECT_THAT(rows(document(R"([
            {"name":"A","buckets":[{"remaining_fraction":0.1,"disabled":true},
                                   {"remaining_fraction":0.2,"enabled":false},
                                   {"remaining_fraction":0.3,"disabled":false,"enabled":true},
                                   {"window":"daily","remaining_fraction":null,"reset_time":"Not used yet"},
                                   {"window":"monthly","remaining_fraction":0.4,"note":"not used yet"},
                                   {"window":"weekly","note":"used"}]},
            {"name":"B","disabled":true,"buckets":[{"remaining_fraction":1}]}
        ])")),
                ElementsAre(AntigravityQuotaRow{"A", "other", std::nullopt, 30, std::nullopt},
                            AntigravityQuotaRow{"A", "daily", 1440, 100, std::nullopt},
                            AntigravityQuotaRow{"A", "monthly", std::nullopt, 40, std::nullopt}));
}

TEST(AntigravityOutput, SeesWhetherAModelHasAnswered) {
    const std::pair<const char*, bool> cases[] = {
        {R"({"num_turns":1})", true},
        {R"({"numTurns":2.0})", true},
        {R"({"usage":{"input_tokens":0,"output_tokens":1}})", true},
        {R"({"usage":{"totalTokens":12}})", true},
        {R"({"stats":{"models":{"any":{"tokens":{"prompt":12}}}}})", true},
        {R"({"modelUsage":[{"inputTokens":3}]})", true},
        {"Warning: the cache is old.\n{\n \"num_turns\": 1\n}\nDone.\n", true},
        {R"({"num_turns":0,"usage":{"input_tokens":0,"output_tokens":0}})", false},
        {R"({"num_turns":"1","usage":5,"stats":[{"requests":3}],"tokens":null})", false},
        {R"({"usage":{"max_tokens":8192},"duration_ms":12,"command":{"data":{"num_turns":1}}})",
         false},
        {R"([{"num_turns":1}])", false},
        {"num_turns: 1", false},
    };
    for (const auto& [output, expected] : cases) {
        EXPECT_EQ(AntigravityOutput::read(output, localZone()).tookTurn, expected) << output;
    }
}

TEST(AntigravityOutput, TakesNoRowsFromAModelsProse) {
    const std::string line = "Gemini Models  Weekly limit remaining  40%";
    const std::string prose = R"("num_turns":1,"response":")" + line + "\"}";
    EXPECT_TRUE(rows("{" + prose).empty());
    EXPECT_THAT(rows(R"({"command":{"data":{"groups":[{"name":"A","buckets":[{"window":"5h",)"
                     R"("remaining_fraction":0.5}]}]}},)" +
                     prose),
                ElementsAre(AntigravityQuotaRow{"A", "5h", 300, 50, std::nullopt}));
}

TEST(AntigravityOutput, FallsBackToLinesOnlyWithoutGroups) {
    const std::string line = "Gemini Models  Weekly limit remaining  40%";
    const AntigravityQuotaRow row{"Gemini Models", "weekly", 10080, 40, std::nullopt};
    // No groups in the document: the response's lines.
    EXPECT_THAT(rows(R"({"response":"Quotas\n)" + line + R"(\r\n\n","command":{"data":{}}})"),
                ElementsAre(row));
    EXPECT_THAT(rows(R"({"command":{"data":{"groups":{}}},"response":")" + line + "\"}"),
                ElementsAre(row));
    // No document: the output's lines, also where it is no UTF-8.
    EXPECT_THAT(rows("warning \xff\n" + line + "\n"), ElementsAre(row));
    EXPECT_THAT(rows(R"({"truncated)" + ("\n" + line)), ElementsAre(row));
    EXPECT_THAT(rows("[" + std::string(1'000'000, '[') + "\n" + line), ElementsAre(row));
    // Warnings around a document leave it one.
    EXPECT_THAT(rows("W1120 cache is old\n{\n\"response\":\"" + line + "\"\n}\nbye {\n"),
                ElementsAre(row));
    // Empty groups are an answer.
    EXPECT_TRUE(rows(R"({"command":{"data":{"groups":[]}},"response":")" + line + "\"}").empty());
}

TEST(AntigravityOutput, EndsAFloodOfRows) {
    std::string lines;
    std::string buckets = R"({"remaining_fraction":1})";
    for (int count = 0; count < 5000; ++count) {
        lines += "Gemini Models  Weekly limit remaining  40%\n";
        buckets += R"(,{"remaining_fraction":1})";
    }
    EXPECT_EQ(rows(lines).size(), AntigravityOutput::maximumRows);
    EXPECT_EQ(rows(document(R"([{"name":"A","buckets":[)" + buckets + "]}]")).size(),
              AntigravityOutput::maximumRows);
}

TEST(AntigravityReading, MakesWindowsOfRowsWhateverTheExit) {
    SavedRun run;
    run.output = document(R"([{"name":"Gemini Models","buckets":[
        {"window":"Weekly limit remaining","remaining_fraction":0.625,
         "reset_time":"2025-06-01T14:00:00Z"}]}])");
    run.log = "10:00 authenticated successfully As x@y.z\n"
              "10:01 authenticated successfully as  ada@example.com (cached)\n"
              "10:02 authenticated successfully as eve@example.com\n";
    run.exitStatus = 15;
    run.timedOut = true;
    AgentUsageSnapshot expected;
    expected.id = AgentProviderID::antigravity();
    expected.accountLabel = "ada@example.com";
    expected.windows = {{"pool:Gemini Models|weekly", 37.5, 10080, june1(14)}};
    expected.source = SnapshotSource::live;
    expected.updatedAt = now;
    EXPECT_EQ(run.snapshot(), expected);

    run.log = "authenticated successfully as someone";
    EXPECT_EQ(run.snapshot().accountLabel, std::nullopt);
}

TEST(AntigravityReading, TellsWhatItHasCost) {
    for (const char* turns : {"0", "1"}) {
        SavedRun run;
        run.output = R"({"num_turns":)" + std::string(turns) +
                     R"(,"command":{"data":{"groups":[)"
                     R"({"name":"A","buckets":[{"remaining_fraction":1}]}]}}})";
        const std::vector<SnapshotNote> costs(*turns == '1' ? 1 : 0,
                                              SnapshotNote{SnapshotNote::ReadingCosts{}});
        EXPECT_EQ(run.snapshot().notes, costs) << turns;
    }
}

TEST(AntigravityReading, NamesTheReasonForNoRows) {
    const std::string longText = std::string(299, 'x') + "äö";
    const std::pair<SavedRun, UsageProviderError> cases[] = {
        {{"Authentication required.", {}, 1, true},
         UsageProviderError(Kind::antigravityNotLoggedIn)},
        {{"NOT LOGGED INTO Antigravity; not eligible", {}, 0, false},
         UsageProviderError(Kind::antigravityNotLoggedIn)},
        {{R"({"response":"Authentication failed"})", {}, 1, false},
         UsageProviderError(Kind::antigravityNotLoggedIn)},
        {{"Your account is not eligible", {}, 1, true},
         UsageProviderError(Kind::antigravityIneligible)},
        {{"Ineligible region", {}, 0, false}, UsageProviderError(Kind::antigravityIneligible)},
        {{"", {}, 15, true}, UsageProviderError::timeout("Antigravity")},
        {{document("[]"), {}, 0, false}, UsageProviderError(Kind::antigravityNoQuotas)},
        {{document("[]"), {}, 2, false}, UsageProviderError::antigravityReadFailed("Usage")},
        {{longText, {}, 3, false},
         UsageProviderError::antigravityReadFailed(std::string(299, 'x') + "ä")},
        {{R"({"num_turns":1,"response":"Authentication failed, your quota is 40%"})", {}, 1, true},
         UsageProviderError::antigravityReadingCosts("1.1.9")},
        {{"Starting\nAGY_ERROR:{\"code\":3,\"message\":\"No lane is free\"} \r\nBye\n",
          {},
          3,
          false},
         UsageProviderError::antigravityReadFailed("No lane is free")},
        {{R"(AGY_ERROR:{"error":{"reason":"Busy"}})", {}, 3, false},
         UsageProviderError::antigravityReadFailed("Busy")},
        {{R"(AGY_ERROR:{"error":"Busy"})", {}, 3, false},
         UsageProviderError::antigravityReadFailed("Busy")},
        {{"AGY_ERROR: {5}", {}, 3, false}, UsageProviderError::antigravityReadFailed("{5}")},
        {{R"(AGY_ERROR:{"message":"N\u006ft logged into Antigravity"})", {}, 3, false},
         UsageProviderError(Kind::antigravityNotLoggedIn)},
        {{R"(AGY_ERROR:{"message":"In\u0065ligible tier"})", {}, 3, false},
         UsageProviderError(Kind::antigravityIneligible)},
    };
    for (const auto& [run, expected] : cases) {
        EXPECT_EQ(failure(run), expected) << run.output;
    }
}

} // namespace
} // namespace vellmark
