#include "report/SupportReport.h"

#include "platform/WholeFile.h"
#include "text/Dates.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <utility>

namespace vellmark {
namespace {

class ReportLines {
public:
    explicit ReportLines(const Localization& words) : words_(words) {}

    void add(std::string line) { text_.append(std::move(line)).append("\n"); }
    void add(std::string_view key, std::initializer_list<TextArgument> arguments) {
        add(words_.format(key, arguments));
    }
    void heading(std::string_view key) { add("\n" + words_.text(key)); }
    /// A line of an agent's block.
    void detail(std::string_view key, const std::string& value) {
        add("  " + words_.format(key, {value}));
    }

    std::string take() {
        text_.pop_back();
        return std::move(text_);
    }

private:
    const Localization& words_;
    std::string text_;
};

std::string loginText(std::optional<bool> loggedIn, const Localization& words) {
    if (!loggedIn) {
        return words.text("report.login.unknown");
    }
    return words.text(*loggedIn ? "report.login.yes" : "report.login.no");
}

void addAgent(ReportLines& lines, const SupportReportInput::Agent& agent,
              const Localization& words) {
    lines.add(agent.enabled ? "report.agent.active" : "report.agent.hidden", {agent.name});
    if (agent.toolPath) {
        lines.detail("report.agent.tool", *agent.toolPath);
    } else {
        lines.add("  " + words.text("report.agent.notFound"));
    }
    const auto none = words.text("report.none");
    lines.detail("report.agent.version", agent.toolVersion.value_or(none));
    lines.detail("report.agent.login", loginText(agent.loggedIn, words));
    lines.detail("report.agent.lastOK",
                 agent.lastSuccess ? dateTimeText(*agent.lastSuccess, words) : none);
}

std::string reportLines(const SupportReportInput& input, bool includeEmails,
                        const Localization& words) {
    ReportLines lines(words);
    lines.add("report.title", {});
    lines.add("report.created", {dateTimeText(input.date, words)});
    lines.add("report.application", {input.version, input.build});
    lines.add("report.macos", {input.osVersion});
    lines.add("report.arch", {input.architecture});
    lines.add("report.language", {input.languageCode, input.region});
    if (const std::string_view happened = trimmed(input.whatHappened); !happened.empty()) {
        lines.heading("report.happened");
        lines.add(std::string(happened));
    }
    lines.heading("report.agents");
    for (const auto& agent : input.agents) {
        addAgent(lines, agent, words);
    }
    lines.heading("report.log");
    lines.add(input.logText.empty() ? words.text("report.log.empty") : input.logText);
    lines.heading(includeEmails ? "report.privacy.withEmails" : "report.privacy.note");
    return lines.take();
}

} // namespace

std::optional<RedactedText> supportReport(const SupportReportInput& input,
                                          std::string_view homeDirectory, bool includeEmails,
                                          const Localization& words) {
    return redactedWithPlaces(reportLines(input, includeEmails, words), homeDirectory,
                              {.includeEmails = includeEmails});
}

std::optional<std::string> supportReportText(const SupportReportInput& input,
                                             std::string_view homeDirectory, bool includeEmails,
                                             const Localization& words) {
    auto report = supportReport(input, homeDirectory, includeEmails, words);
    return report ? std::optional(std::move(report->text)) : std::nullopt;
}

std::string supportReportFileName(Instant date, const Localization& words) {
    return "Vellmark-Support-Bericht-" + formatDate(date, "yyyy-MM-dd", words.timeZone()) + ".txt";
}

std::error_code saveSupportReport(const std::filesystem::path& file, std::string_view text) {
    std::error_code error;
    const auto folder = file.has_parent_path() ? file.parent_path() : ".";
    if (!std::filesystem::is_directory(folder, error)) {
        return error ? error : std::make_error_code(std::errc::no_such_file_or_directory);
    }
    return replaceWholeFile(file, text, ReplacementFile::Mode::ownerAlone);
}

} // namespace vellmark
