#include "presentation/SupportReportContent.h"

#include "probes/ProviderRegistry.h"
#include "store/ActivityLog.h"
#include "text/Formatting.h"
#include "text/Pattern.h"

#include <algorithm>
#include <cstdint>

namespace vellmark {
namespace {

using ProgressRow = SupportReportContent::ProgressRow;

bool isPlain(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 || (value >= '0' && value <= '9') || (value >= 'A' && value <= 'Z') ||
           (value >= 'a' && value <= 'z') || value == ' ';
}

/// A pattern for just these characters.
std::string quoted(std::string_view words) {
    std::string result;
    for (const char byte : words) {
        result += isPlain(byte) ? std::string(1, byte) : std::string{'\\', byte};
    }
    return result;
}

/// The text of `key`.one or `key`.other.
std::string counted(const std::string& key, std::size_t count, const Localization& words) {
    const auto number = static_cast<std::int64_t>(count);
    return words.format(key + (words.takesSingular(number) ? ".one" : ".other"),
                        {integerText(number, words)});
}

std::string nameOf(const AgentProviderID& id, const Localization& words) {
    return words.text(providerDescriptor(id)->nameKey);
}

ProgressRow rowOf(const ReportProgress& agent, const Localization& words) {
    ProgressRow row{.mark = ProgressRow::Mark::waiting,
                    .name = nameOf(agent.id, words),
                    .state = words.text("report.progress.asking")};
    if (!agent.facts) {
        return row;
    }
    const AgentFacts& facts = *agent.facts;
    if (facts.toolPath && facts.toolVersion && facts.loggedIn) {
        row.mark = ProgressRow::Mark::done;
        row.state = words.text("report.progress.done");
    } else {
        row.mark = ProgressRow::Mark::trouble;
        row.state = words.text(!facts.toolPath      ? "report.progress.notFound"
                               : !facts.toolVersion ? "report.progress.noVersion"
                                                    : "report.progress.noLogin");
    }
    return row;
}

std::vector<ProgressRow> progressRows(const SupportReportState& state, const Localization& words) {
    std::vector<ProgressRow> rows;
    for (const ReportProgress& agent : state.progress) {
        rows.push_back(rowOf(agent, words));
    }
    const bool hasAsked = std::ranges::all_of(
        state.progress, [](const ReportProgress& agent) { return agent.facts.has_value(); });
    rows.push_back(
        {.mark = ProgressRow::Mark::waiting,
         .name = words.text("report.log"),
         .state = words.text(hasAsked ? "report.progress.reading" : "report.progress.waiting")});
    return rows;
}

/// What no agent would tell, named; empty when everything is known. A CLI that is not there has
/// nothing to tell.
std::string missingFacts(const SupportReportInput& input, const Localization& words) {
    std::string result;
    const auto add = [&](const char* key, const std::string& agent) {
        result += (result.empty() ? "" : ", ") + words.format(key, {agent});
    };
    for (const SupportReportInput::Agent& agent : input.agents) {
        if (agent.toolPath && !agent.toolVersion) {
            add("report.missing.version", agent.name);
        }
        if (agent.toolPath && !agent.loggedIn) {
            add("report.missing.login", agent.name);
        }
    }
    return result;
}

std::string searchStatus(const SupportReportState& state, const Localization& words) {
    if (!state.matches || !state.text) {
        return {};
    }
    const auto count = static_cast<std::int64_t>(state.matches->places.size());
    if (count == 0) {
        return words.text("report.search.none");
    }
    const auto current = static_cast<std::int64_t>(state.currentMatch) + 1;
    return words.format(state.matches->isCutOff ? "report.search.many" : "report.search.found",
                        {integerText(current, words), integerText(count, words)});
}

void addRemoved(SupportReportContent& content, const RedactedText& text,
                const Localization& words) {
    if (text.places.empty()) {
        content.removedTitle = words.text("report.removed.none");
        return;
    }
    content.removedTitle = counted("report.removed", text.places.size(), words);
    content.removedHelp = words.text("report.removed.show");
    for (const RemovedKind kind : removedKinds) {
        const auto count = std::ranges::count(text.places, kind, &RemovedPlace::kind);
        const char* key = kind == RemovedKind::path      ? "report.removed.path"
                          : kind == RemovedKind::address ? "report.removed.address"
                                                         : "report.removed.key";
        if (count > 0) {
            content.removed.push_back({kind, counted(key, static_cast<std::size_t>(count), words)});
        }
    }
}

} // namespace

ReportMatches findInReport(std::string_view text, std::string_view query) {
    ReportMatches result;
    const Pattern pattern("(?i)" + quoted(query));
    std::size_t from = 0;
    while (const auto match = pattern.search(text, from)) {
        if (result.places.size() == ReportMatches::most) {
            result.isCutOff = true;
            break;
        }
        from = match->position + match->whole().size();
        result.places.push_back({match->position, from});
    }
    return result;
}

std::string reportScopeNote(const SupportReportState& state, const Localization& words) {
    if (!state.input) {
        return {};
    }
    const SupportReportInput& input = *state.input;
    std::string note = words.format(
        "report.scope", {integerText(static_cast<std::int64_t>(input.agents.size()), words),
                         integerText(ActivityLog::daysKept, words),
                         counted("report.lines", state.logLines, words)});
    if (const std::string missing = missingFacts(input, words); !missing.empty()) {
        note += " · " + words.format("report.missing", {missing});
    }
    return note;
}

SupportReportContent supportReportContent(const SupportReportState& state,
                                          const Localization& words) {
    SupportReportContent content;
    content.hint = words.text("report.hint");
    content.happenedTitle = words.text("report.happened");
    content.happenedHint = words.text("report.happened.hint");
    content.whatHappened = state.whatHappened;
    content.includeEmailsTitle = words.text("report.includeEmails");
    content.includesEmails = state.includesEmails;
    content.searchHint = words.text("report.search");
    content.query = state.query;
    content.searchStatus = searchStatus(state, words);
    content.previousTitle = words.text("report.search.previous");
    content.nextTitle = words.text("report.search.next");
    content.textTitle = words.text("report.text");
    content.text = state.text;
    content.matches = state.matches;
    content.currentMatch = state.currentMatch;
    if (!state.text && state.isBuilding) {
        content.progressTitle = words.text("report.progress");
        content.progress = progressRows(state, words);
    }
    content.scopeNote = reportScopeNote(state, words);
    if (state.text) {
        addRemoved(content, *state.text, words);
    }
    content.notice = state.notice;
    content.noticeIsTrouble = state.noticeIsTrouble;
    if (!state.noticeFile.empty()) {
        content.showFolderTitle = words.text("report.showFolder");
    }
    content.copyTitle = words.text("report.copy");
    content.saveTitle = words.text("report.save");
    content.mailTitle = words.text("report.mail");
    content.canSend = state.text != nullptr;
    return content;
}

} // namespace vellmark
