#include "cli/StatusForm.h"

#include "cli/ArgumentValues.h"
#include "cli/NearestWord.h"
#include "cli/WrongArguments.h"
#include "platform/ProgramPath.h"
#include "text/TerminalText.h"

#include <filesystem>

namespace vellmark {
namespace {

std::string listOf(const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names) {
        all += (all.empty() ? "" : ", ") + name;
    }
    return all;
}

StatusFormat formatNamed(const std::string& name) {
    if (const auto format = statusFormatNamed(name)) {
        return *format;
    }
    const std::string near = nearestWord(name, statusFormatNames());
    throw near.empty()
        ? WrongArguments("cli.status.unknownFormat", singleLine(name), listOf(statusFormatNames()))
        : WrongArguments("cli.status.unknownFormat.near", singleLine(name), near);
}

StatusTemplate templateOf(const std::string& text) {
    try {
        return StatusTemplate(text);
    } catch (const StatusTemplate::Fault& fault) {
        if (fault.field.empty()) {
            throw WrongArguments("cli.status.braces", singleLine(text));
        }
        throw WrongArguments("cli.status.unknownField", singleLine(fault.field),
                             listOf(StatusTemplate::fieldNames()));
    }
}

/// What stands beside this program.
StatusPrograms installedPrograms() {
    const std::filesystem::path terminal = programPath();
    const std::filesystem::path desktop = terminal.parent_path() / "vellmark-desktop";
    std::error_code ignored;
    return {.terminal = terminal.string(),
            .desktop = std::filesystem::exists(desktop, ignored) ? desktop.string() : ""};
}

} // namespace

void StatusForm::declare(CommandOptions& options) {
    options.value("--format", format_, "FORMAT", "cli.status.format");
    options.value("--escape", reader_, "FORMAT", "cli.status.escape");
    options.value("--agent", agent_, "ID", "cli.status.agent");
    options.value("--window", window_, "ID", "cli.status.window");
}

std::vector<std::string> StatusForm::choices(const std::string& name) {
    return name == "--format" || name == "--escape" ? statusFormatNames()
                                                    : std::vector<std::string>();
}

void StatusForm::understand(bool asJSON) {
    const bool isTemplate = format_ && format_->find('{') != std::string::npos;
    if (asJSON) {
        if (format_ && *format_ != "json") {
            throw WrongArguments("cli.error.noEffect", "--json", "--format");
        }
        kind_ = StatusFormat::json;
    } else if (isTemplate) {
        template_ = templateOf(*format_);
    } else if (format_) {
        kind_ = formatNamed(*format_);
    }
    if (reader_) {
        if (!isTemplate) {
            throw WrongArguments("cli.status.escape.noTemplate");
        }
        kind_ = formatNamed(*reader_);
    }
    if (agent_) {
        choice_.agent = agentArgument(*agent_);
    }
    choice_.window = window_;
    choice_.listsAgents = !template_ && listsAgents(kind_);
}

std::string StatusForm::output(const StatusReport& report) const {
    return template_ ? template_->filled(report, kind_) + "\n"
                     : statusOutput(report, kind_, installedPrograms());
}

std::string StatusForm::streamHead() const {
    return template_ ? std::string() : statusStreamHead(kind_);
}

std::string StatusForm::streamOutput(const StatusReport& report) const {
    return template_ ? output(report) : statusStreamOutput(report, kind_, installedPrograms());
}

} // namespace vellmark
