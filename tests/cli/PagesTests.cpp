#include "cli/CommandTest.h"
#include "cli/DisplayWidth.h"
#include "cli/UsageRefresh.h"
#include "cli/UsageView.h"
#include "presentation/UsageStateMaker.h"
#include "store/ActivityLog.h"
#include "support/HistoryDocument.h"
#include "support/TestTerminal.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>
#include <span>

namespace vellmark::tests {
namespace {

constexpr int widths[] = {40, 60, 80, 120, 200};
constexpr const char* now = "2025-11-20T13:48:00Z";
constexpr double day = 86'400;
/// 10 January 2026, 13:48 UTC.
constexpr Instant newYear = noon + Seconds(51 * day);

/// The pages as they were looked at and found good are in tests/cli/pages, one file for a page and
/// a language. With VELLMARK_WRITE_PAGES set they are written instead of compared.
class Pages : public CommandTest {
protected:
    using Draw = std::function<std::string(const std::string& language, int columns)>;

    static void compare(const std::string& name, const Draw& draw,
                        std::span<const int> columnCounts = widths) {
        for (const std::string_view code : Localization::languages()) {
            const std::string language(code);
            std::string pages;
            for (const int columns : columnCounts) {
                std::string page = draw(language, columns);
                for (const std::string_view line : nonEmptyLines(page)) {
                    EXPECT_LE(displayWidth(line), columns) << name << ", " << language << line;
                }
                pages += "=== " + std::to_string(columns) + " columns\n" + page;
            }
            const std::string file = sourceFile("tests/cli/pages/" + name + "." + language);
            if (std::getenv("VELLMARK_WRITE_PAGES") != nullptr) {
                writeFile(file, pages);
            } else {
                EXPECT_EQ(pages, contentOf(file)) << file;
            }
        }
    }

    static std::string localeOf(const std::string& language) {
        static const std::map<std::string, std::string> regions{
            {"de", "DE"}, {"en", "US"}, {"fr", "FR"}, {"it", "IT"}, {"es", "ES"}};
        return language + "_" + regions.at(language);
    }

    std::string page(std::vector<std::string> arguments, const std::string& language, int columns) {
        ProgramRun::Setting wanted = setting(std::move(arguments), columns);
        wanted.environment = {
            {"LANG", localeOf(language) + ".UTF-8"}, {"TZ", "UTC"}, {"NO_COLOR", "1"}};
        const std::string text = ProgramRun::of(wanted).output;
        // The progress line, which has been removed again.
        const std::size_t start = text.rfind("\r\033[K");
        return replacedText(start == std::string::npos ? text : text.substr(start + 4), "\r", "");
    }
};

/// An agent with many windows and a long account, one whose figures are old, and one that cannot be
/// read at all.
UsageState manySorts() {
    AgentUsageSnapshot claude =
        live(AgentProviderID::claude(),
             {window("session", 54, 300, 132), window("weekly", 71, 10'080, 2'580),
              window("fable-weekly", 84, 10'080, 2'580)});
    claude.plan = "Max 20x";
    claude.accountLabel = "somebody.with.a.long.name@department.example.org";
    claude.credit = CreditInfo{CreditInfo::Line{"$3.20 / $20.00 spent"}};
    AgentUsageSnapshot antigravity =
        failed(AgentProviderID::antigravity(),
               UsageProviderError(UsageProviderError::Kind::antigravityNoQuotas),
               {window("pool:Gemini Models|5h", 93, 300, 86),
                window("pool:Claude and GPT models|weekly", 12, 10'080, 6'420)});
    UsageState state = stateOf(
        {claude, antigravity,
         failed(AgentProviderID::codex(), UsageProviderError::executableMissing("Codex CLI"))});
    state.lastSuccess[AgentProviderID::antigravity()] = noon - Seconds(47 * 60);
    return state;
}

TEST_F(Pages, Usage) {
    compare("usage", [](const std::string& language, int columns) {
        const Localization words(language, localeOf(language), "UTC");
        const TestTerminal terminal(columns);
        const TerminalOutput output(terminal.descriptor(),
                                    {{"LANG", "en_US.UTF-8"}, {"NO_COLOR", "1"}});
        return UsageView(output, words).text(agentBlocks(manySorts(), noon, words));
    });
}

TEST_F(Pages, Status) {
    const auto file = sandbox.machine().home / "snapshots.json";
    writeFile(file, snapshotsDocument(manySorts().snapshots));
    compare("status", [&](const std::string& language, int columns) {
        return page({"status", "--snapshots", file.string(), "--now", now}, language, columns);
    });
}

TEST_F(Pages, History) {
    std::vector<UsageHistorySample> samples;
    const auto record = [&](const char* provider, const char* id, double days, double period) {
        for (double ago = days; ago >= 0; ago -= 0.05) {
            samples.push_back(historySample(AgentProviderID(provider), id,
                                            newYear - Seconds(ago * day),
                                            95 * std::fmod(days - ago, period) / period));
        }
    };
    record("codex", "session", 26, 0.9);
    record("codex", "limit:review|session", 12, 3);
    record("codex", "limit:review|primary", 12, 4);
    record("claude", "fable-weekly", 30, 7);
    record("antigravity", "pool:Claude and GPT models|weekly", 6, 5);
    writeFile(support / "usage-history.json", historyDocument(samples));
    // Two windows that the agent itself gives one name.
    AgentUsageSnapshot codex =
        live(AgentProviderID::codex(), {window("limit:review|session", 1, 300, 60),
                                        window("limit:review|primary", 1, 300, 60)});
    for (UsageWindow& one : codex.windows) {
        one.label = "Code review";
    }
    writeFile(support / "last-snapshots.json", snapshotsDocument({codex}));
    compare("history", [&](const std::string& language, int columns) {
        return page({"history", "--now", "2026-01-10T13:48:00Z"}, language, columns);
    });
}

TEST_F(Pages, Log) {
    fs::create_directories(support);
    ActivityLog log(support / "activity.log");
    using Level = ActivityEntry::Level;
    const ActivityEntry entries[] = {
        {Level::info, std::nullopt, "Refresh started (manual)", noon},
        {Level::notice, AgentProviderID::codex(), "Trying again in 20 s after a time-out",
         noon + Seconds(3)},
        {Level::error, AgentProviderID::claude(),
         "Claude Code could not load its usage page (“rate limit, please try again in a little "
         "while or have a look at the status page”).",
         noon + Seconds(9)},
    };
    for (const ActivityEntry& entry : entries) {
        ASSERT_FALSE(log.append(entry, TimeZone::utc()));
    }
    compare("log", [&](const std::string& language, int columns) {
        return page({"log", "--days", "100000"}, language, columns);
    });
}

// Each page asks the agents anew.
TEST_F(Pages, Agents) {
    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    constexpr int narrowAndUsual[] = {40, 80};
    compare(
        "agents",
        [&](const std::string& language, int columns) {
            return page({"agents"}, language, columns);
        },
        narrowAndUsual);
}

TEST_F(Pages, Help) {
    compare("help", [&](const std::string& language, int columns) {
        return page({"help"}, language, columns) + page({"inspect", "--help"}, language, columns);
    });
}

TEST_F(Pages, ALocaleWithoutUTF8GetsPlainShapesOfTheSameWidth) {
    const Localization words("en", "en_US", "UTC");
    for (const int columns : widths) {
        const TestTerminal terminal(columns);
        const auto text = [&](const char* locale) {
            const TerminalOutput output(terminal.descriptor(),
                                        {{"LC_ALL", locale}, {"LANG", "en_US.UTF-8"}});
            return output.shown(
                stripANSI(UsageView(output, words).text(agentBlocks(manySorts(), noon, words))));
        };
        const std::string plain = text("C");
        EXPECT_TRUE(std::ranges::all_of(plain, [](char c) { return c > 0; })) << plain;
        for (const std::string_view line : nonEmptyLines(plain)) {
            EXPECT_LE(displayWidth(line), columns) << line;
        }
        EXPECT_THAT(plain, AllOf(HasSubstr("####"), HasSubstr("|"), HasSubstr("----")));
        EXPECT_THAT(text("C.utf8"), HasSubstr("████"));
    }
}

} // namespace
} // namespace vellmark::tests
