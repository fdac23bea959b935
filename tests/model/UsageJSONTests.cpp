#include "model/UsageJSON.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

namespace vellmark {

namespace {

using testing::HasSubstr;

Instant at(double seconds) {
    return Instant(Seconds(seconds));
}

/// A snapshot with every field set.
AgentUsageSnapshot fullSnapshot() {
    AgentUsageSnapshot snapshot;
    snapshot.id = AgentProviderID::claude();
    snapshot.accountLabel = "someone@example.org";
    snapshot.plan = "Claude Max";
    snapshot.windows = {{"session", 11, 300.0, at(786000000.25)}, {"weekly", 42.5, {}, {}}};
    snapshot.balances = {{"credits", 16.8, "USD", 20.0}, {"gift", -0.5, "EUR", {}}};
    snapshot.credit = CreditInfo::line("$3.20 / $50.00 spent");
    snapshot.notes = {{SnapshotNote::ClaudeEndMarkerMissing{"v"}},
                      {SnapshotNote::ClaudeTiming{1, 2, 3, 4, 5, 6}},
                      {SnapshotNote::ReadingWay{"query", 412}},
                      {SnapshotNote::AgeNotTold{"2.1.235"}},
                      {SnapshotNote::ReadingCosts{}},
                      {SnapshotNote::AgentSays{"Usage credits are off"}}};
    snapshot.source = SnapshotSource::stale;
    snapshot.updatedAt = at(785999999.125);
    snapshot.isIncomplete = true;
    snapshot.mayBeNewer = true;
    snapshot.windows[1].label = "Opus";
    snapshot.windows[1].readAt = at(785999000);
    snapshot.allowance = UsageAllowance{false, "weekly", 2, at(786000500)};
    snapshot.error = UsageProviderError::launchFailed("claude", "no such file");
    return snapshot;
}

template<typename Value>
std::string decodingFailure(const std::string& text, Value value) {
    try {
        fromJSON(parsedJSON(text), value);
    } catch (const JSONDecodingError& error) {
        return error.what();
    }
    return "";
}

std::string creditFailure(const std::string& text) {
    return decodingFailure(text, CreditInfo{});
}

std::string errorFailure(const std::string& text) {
    return decodingFailure(text, UsageProviderError::other(""));
}

std::string sampleFailure(const std::string& member, const std::string& value) {
    JSON sample = toJSON(
        UsageHistorySample{UUID::make(), AgentProviderID::codex(), "weekly", at(1), 2, at(3)});
    sample[member] = JSON::parse(value);
    return decodingFailure(serialized(sample), UsageHistorySample{});
}

} // namespace

TEST(UsageJSON, HasTheDocumentedForm) {
    EXPECT_EQ(serialized(toJSON(fullSnapshot())) + "\n",
              tests::contentOf(tests::sourceFile("tests/model/snapshot.json")));
}

TEST(UsageJSON, ComesBackAsItWent) {
    AgentUsageSnapshot bare;
    bare.id = AgentProviderID("agent of tomorrow");
    bare.credit = CreditInfo::available();
    const std::vector snapshots{fullSnapshot(), bare};
    EXPECT_EQ(snapshotsFromDocument(snapshotsDocument(snapshots)), snapshots);

    for (const UsageHistorySample& sample :
         {UsageHistorySample{UUID::make(), AgentProviderID::codex(), "weekly", at(-1.5), 99.9, {}},
          UsageHistorySample{UUID::make(), AgentProviderID("x"), "", at(0), 0, at(7.25)}}) {
        UsageHistorySample read;
        fromJSON(parsedJSON(serialized(toJSON(sample))), read);
        EXPECT_EQ(read, sample);
    }
}

TEST(UsageJSON, EveryErrorComesBackAsItWent) {
    using Error = UsageProviderError;
    for (const Error& error :
         {Error::executableMissing("a"), Error::launchFailed("a", "b"),
          Error::claudeReadFailed(-7, "a"), Error::timeout("a"), Error::codexReadFailed(""),
          Error::claudeNoQuotasDiagnosed("a"), Error::claudePageError("a"),
          Error::antigravityReadFailed("ä\n\"\\"), Error::other("a"),
          Error(Error::Kind::claudeNotLoggedIn), Error(Error::Kind::antigravityNoQuotas),
          Error::claudeOptionRefused("--a")}) {
        Error read = Error::other("");
        fromJSON(parsedJSON(serialized(toJSON(error))), read);
        EXPECT_EQ(read, error) << error.what();
    }
    EXPECT_EQ(serialized(toJSON(Error::claudeReadFailed(3, "x")), -1),
              R"({"claudeReadFailed":{"_0":3,"_1":"x"}})");
    EXPECT_EQ(serialized(toJSON(Error(Error::Kind::codexNoWindows)), -1),
              R"({"codexNoWindows":{}})");
}

TEST(UsageJSON, WhatJSONCannotWriteStaysReadable) {
    const double infinity = std::numeric_limits<double>::infinity();
    const UsageWindow window{"bad \xFF name", std::nan(""), infinity, at(-infinity)};
    UsageWindow read;
    fromJSON(parsedJSON(serialized(toJSON(window))), read);
    EXPECT_EQ(read.id, "bad \xEF\xBF\xBD name");
    EXPECT_EQ(read.usedPercent, 0);
    EXPECT_EQ(read.windowDurationMinutes, std::numeric_limits<double>::max());
}

TEST(UsageJSON, EnumerationsHaveExactlyOneKnownCase) {
    const std::string wrongNumber = "Invalid number of keys found, expected one.";
    EXPECT_EQ(creditFailure(R"({"available":{},"line":{"_0":"x"}})"), wrongNumber);
    EXPECT_EQ(creditFailure("{}"), wrongNumber);
    EXPECT_THAT(creditFailure(R"({"bonus":{}})"), HasSubstr("data corrupted: unknown case"));
    EXPECT_THAT(creditFailure(R"({"available":null})"), HasSubstr("expected an object"));
    EXPECT_THAT(creditFailure(R"({"line":{}})"), HasSubstr(".line._0: missing"));
    EXPECT_THAT(errorFailure(R"({"launchFailed":{"_0":"a"}})"), HasSubstr("._1: missing"));
    for (const char* noInteger : {"1.5", "18446744073709551615"}) {
        EXPECT_THAT(
            errorFailure(R"({"claudeReadFailed":{"_1":"","_0":)" + std::string(noInteger) + "}}"),
            HasSubstr("expected an integer"));
    }
    EXPECT_EQ(errorFailure(R"({"claudeReadFailed":{"_0":2.0,"_1":""}})"), "");
}

TEST(UsageJSON, ValuesHaveTheirTypeAndNoOther) {
    for (const char* notADate : {R"("2025-06-01T14:00:00Z")", "true", "{}", "[]", "null"}) {
        EXPECT_NE(sampleFailure("capturedAt", notADate), "") << notADate;
    }
    EXPECT_EQ(sampleFailure("capturedAt", "5"), "");
    EXPECT_EQ(sampleFailure("resetsAt", "null"), "");
    EXPECT_NE(sampleFailure("resetsAt", R"("1")"), "");
    EXPECT_NE(sampleFailure("usedPercent", "false"), "");
    EXPECT_NE(sampleFailure("provider", R"({"rawValue":"codex"})"), "");
    EXPECT_NE(sampleFailure("id", R"("123e4567-e89b-12d3-a456-42661417400g")"), "");
    EXPECT_EQ(sampleFailure("id", R"("123e4567-e89b-12d3-a456-426614174000")"), "");
    EXPECT_EQ(sampleFailure("unknown", "[1]"), "");
}

TEST(UsageJSON, FailuresNameThePlace) {
    auto json = JSON::parse(snapshotsDocument({fullSnapshot(), fullSnapshot()}));
    json[1]["windows"][0]["resetsAt"] = "today";
    try {
        snapshotsFromDocument(serialized(json));
        FAIL();
    } catch (const JSONDecodingError& error) {
        EXPECT_STREQ(error.what(), "[1].windows[0].resetsAt: expected a number");
    }
}

TEST(UsageJSON, HostileDocumentsAreRefused) {
    const std::string document = snapshotsDocument({fullSnapshot()});
    for (const std::string& text : {std::string(2000000, '['), std::string("[1e999]"),
                                    "{\"a\":" + document + "}", document + document}) {
        EXPECT_THROW(snapshotsFromDocument(text), JSONDecodingError) << text.substr(0, 20);
    }
    for (std::size_t length = 0; length < document.size(); ++length) {
        EXPECT_THROW(snapshotsFromDocument(document.substr(0, length)), JSONDecodingError);
    }
}

TEST(UUID, HasOneTextAndReadsEitherCase) {
    const UUID made = UUID::make();
    EXPECT_NE(made, UUID::make());
    EXPECT_EQ(made.text()[14], '4');
    EXPECT_EQ(UUID::parse(made.text()), made);
    EXPECT_EQ(UUID::parse("123e4567-e89b-12d3-a456-426614174000")->text(),
              "123E4567-E89B-12D3-A456-426614174000");
    for (const char* bad :
         {"", "123e4567e89b12d3a456426614174000xxxx", "{123e4567-e89b-12d3-a456-42661417400}",
          "123e4567-e89b-12d3-a456-4266141740001"}) {
        EXPECT_FALSE(UUID::parse(bad)) << bad;
    }
}

} // namespace vellmark
