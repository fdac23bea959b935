#include "probes/AgentScenario.h"
#include "probes/claude/ClaudeDiagnostics.h"
#include "probes/claude/ClaudeSessionInterpretation.h"
#include "probes/claude/ClaudeSessionScript.h"
#include "support/ProjectDirectories.h"

namespace vellmark::tests {
namespace {

using Kind = UsageProviderError::Kind;

const Instant now{Seconds(785000000)};
const std::string page = "Current session\n11% used\n";
const std::string pageError = "Failed to load usage data\n";

/// The reason why a session is no reading of one window; absent when it is.
std::optional<UsageProviderError> reason(const std::string& capture, const ClaudeSessionEnd& end,
                                         std::vector<SnapshotNote> notes = {}) {
    return errorOf([&] {
        const auto snapshot = interpretClaudeSession(ClaudeScreen(capture), end, now);
        EXPECT_EQ(snapshot.updatedAt, now);
        EXPECT_EQ(snapshot.windows.size(), 1u) << capture;
        EXPECT_EQ(snapshot.notes, notes) << capture;
    });
}

constexpr ClaudeSessionEnd atTheEnd{20, false};
constexpr ClaudeSessionEnd cutOff{15, true};
constexpr ClaudeSessionEnd tooMuch{15, true, true};

TEST(ClaudeSession, IsAReadingWhereItShowsAWindow) {
    for (const auto& end : {ClaudeSessionEnd{0, false}, {143, false}, cutOff, tooMuch}) {
        EXPECT_EQ(reason(page, end), std::nullopt) << end.status;
    }
    for (const char* ending :
         {"$1 / $2 spent\n", "What's contributing to your usage?\n…\n",
          "What's contributing to your limits usage?\n…\n", "Usage credits\nnone\n"}) {
        EXPECT_EQ(reason(page + ending, atTheEnd), std::nullopt) << ending;
    }
    EXPECT_EQ(reason(page + "Page 3\n", atTheEnd, {{SnapshotNote::ClaudeEndMarkerMissing{"Page"}}}),
              std::nullopt);
}

TEST(ClaudeSession, HasAReasonWhereItIsNoReading) {
    using Error = UsageProviderError;
    const auto timeout = Error::timeout("Claude");
    const std::tuple<std::string, ClaudeSessionEnd, Error> cases[] = {
        {page + pageError, {128, false}, Error(Kind::claudeNotLoggedIn)},
        {page + pageError, {125, false}, Error::claudePageError("Failed to load usage")},
        {"\033[31mno such\033[0m option",
         {125, false},
         Error::claudeReadFailed(125, "no such option")},
        {"error: unknown option '--restricted'\r\n",
         {125, false},
         Error::claudeOptionRefused("--restricted")},
        {std::string(600, 'x'), {1, false}, Error::claudeReadFailed(1, std::string(500, 'x'))},
        // The page itself says that the service refused.
        {"Couldn't refresh usage data\n", atTheEnd,
         Error::claudeServiceRefused("Couldn't refresh usage data")},
        {"Refreshing usage…\n", cutOff, timeout},
        {"Loading", cutOff, timeout},
        {"Loading", tooMuch, Error::claudeReadFailed(15, "too much output")},
        // The script's own ends: no prompt, no blocks, gone within the usage screen.
        {"", {124, false}, timeout},
        {"", {126, false}, timeout},
        {"", {127, false}, timeout},
        {"", {0, false}, Error(Kind::claudeNoQuotas)},
        {page + "\xff", atTheEnd, Error(Kind::claudeNoQuotas)},
    };
    for (const auto& [capture, end, expected] : cases) {
        EXPECT_EQ(reason(capture, end), expected) << capture << end.status;
    }
}

TEST(ClaudeTiming, TellsWhereTheTimeWent) {
    const ClaudeSessionTimes times{Seconds(9.5), Seconds(8.2), Seconds(0.004)};
    const auto note =
        claudeTimingNote(ClaudeScreen("VELLMARK_TIMING 1100 1700 4600 5800\n"), times);
    ASSERT_TRUE(note);
    EXPECT_EQ(*note, (SnapshotNote{SnapshotNote::ClaudeTiming{1304, 1100, 600, 2900, 1200, 2400}}));
    // A clock that was set back gives no negative spans.
    const auto odd = claudeTimingNote(ClaudeScreen("VELLMARK_TIMING 1100 700 600 9800\n"), times);
    ASSERT_TRUE(odd);
    EXPECT_EQ(*odd, (SnapshotNote{SnapshotNote::ClaudeTiming{1304, 1100, 0, 0, 9200, 0}}));
    EXPECT_EQ(claudeTimingNote(ClaudeScreen(page), times), std::nullopt);
}

TEST(ClaudeDiagnostics, KeepThePageWithoutThePerson) {
    const std::pair<const char*, const char*> cases[] = {
        {"  Email: name@example.org\r\n", "Email: <redacted>"},
        {"ORGANIZATION: Example Ltd", "Organization: <redacted>"},
        {"Session ID: 3f6b", "Session ID: <redacted>"},
        {"session name:x", "Session name: <redacted>"},
        {"cwd: /home/someone/secret", "cwd: <redacted>"},
        {"Login method: Claude Max Account", "Login method: <redacted>"},
        {"Emails sent: 3", "Emails sent: 3"},
        {"write to some.one+tag@mail.example.co.uk or b@c.de.",
         "write to <redacted> or <redacted>."},
        {"in /home/someone/work and /home/someone", "in ~/work and ~"},
        {"a\rOrganization: Example Ltd\rb", "a\nOrganization: <redacted>\nb"},
        {"API error 401\r\nAuthorization: Bearer abc\r\n",
         "API error 401\nAuthorization: Bearer <redacted>"},
        {"Current session\r\n\r\n54% used\r\n", "Current session\n54% used"},
    };
    for (const auto& [screen, expected] : cases) {
        EXPECT_EQ(redactedClaudeScreen(screen, "/home/someone"), expected);
    }
}

TEST(ClaudeDiagnostics, KeepTheLastCharacters) {
    std::string screen = "the beginning\n";
    for (int line = 0; line < 20000; ++line) {
        screen += "ü line " + std::to_string(line) + "\n";
    }
    const std::string kept = redactedClaudeScreen(screen, "/home/someone");
    EXPECT_TRUE(kept.ends_with("line 19999"));
    EXPECT_GT(kept.size(), 12000u) << "umlauts have two bytes";
    EXPECT_LT(kept.size(), 13500u);
}

TEST(ClaudeDiagnostics, AreReadableByTheOwnerAlone) {
    const TemporaryDirectory directory;
    const auto file = writeClaudeDiagnostics("Email: a@b.ch\nx", "/home/someone",
                                             directory / "Vellmark/Diagnostics", "last.txt");
    ASSERT_EQ(file, directory / "Vellmark/Diagnostics/last.txt");
    EXPECT_EQ(fs::status(*file).permissions(), fs::perms(0600));
    EXPECT_EQ(contentOf(*file), "Email: <redacted>\nx");
}

TEST(ClaudeSessionScript, IsTheTextThatTheCLIWasTriedWith) {
    EXPECT_EQ(claudeSessionScript(),
              contentOf(sourceFile("tests/probes/claude/data/session-script.exp")));
}

TEST(ClaudeSessionScript, TakesEveryWaitFromTheTimings) {
    const ClaudeSessionTimings timings{101, 102, 103, 104, 105, 106, 107,
                                       108, 109, 110, 111, 112, 113};
    const std::string script = claudeSessionScript(timings);
    for (int number = 101; number <= 113; ++number) {
        const std::string text = std::to_string(number);
        EXPECT_NE(script.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(script.find('@'), std::string::npos);
}

} // namespace
} // namespace vellmark::tests
