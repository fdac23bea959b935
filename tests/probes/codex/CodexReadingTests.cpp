#include "probes/AgentScenario.h"
#include "probes/codex/CodexReading.h"
#include "probes/codex/LineBuffer.h"

#include <gmock/gmock.h>

namespace vellmark {
namespace {

using Kind = UsageProviderError::Kind;
using ::testing::ElementsAre;

const Instant now{Seconds(800'000'000.5)};

AgentUsageSnapshot snapshotOf(const std::string& output) {
    return codexSnapshot(output, now, "/home/ada");
}

/// An answer to the request for the rate limits.
std::string limits(const std::string& rateLimits) {
    return R"({"id":3,"result":{"rateLimits":)" + rateLimits + "}}\n";
}

std::string account(const std::string& result) {
    return R"({"id":2,"result":)" + result + "}\n";
}

const std::string someLimits = limits(R"({"primary":{"usedPercent":12}})");

AgentUsageSnapshot readLimits(const std::string& rateLimits) {
    return snapshotOf(limits(rateLimits));
}

std::optional<double> usedPercent(const std::string& value) {
    const auto snapshot =
        readLimits(R"({"secondary":{"usedPercent":1},"primary":{"usedPercent":)" + value + "}}");
    return snapshot.windows.size() == 2 ? std::optional(snapshot.windows[0].usedPercent)
                                        : std::nullopt;
}

std::optional<UsageProviderError> failure(const std::string& output) {
    return tests::errorOf([&] { snapshotOf(output); });
}

TEST(CodexReading, TakesNumbersAndDecimalTexts) {
    const std::pair<const char*, double> numbers[] = {
        {"0", 0},           {"-3", -3},     {"250.25", 250.25}, {"1e2", 100},
        {"\"42.5\"", 42.5}, {"\"+1.\"", 1}, {"\".5\"", 0.5},    {"\"1e2\"", 100}};
    for (const auto& [value, expected] : numbers) {
        EXPECT_EQ(usedPercent(value), expected) << value;
    }
    for (const char* value :
         {"\"\"", "\" 1\"", "\"1 \"", "\"1,5\"", "\"0x10\"", "\"inf\"", "\"nan\"", "\"1e\"",
          "\".\"", "\"-\"", "\"1e999\"", "true", "null", "{\"usedPercent\":9}", "[9]"}) {
        EXPECT_EQ(usedPercent(value), std::nullopt) << value;
    }
}

TEST(CodexReading, AWindowNeedsItsPercentageAndNothingElse) {
    const auto windows = [](const char* secondary) {
        return readLimits(R"({"primary":{"windowDurationMins":300},"secondary":)" +
                          std::string(secondary) + "}")
            .windows;
    };
    EXPECT_THAT(windows(R"({"usedPercent":"7","windowDurationMins":"10080",)"
                        R"("resetsAt":"1780300000.5"})"),
                ElementsAre(UsageWindow{"weekly", 7, 10080, instantFromUnixSeconds(1780300000.5)}));
    const auto snapshot =
        readLimits(R"({"secondary":{"usedPercent":1,"resetsAt":0,"windowDurationMins":null}})");
    EXPECT_THAT(snapshot.windows,
                ElementsAre(UsageWindow{"weekly", 1, std::nullopt, instantFromUnixSeconds(0)}));
    EXPECT_EQ(snapshot.accountLabel, std::nullopt);
    EXPECT_EQ(snapshot.plan, std::nullopt);
}

TEST(CodexReading, CapitalizesThePlanWordByWord) {
    const std::pair<const char*, const char*> cases[] = {
        {"PRO", "Pro"},         {"", ""},
        {"don't", "Don't"},     {"pay-as you-go", "Pay-As You-Go"},
        {"éCOLE ǆ", "École ǅ"}, {"k12 school_plan", "K12 School_Plan"}};
    for (const auto& [reported, shown] : cases) {
        EXPECT_EQ(readLimits(std::string(R"({"primary":{"usedPercent":1},"planType":")") +
                             reported + "\"}")
                      .plan,
                  shown);
    }
    EXPECT_EQ(readLimits(R"({"primary":{"usedPercent":1},"planType":5})").plan, std::nullopt);
}

TEST(CodexReading, CreditsCountOnlyWhenTheServerSaysSo) {
    for (const char* credits :
         {R"({"hasCredits":false})", R"({"hasCredits":1})", R"({"hasCredits":"true"})",
          R"([{"hasCredits":true}])", R"({"x":{"hasCredits":true}})"}) {
        const auto snapshot =
            readLimits(std::string(R"({"primary":{"usedPercent":1},"credits":)") + credits + "}");
        EXPECT_FALSE(snapshot.credit) << credits;
    }
}

TEST(CodexReading, FindsTheEmailAtAnyDepth) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {R"({"account":{"profile":{"email":"a@b.c"}}})", "a@b.c"},
        {R"({"list":[1,[{"email":"first@b.c"},{"email":"second@b.c"}]]})", "first@b.c"},
        {R"({"nested":{"email":"inner@b.c"},"email":"own@b.c"})", "own@b.c"},
        {R"({"a":{"x":{"email":"deep@b.c"},"email":"own@b.c"},"b":{"email":"b@b.c"}})", "own@b.c"},
        {R"({"email":null,"account":{"email":"a@b.c"}})", "a@b.c"},
        {R"({"email":{"email":"a@b.c"}})", "a@b.c"},
        {R"({"account":null,"requiresOpenaiAuth":true})", std::nullopt},
    };
    for (const auto& [result, expected] : cases) {
        EXPECT_EQ(snapshotOf(account(result) + someLimits).accountLabel, expected) << result;
    }
}

TEST(CodexReading, SkipsWhatIsNoReply) {
    for (const char* line :
         {"", "garbage", "{", "[]", "\xff\xfe", R"({"id":3,"error":"refused"})",
          R"({"id":2,"error":{"message":"refused"}})", R"({"error":{"id":3,"message":"refused"}})",
          R"({"id":3,"result":null})", R"({"id":"3","result":{"rateLimits":{}}})",
          R"({"id":3.5,"result":{"rateLimits":{}}})", R"({"id":1,"result":{"rateLimits":{}}})",
          R"({"result":{"id":3,"rateLimits":{}}})",
          R"({"method":"x","params":{"id":3,"result":{"rateLimits":{}}}})",
          R"({"id":3,"result":{}} trailing)"}) {
        EXPECT_EQ(failure(line), UsageProviderError::codexReadFailed("")) << line;
        EXPECT_EQ(failure(std::string(line) + "\n" + someLimits), std::nullopt) << line;
    }
    EXPECT_EQ(failure(R"({"result":{"rateLimits":{"primary":{"usedPercent":1}}},"id":3.0})"),
              std::nullopt);
}

TEST(CodexReading, TellsWhyTheLimitsWereRefused) {
    const auto refusal = [](const std::string& words) {
        return R"({"error":{"code":-32603,"message":")" + words + "\"},\"id\":3}\n";
    };
    const auto readFailed = [](const char* words) {
        return UsageProviderError::codexReadFailed(words);
    };
    const std::string loggedOut = "codex account authentication required to read rate limits";
    const std::string noPlan = "chatgpt authentication required to read rate limits";
    const std::string withKey = account(R"({"account":{"type":"apiKey"}})");
    const std::string withPlan = account(R"({"account":{"type":"chatgpt"}})");
    const std::pair<std::string, UsageProviderError> cases[] = {
        {refusal(loggedOut), UsageProviderError(Kind::codexNotLoggedIn)},
        {account(R"({"account":null})") + refusal(loggedOut),
         UsageProviderError(Kind::codexNotLoggedIn)},
        {refusal(noPlan), UsageProviderError(Kind::codexAPIKey)},
        {refusal(noPlan) + withKey, UsageProviderError(Kind::codexAPIKey)},
        {refusal("some other words") + withKey, UsageProviderError(Kind::codexAPIKey)},
        {withPlan + refusal(noPlan), readFailed(noPlan.c_str())},
        {refusal("no file\n/home/ada/.codex, ada@example.com"),
         UsageProviderError::codexReadFailed("")}, // a line feed in a text is no JSON
        {refusal(R"(no file\n/home/ada/.codex, ada@example.com)"),
         readFailed("no file ~/.codex, …@…")},
        {R"({"id":3,"error":{"message":5}})", readFailed("")},
        {R"({"id":3,"result":{},"error":{"message":"x"}})",
         UsageProviderError(Kind::codexNoQuotas)},
        {R"({"id":3,"error":{"message":"x"},"result":null})", readFailed("x")},
    };
    for (const auto& [output, reason] : cases) {
        EXPECT_EQ(failure(output), reason) << output;
        EXPECT_EQ(failure(output + "\n" + someLimits), std::nullopt) << output;
    }
    EXPECT_EQ(failure(someLimits + refusal("late")), std::nullopt);
}

TEST(CodexReading, KnowsHowLongTheRestIsWorthWaitingFor) {
    constexpr std::optional<Seconds> asBefore;
    const auto waits = [](std::initializer_list<const char*> lines) {
        CodexReading reading;
        std::vector<std::optional<Seconds>> patience;
        for (const char* line : lines) {
            patience.push_back(reading.take(*parseCodexReply(line)));
        }
        return patience;
    };
    const char* greeting = R"({"id":1,"result":{}})";
    const char* account = R"({"id":2,"result":{"account":null}})";
    const char* noAccount = R"({"id":2,"error":{}})";
    const char* figures = R"({"id":3,"result":{}})";
    const char* refusal = R"({"id":3,"error":{}})";
    EXPECT_THAT(waits({greeting, account, figures}), ElementsAre(asBefore, asBefore, Seconds(0)));
    EXPECT_THAT(waits({figures, greeting, figures, account}),
                ElementsAre(Seconds(0.5), asBefore, asBefore, Seconds(0)));
    EXPECT_THAT(waits({noAccount, figures}), ElementsAre(asBefore, Seconds(0)));
    EXPECT_THAT(waits({figures, noAccount}), ElementsAre(Seconds(0.5), Seconds(0)));
    EXPECT_THAT(waits({refusal, account, refusal, figures}),
                ElementsAre(Seconds(2), asBefore, asBefore, Seconds(0)));
    EXPECT_THAT(waits({refusal, figures, refusal}),
                ElementsAre(Seconds(2), Seconds(0.5), asBefore));
}

std::string limitsByID(const std::string& main, const std::string& members) {
    return R"({"id":3,"result":{"rateLimitsByLimitId":{)" + members + R"(},"rateLimits":)" + main +
           "}}";
}

TEST(CodexReading, EveryFurtherLimitHasWindowsOfItsOwn) {
    const std::string window = R"({"usedPercent":1})";
    const auto limit = [&](const std::string& more) {
        return R"({"primary":)" + window + more + "}";
    };
    // In whatever order they come, and by their names where they do not say who they are.
    EXPECT_THAT(
        tests::windowIDsOf(snapshotOf(limitsByID(
            limit(R"(,"limitId":"main")"),
            R"("z":)" + limit(R"(,"limitId":"c")") + R"(,"b":)" + limit("") + R"(,"main":)" +
                limit("") + R"(,"a":)" + limit(R"(,"limitId":"c","secondary":)" + window) +
                R"(,"d":null,"e":{"primary":null,"secondary":)" + window + "}"))),
        ElementsAre("session", "limit:b|primary", "limit:c|primary", "limit:e|secondary"));
    // Older versions do not call the main limit by a name.
    EXPECT_THAT(tests::windowIDsOf(snapshotOf(limitsByID(limit(""), R"("codex":)" + limit("")))),
                ElementsAre("session"));
    EXPECT_THAT(
        snapshotOf(limitsByID("{}", R"("x":)" + limit(R"(,"limitName":"")"))).windows,
        ElementsAre(UsageWindow{"limit:x|primary", 1, std::nullopt, std::nullopt, std::nullopt}));

    std::string many;
    for (int index = 0; index < 10'000; ++index) {
        many += (index > 0 ? ",\"" : "\"") + std::to_string(index) + R"(":{"primary":)" + window +
                R"(,"secondary":)" + window + "}";
    }
    EXPECT_EQ(snapshotOf(limitsByID(limit(""), many)).windows.size(),
              1 + 2 * CodexReply::mostLimits);
}

TEST(CodexReading, TellsWhetherTheUserMayWork) {
    const auto allowance = [](const std::string& result, const std::string& limit) {
        return snapshotOf(R"({"id":3,"result":{)" + result +
                          R"("rateLimits":{"primary":{"usedPercent":1})" + limit + "}}}")
            .allowance;
    };
    EXPECT_EQ(allowance("", ""), std::nullopt);
    EXPECT_EQ(allowance(R"("ordinaryUsageAllowed":null,"rateLimitResetCredits":null,)",
                        R"(,"rateLimitReachedType":null,"spendControlReached":false)"),
              std::nullopt);
    EXPECT_EQ(allowance(R"("ordinaryUsageAllowed":true,)", R"(,"spendControlReached":true)"),
              UsageAllowance{.ordinaryUsageAllowed = true});
    EXPECT_EQ(allowance("", R"(,"spendControlReached":true)"),
              UsageAllowance{.reachedType = "spend_control_reached"});
    EXPECT_EQ(allowance(R"("ordinaryUsageAllowed":false,)",
                        R"(,"spendControlReached":true,"rateLimitReachedType":"x")"),
              (UsageAllowance{.ordinaryUsageAllowed = false, .reachedType = "x"}));
    EXPECT_EQ(allowance(R"("rateLimitResetCredits":{"availableCount":"2","credits":null},)", ""),
              UsageAllowance{.bankedResets = 2});
    for (const char* count : {"-1", "1e300"}) {
        EXPECT_EQ(
            allowance(R"("rateLimitResetCredits":{"availableCount":)" + std::string(count) + "},",
                      ""),
            std::nullopt);
    }
}

TEST(CodexReading, TellsMissingQuotasFromMissingWindows) {
    for (const char* result : {"{}", R"({"rateLimits":null})", R"({"rateLimits":[]})",
                               R"({"nested":{"rateLimits":{"primary":{"usedPercent":1}}}})"}) {
        EXPECT_EQ(failure(std::string(R"({"id":3,"result":)") + result + "}"),
                  UsageProviderError(Kind::codexNoQuotas))
            << result;
    }
    for (const char* rateLimits :
         {"{}", R"({"primary":null,"secondary":[]})", R"({"primary":{"usedPercent":{}}})",
          R"({"tertiary":{"usedPercent":1}})", R"({"credits":{"usedPercent":1}})"}) {
        EXPECT_EQ(failure(limits(rateLimits)), UsageProviderError(Kind::codexNoWindows))
            << rateLimits;
    }
}

// A document nested a million levels deep used to be a way to exhaust a parser's stack or memory.
TEST(CodexReading, SurvivesHostileNesting) {
    for (const char* open : {"[", "{\"email\":", "{\"result\":"}) {
        std::string nested;
        for (int depth = 0; depth < 1'000'000; ++depth) {
            nested += open;
        }
        EXPECT_EQ(failure(R"({"id":3,"result":)" + nested + "\n" + someLimits), std::nullopt);
    }
}

TEST(LineBuffer, GivesTheSameLinesHoweverTheBytesAreSplit) {
    const std::string stream = "first\n\nsecond line\r\nunfinished";
    for (std::size_t first = 0; first <= stream.size(); ++first) {
        for (std::size_t second = first; second <= stream.size(); ++second) {
            LineBuffer buffer;
            std::vector<std::string> lines;
            const auto take = [&](std::string_view line) { lines.emplace_back(line); };
            buffer.append(std::string_view(stream).substr(0, first), take);
            buffer.append(std::string_view(stream).substr(first, second - first), take);
            EXPECT_TRUE(buffer.append(std::string_view(stream).substr(second), take));
            ASSERT_THAT(lines, ElementsAre("first", "", "second line\r"));
        }
    }
}

TEST(LineBuffer, RefusesALineWithoutEnd) {
    LineBuffer buffer;
    const std::string chunk(1u << 20, 'x');
    const auto take = [](std::string_view) { FAIL(); };
    std::size_t taken = 0;
    while (buffer.append(chunk, take)) {
        taken += chunk.size();
        ASSERT_LE(taken, LineBuffer::maximumLine);
    }
    EXPECT_EQ(taken, LineBuffer::maximumLine);
}

} // namespace
} // namespace vellmark
