#include "AgentNames.h"
#include "presentation/StatusFormats.h"
#include "presentation/UsageMetrics.h"
#include "support/Matchers.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace vellmark::tests {
namespace {

using nlohmann::json;

constexpr Seconds interval{300};
const StatusPrograms programs{.terminal = "/opt/v m/vellmark",
                              .desktop = "/opt/v m/vellmark-desktop"};

StatusReport reportOf(const UsageState& state, const StatusChoice& choice = {},
                      const Localization& words = english) {
    return statusReport(state, choice, interval, noon, words);
}

AgentUsageSnapshot aged(AgentUsageSnapshot snapshot, double minutes) {
    snapshot.updatedAt = noon - Seconds(minutes * 60);
    return snapshot;
}

/// Everything that is written for one of the programs to understand.
const std::string hostile = "a<b>&'\"#[fg=red]#(touch x)#{pid}%{F#f00}%{A1:x:}| bash=x"
                            "\n---\n-- y\033[31m\x01 `id` $(id) \\w :bolt: {left}";

UsageState hostileState(double minutesLeft = 30) {
    UsageWindow window = tests::window("limit:" + hostile + "|5h", 97, 300, minutesLeft);
    window.label = hostile;
    AgentUsageSnapshot snapshot = live(codex, {window});
    snapshot.accountLabel = hostile;
    snapshot.plan = hostile;
    AgentUsageSnapshot broken = failed(claude, UsageProviderError::other(hostile));
    return stateOf({snapshot, broken});
}

std::vector<std::pair<std::string, UsageState>> states() {
    const auto timeout = UsageProviderError::timeout("Codex");
    return {
        {"healthy", stateOf({live(claude, {window("session", 20, 300, 150),
                                           window("weekly", 30, 10'080, 5'000)})})},
        {"running low, of three",
         stateOf({live(codex, {window("session", 10, 300, 150)}),
                  live(claude, {window("session", 60, 300, 150)}),
                  live(antigravity, {window("pool:Gemini Models|5h", 20, 300, 87)})})},
        {"critical and old", stateOf({aged(live(claude, {window("session", 96, 300, 87)}), 34)})},
        {"not read again", stateOf({failed(codex, timeout, {window("session", 96, 300, 87)})})},
        {"used up", stateOf({live(claude, {window("session", 100, 300, 87),
                                           window("weekly", 61, 10'080, 5'000)})})},
        {"due", stateOf({aged(live(claude, {window("session", 96, 300, -3)}), 8)})},
        {"unreadable", stateOf({failed(codex, timeout)})},
        {"no agents", stateOf({})},
        {"hostile", hostileState()},
        {"hostile and due", hostileState(-1)},
    };
}

/// The outputs as they were looked at and found good are in tests/presentation/status-formats, a
/// file for a format. With VELLMARK_WRITE_PAGES set they are written instead of compared.
void expectAsItWas(const std::string& name, const std::string& text) {
    const std::string file = sourceFile("tests/presentation/status-formats/" + name + ".txt");
    if (std::getenv("VELLMARK_WRITE_PAGES") != nullptr) {
        writeFile(file, text);
    } else {
        EXPECT_EQ(text, contentOf(file)) << file;
    }
}

TEST(StatusFormats, LookAsTheyDid) {
    const auto all = states();
    const UsageState& low = all[1].second;
    for (const std::string& name : statusFormatNames()) {
        const StatusFormat format = *statusFormatNamed(name);
        std::string text;
        for (const auto& [title, state] : all) {
            text += "=== " + title + "\n" + statusOutput(reportOf(state), format, programs);
        }
        text += "=== in German\n" + statusOutput(reportOf(low, {}, german), format, programs);
        text += "=== followed\n" + statusStreamHead(format) +
                statusStreamOutput(reportOf(low), format, programs);
        expectAsItWas(name, text);
    }
}

std::string without(const std::string& text, const std::string& pattern) {
    return std::regex_replace(text, std::regex(pattern), "");
}

/// What comes from outside is never more than text.
void expectHarmless(const StatusReport& report) {
    for (const std::string& name : statusFormatNames()) {
        const std::string text = statusOutput(report, *statusFormatNamed(name), programs);
        for (const char character : text) {
            EXPECT_TRUE(character == '\n' || static_cast<unsigned char>(character) >= ' ') << name;
        }
    }
    const json bar = json::parse(statusOutput(report, StatusFormat::waybar));
    for (const std::string key : {"text", "tooltip"}) {
        const std::string markup = bar[key];
        EXPECT_THAT(without(without(markup, "</?b>"), "&(amp|lt|gt|quot|apos);"),
                    Not(ContainsRegex("[<>&\"']")));
    }
    EXPECT_EQ(json::parse(statusOutput(report, StatusFormat::i3bar))["markup"], "none");
    EXPECT_THAT(without(statusOutput(report, StatusFormat::polybar), "%\\{F(#[0-9a-f]{6}|-)\\}"),
                Not(HasSubstr("%{")));
    EXPECT_THAT(without(without(statusOutput(report, StatusFormat::tmux),
                                "^#\\[(fg=red|dim)\\]|#\\[default\\]\n$"),
                        "##"),
                Not(HasSubstr("#")));
    const std::string menu = statusOutput(report, StatusFormat::swiftbar, programs);
    for (const std::string_view line : nonEmptyLines(menu)) {
        EXPECT_EQ(std::ranges::count(line, '|'), line == "---" ? 0 : 1) << line;
        EXPECT_TRUE(line == "---" || !line.starts_with('-')) << line;
    }
    const StatusTemplate all("{account}{plan}{window}{short-window}{line}");
    EXPECT_THAT(all.filled(report, StatusFormat::starship), Not(ContainsRegex("[$`\\\\!]")));
    EXPECT_THAT(without(all.filled(report, StatusFormat::tmux), "##"), Not(HasSubstr("#")));
    EXPECT_EQ(escapedFor(StatusFormat::swiftbar, "  --x|y"), "–-x¦y");
}

TEST(StatusFormats, KeepTextsFromOutsideHarmless) {
    expectHarmless(reportOf(hostileState()));
    // The line itself tells the window here.
    const StatusReport due = reportOf(hostileState(-1));
    EXPECT_THAT(statusOutput(due, StatusFormat::text), HasSubstr("#(touch x)"));
    expectHarmless(due);
}

TEST(StatusFormats, ChooseTheWindowAndItsHealth) {
    const UsageState state = stateOf(
        {live(codex, {window("session", 10, 300, 150)}),
         live(claude, {window("session", 60, 300, 150), window("weekly", 100, 10'080, 5'000)})});
    EXPECT_EQ(reportOf(state).window->windowID, "weekly") << "what is used up binds";
    EXPECT_EQ(reportOf(state).health, UsageHealth::critical);
    EXPECT_EQ(reportOf(state, {.agent = codex}).window->agent, codex);
    EXPECT_EQ(reportOf(state, {.agent = codex}).health, UsageHealth::healthy);
    const StatusReport held = reportOf(state, {.agent = claude, .window = "session"});
    EXPECT_EQ(held.health, UsageHealth::unavailable) << "the week keeps it from being used";
    EXPECT_EQ(held.window->obstacle, "Waits for the week");
    EXPECT_EQ(held.agents.at(0).rows.size(), 1u);
    // Of both agents' sessions only one can be used.
    EXPECT_EQ(reportOf(state, {.window = "session"}).window->agent, codex);
    const StatusReport none = reportOf(state, {.window = "fable-weekly"});
    EXPECT_FALSE(none.window);
    EXPECT_EQ(none.health, UsageHealth::unavailable);
    EXPECT_THAT(statusOutput(none, StatusFormat::i3blocks), HasSubstr("Unavailable"));
}

/// Two readings in a row are missing.
TEST(StatusFormats, TellTheAgeOfOldFigures) {
    const UsageWindow session = window("session", 60, 300, 150);
    const UsageState recent = stateOf({aged(live(claude, {session}), 10)});
    const UsageState old = stateOf({aged(live(claude, {session}), 10.1)});
    for (const std::string& name : statusFormatNames()) {
        const StatusFormat format = *statusFormatNamed(name);
        const char* said = format == StatusFormat::json ? "\"isOld\": true" : "10 min old";
        EXPECT_THAT(statusOutput(reportOf(recent), format), Not(HasSubstr(said))) << name;
        EXPECT_THAT(statusOutput(reportOf(old), format), HasSubstr(said)) << name;
        EXPECT_THAT(statusOutput(statusReport(old, {}, Seconds(1800), noon, english), format),
                    Not(HasSubstr(said)))
            << name;
    }
}

/// What is not made for a format is not missed in it, and missed in the others.
TEST(StatusFormats, NeedTheAgentsOnlyWhereTheyListThem) {
    std::map<std::string, bool> isMissed;
    for (const auto& [name, state] : states()) {
        const StatusReport whole = reportOf(state);
        const StatusReport brief = reportOf(state, {.listsAgents = false});
        for (const std::string& format : statusFormatNames()) {
            isMissed[format] |= statusOutput(brief, *statusFormatNamed(format)) !=
                                statusOutput(whole, *statusFormatNamed(format));
        }
        for (const std::string& field : StatusTemplate::fieldNames()) {
            const StatusTemplate one("{" + field + "}");
            EXPECT_EQ(one.filled(brief, StatusFormat::text), one.filled(whole, StatusFormat::text))
                << name << ' ' << field;
        }
    }
    for (const auto& [format, isSo] : isMissed) {
        EXPECT_EQ(isSo, listsAgents(*statusFormatNamed(format))) << format;
    }
}

TEST(StatusFormats, FillTemplates) {
    const StatusReport report =
        reportOf(stateOf({live(claude, {window("session", 60, 300, 150)})}));
    const auto filled = [&](const char* text) {
        return StatusTemplate(text).filled(report, StatusFormat::text);
    };
    EXPECT_EQ(filled("{short-agent}: {left}/{used} {{{reset-in}}} {class}\\n{age}."),
              "Claude: 40%/60% {2 h 30 min} attention\n.");
    EXPECT_EQ(StatusTemplate("[{left}]").filled(reportOf(stateOf({})), StatusFormat::text), "[]");
    const auto fault = [](const char* text) -> std::string {
        try {
            const StatusTemplate made(text);
        } catch (const StatusTemplate::Fault& found) {
            return "fault " + found.field;
        }
        return "none";
    };
    EXPECT_EQ(fault("{lef}"), "fault lef");
    EXPECT_EQ(fault("{left"), "fault ");
    EXPECT_EQ(fault("left}"), "fault ");
}

TEST(UsageMetrics, TellWhatIsKnownAndNothingElse) {
    AgentUsageSnapshot known =
        live(claude, {window("session", 80, 300, 150), window("weekly", 104, 10'080, 2'580),
                      // After a reset nobody knows what is left.
                      window("gone", 10, 300, -5), windowWithoutReset("odd \"window\"\\\n", 12.5)});
    known.plan = "Max 20x";
    known.accountLabel = "me@example.org";
    UsageState state =
        stateOf({known, aged(live(codex, {window("session", 1, 300, 60)}), 3'601 / 60.0)});
    state.snapshots.emplace_back().id = antigravity;
    const std::string text = UsageMetrics::text(state, noon, false);
    expectAsItWas("openmetrics", replacedText(text, VELLMARK_VERSION, "1.0"));
    EXPECT_THAT(text, Not(HasSubstr("example.org")));
    EXPECT_THAT(UsageMetrics::text(state, noon, true),
                HasSubstr("plan=\"Max 20x\",account=\"me@example.org\"} 1.0\n"));
}

} // namespace
} // namespace vellmark::tests
