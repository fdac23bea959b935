#include "screenshots/SampleReport.h"

#include "screenshots/SampleActivity.h"
#include "screenshots/SampleStates.h"
#include "store/ActivityLines.h"
#include "text/SystemErrorText.h"

#include <algorithm>
#include <utility>

namespace vellmark::samples {

namespace {

constexpr std::string_view home = "/Users/anna";

std::shared_ptr<const RedactedText> textOf(const SupportReportState& state,
                                           const Localization& words) {
    SupportReportInput input = *state.input;
    input.whatHappened = state.whatHappened;
    return std::make_shared<const RedactedText>(
        supportReport(input, home, state.includesEmails, words).value());
}

std::string logText(std::size_t lines, const Localization& words) {
    std::string text;
    const TimeZone zone = words.timeZone();
    for (const ActivityEntry& entry : longActivity(lines, words)) {
        text += (text.empty() ? "" : "\n") + ActivityLines::text(entry, zone);
    }
    return text;
}

std::vector<ReportProgress> halfway() {
    return {{AgentProviderID::codex(), AgentFacts{.id = AgentProviderID::codex(),
                                                  .toolPath = "/Users/anna/.local/bin/codex",
                                                  .toolVersion = "codex-cli 0.61.0",
                                                  .loggedIn = true}},
            {AgentProviderID::claude(), std::nullopt},
            {AgentProviderID::antigravity(), AgentFacts{.id = AgentProviderID::antigravity(),
                                                        .toolPath = {},
                                                        .toolVersion = {},
                                                        .loggedIn = {}}}};
}

} // namespace

SupportReportInput reportInput(std::size_t logLines, const Localization& words) {
    SupportReportInput input;
    input.version = "1.0.0";
    input.build = "100";
    input.osVersion = "macOS 26.1";
    input.architecture = "arm64";
    input.languageCode = words.languageCode();
    input.region = "CH";
    input.date = now();
    input.agents = {
        {"Codex", true, "/Users/anna/.local/bin/codex", "codex-cli 0.61.0", true, now()},
        {"Claude", true, "/Users/anna/.local/bin/claude", "2.0.44 (Claude Code)", true, now()},
        {"Antigravity", true, "/Users/anna/.local/bin/agy", "1.4.2", std::nullopt, now()}};
    input.logText = logText(logLines, words);
    return input;
}

SupportReportState report(ReportMoment moment, const Localization& words) {
    SupportReportState state;
    if (moment == ReportMoment::building) {
        state.isBuilding = true;
        state.progress = halfway();
        return state;
    }
    if (moment == ReportMoment::failed) {
        state.notice = words.text("report.notRedacted");
        state.noticeIsTrouble = true;
        return state;
    }
    SupportReportInput input = reportInput(moment == ReportMoment::clean ? 0 : 240, words);
    if (moment == ReportMoment::clean) {
        for (SupportReportInput::Agent& agent : input.agents) {
            agent = {agent.name, false, std::nullopt, std::nullopt, std::nullopt, {}};
        }
    } else {
        input.logText += "\n2025-11-20 14:46:01 error claude: /Users/anna/.claude/settings.json: "
                         "token=abcdefghij0123456789 of anna@example.org was refused by the proxy "
                         "of anna.berta@example.org, see /Users/anna/Library/Logs/claude.log";
        input.logText = input.logText.substr(input.logText.rfind('\n') + 1) + "\n" + input.logText;
    }
    state.logLines = input.logText.empty()
                         ? 0
                         : 1 + static_cast<std::size_t>(std::ranges::count(input.logText, '\n'));
    state.input = std::make_shared<const SupportReportInput>(std::move(input));
    if (moment == ReportMoment::described) {
        state.whatHappened = words.text("help.support.page");
        state.includesEmails = true;
    }
    state.text = textOf(state, words);
    const std::string file = "Vellmark-Support-Bericht-2025-11-20.txt";
    if (moment == ReportMoment::found) {
        state.query = "claude";
        state.matches =
            std::make_shared<const ReportMatches>(findInReport(state.text->text, state.query));
        state.currentMatch = 2;
    } else if (moment == ReportMoment::saved) {
        state.notice = words.format("report.saved", {file});
        state.noticeFile = "/Users/anna/Documents/" + file;
    } else if (moment == ReportMoment::mailed) {
        state.notice = words.format("report.mailOpened", {file});
        state.noticeFile = "/tmp/" + file;
    } else if (moment == ReportMoment::withoutMail) {
        state.notice = words.format("report.noMail", {"support@vellmark.example"});
        state.noticeIsTrouble = true;
        state.noticeFile = "/tmp/" + file;
    } else if (moment == ReportMoment::notSaved) {
        state.notice = words.format(
            "report.notSaved",
            {systemErrorText(std::make_error_code(std::errc::no_space_on_device), words)});
        state.noticeIsTrouble = true;
    }
    return state;
}

} // namespace vellmark::samples
