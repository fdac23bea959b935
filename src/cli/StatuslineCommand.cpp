#include "cli/ArgumentValues.h"
#include "cli/DisplayWidth.h"
#include "cli/LastState.h"
#include "cli/Prompt.h"
#include "cli/Subcommands.h"
#include "cli/UsageView.h"
#include "cli/WrongArguments.h"
#include "platform/Preferences.h"
#include "platform/ProgramPath.h"
#include "platform/UnnamedFile.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/SessionLine.h"
#include "probes/AgentWorkspace.h"
#include "probes/claude/ClaudeStatusInput.h"
#include "setup/ClaudeStatusLine.h"
#include "store/ReadingTime.h"
#include "store/StatusLineReadings.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <poll.h>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vellmark {
namespace {

/// Inputs have a few thousand bytes; what is longer is none, and passed over.
constexpr std::size_t longestInput = std::size_t{1} << 20;
/// Who writes the input does so at once. Nobody waits for one that does not come.
constexpr int inputPatienceMs = 500;
constexpr std::size_t inputPieceSize = std::size_t{1} << 16;

/// The agent whose sessions show it.
AgentProviderID sessionAgent() {
    return AgentProviderID::claude();
}

/// What came on standard input.
struct Input {
    std::string text;
    bool isTooLong = false;
    /// All of it, for the command that is run afterwards.
    Descriptor copy;
};

void writeAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return; // the command gets what there is room for
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
}

Input readInput(const std::filesystem::path& copyDirectory) {
    Input input;
    if (!copyDirectory.empty()) {
        input.copy = openUnnamedFile(copyDirectory);
    }
    std::string piece(inputPieceSize, '\0');
    pollfd ready{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    while (isatty(STDIN_FILENO) == 0 && poll(&ready, 1, inputPatienceMs) > 0) {
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count == 0 || (count < 0 && errno != EINTR)) {
            break;
        }
        const std::string_view bytes(piece.data(),
                                     static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (input.copy.isOpen()) {
            writeAll(input.copy, bytes);
        }
        input.isTooLong |= input.text.size() + bytes.size() > longestInput;
        if (!input.isTooLong) {
            input.text += bytes;
        }
    }
    return input;
}

/// Becomes `command`, with the input as its own.
void runAfterwards(const std::string& command, const Input& input) {
    if (input.copy.isOpen()) {
        ::lseek(input.copy.get(), 0, SEEK_SET);
        ::dup2(input.copy.get(), STDIN_FILENO);
    }
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
}

/// The line that Claude Code shows below a session, and its place in Claude Code's settings.
class StatuslineCommand final : public Subcommand {
public:
    std::string name() const override { return "statusline"; }
    std::string summaryKey() const override { return "cli.statusline.summary"; }
    std::string detailKey() const override { return "cli.statusline.detail"; }

    void declare(CommandOptions& options) override {
        options.flag("--install", install_, "cli.statusline.install");
        options.flag("--remove", remove_, "cli.statusline.remove");
        options.flag("--yes", yes_, "cli.statusline.yes");
        options.value("--then", then_, "SCRIPT", "cli.statusline.then");
        options.value("--now", now_, "T", "cli.option.now");
    }

    bool startsChildren() const override { return false; }
    bool hasDemo() const override { return false; }

    int run(const CommandContext& context) override {
        if (install_ && remove_) {
            throw WrongArguments("cli.error.noEffect", "--install", "--remove");
        }
        if (install_ || remove_) {
            if (then_) {
                throw WrongArguments("cli.error.noEffect", "--then",
                                     install_ ? "--install" : "--remove");
            }
            return changeSettings(context);
        }
        if (yes_) {
            throw WrongArguments("cli.error.noEffect", "--yes", name());
        }
        const Instant now = now_ ? instantArgument("--now", *now_) : ReferenceClock::now();
        const Input input = readInput(then_ ? context.machine.temporary : std::filesystem::path());
        showLine(input, now, context);
        if (then_) {
            runAfterwards(*then_, input);
        }
        return ExitStatus::done;
    }

private:
    // --- the line

    static void showLine(const Input& input, Instant now, const CommandContext& context) {
        std::optional<ClaudeStatusInput> told;
        if (!input.isTooLong) {
            told = parseClaudeStatusInput(input.text, now);
        }
        if (told && told->directory == agentWorkspace(context.machine, "Claude").string()) {
            return; // a session that is read by this program itself
        }
        const StatusLineReadings readings(context.machine.statusLineFile());
        std::vector<UsageWindow> windows;
        if (told && !told->windows.empty()) {
            const auto error = readings.keep({.session = told->session,
                                              .turn = told->turn,
                                              .toldAt = now,
                                              .windows = told->windows},
                                             now);
            if (error) {
                windows = told->windows; // they count all the same
                for (UsageWindow& window : windows) {
                    window.readAt = now;
                }
            }
        }
        const auto preferences = makePreferences(context.machine);
        UsageState state = lastStateOf(sessionAgent(), *preferences, context, now);
        AgentUsageSnapshot& snapshot = state.snapshots.front();
        takeNewerWindows(snapshot, windows, readingTimeOf(state, snapshot));
        write(sessionLines(snapshot, state, readingInterval(*preferences), now, context.words),
              context);
    }

    static void write(const std::vector<SessionLine>& lines, const CommandContext& context) {
        if (lines.empty()) {
            context.output.write(context.words.text("statusLine.nothing") + "\n");
            return;
        }
        const auto columns = context.machine.environment.find("COLUMNS");
        const std::size_t width = columns != context.machine.environment.end()
                                      ? std::strtoul(columns->second.c_str(), nullptr, 10)
                                      : 0;
        const auto widthOf = [](const SessionLine& line) {
            std::size_t all = 0;
            for (const SessionLinePart& part : line) {
                all += (all > 0 ? displayWidth(separator) : 0) + displayWidth(part.text);
            }
            return all;
        };
        const auto fitting = std::ranges::find_if(
            lines, [&](const SessionLine& line) { return width == 0 || widthOf(line) <= width; });
        if (fitting == lines.end()) {
            context.output.write(context.output.cut(lines.back().front().text, width) + "\n");
            return;
        }
        std::string text;
        for (const SessionLinePart& part : *fitting) {
            text += (text.empty() ? "" : separator) + styled(part, context);
        }
        context.output.write(text + "\n");
    }

    static std::string styled(const SessionLinePart& part, const CommandContext& context) {
        const TextStyle style =
            part.health == UsageHealth::healthy ? TextStyle::plain : styleOf(part.health);
        return context.output.styled(style, part.text);
    }

    // --- the settings of Claude Code

    int changeSettings(const CommandContext& context) const {
        using Change = ClaudeSettingsChange;
        const Localization& words = context.words;
        const std::string file =
            singleLine(context.machine.abbreviated(claudeSettingsFile(context.machine)));
        std::optional<Change> change;
        try {
            change =
                Change::of(context.machine, install_ ? Change::Wish::install : Change::Wish::remove,
                           programPath());
        } catch (const std::system_error& error) {
            context.reportUnreadable(file, error.code());
            return ExitStatus::failed;
        } catch (const ClaudeSettingsFault& fault) {
            const bool isUnknown = fault.kind == ClaudeSettingsFault::Kind::unknownStatusLine;
            context.report(
                words.format(isUnknown ? "cli.statusline.unknown" : "cli.statusline.notJSON",
                             {file, singleLine(fault.what())}));
            return ExitStatus::failed;
        }
        if (!change) {
            context.note(words.format(
                install_ ? "cli.statusline.isThere" : "cli.statusline.isNotThere", {file}));
            return ExitStatus::done;
        }
        showChange(*change, file, context);
        if (!yes_) {
            if (const auto status = refusal(context)) {
                return *status;
            }
        }
        return make(*change, file, context);
    }

    static void showChange(const ClaudeSettingsChange& change, const std::string& file,
                           const CommandContext& context) {
        TerminalOutput& output = context.output;
        std::string text = output.styled(TextStyle::strong, file) + "\n";
        for (const ChangedLine& line : changedLines(change.before, change.after)) {
            const std::string shown = singleLine(line.text);
            switch (line.kind) {
            case ChangedLine::Kind::same:
                text += "  " + shown;
                break;
            case ChangedLine::Kind::removed:
                text += output.styled(TextStyle::critical, "- " + shown);
                break;
            case ChangedLine::Kind::added:
                text += output.styled(TextStyle::healthy, "+ " + shown);
                break;
            }
            text += "\n";
        }
        output.write(text);
    }

    /// The exit status when the user does not want it, or cannot be asked.
    static std::optional<int> refusal(const CommandContext& context) {
        if (!context.output.isTerminal() || isatty(STDIN_FILENO) == 0) {
            context.report(context.words.text("cli.statusline.cannotAsk"));
            return ExitStatus::failed;
        }
        Prompt prompt(context);
        const auto answer = prompt.ask(context.words.text("cli.statusline.question") + " ");
        if (prompt.endingStatus() != 0) {
            return prompt.endingStatus();
        }
        const std::string yes = context.words.text("cli.statusline.question.yes");
        if (answer && !answer->empty() && lowercased(*answer).front() == yes.front()) {
            return std::nullopt;
        }
        context.note(context.words.text("cli.statusline.declined"));
        return ExitStatus::done;
    }

    static int make(const ClaudeSettingsChange& change, const std::string& file,
                    const CommandContext& context) {
        const Localization& words = context.words;
        const auto [error, hasChangedMeanwhile, backup] = change.make();
        if (hasChangedMeanwhile) {
            context.report(words.format("cli.statusline.changedMeanwhile", {file}));
            return ExitStatus::failed;
        }
        if (error) {
            context.report(
                words.format("cli.statusline.unwritable", {file, systemErrorText(error, words)}));
            return ExitStatus::failed;
        }
        context.note(backup.empty()
                         ? words.text("cli.statusline.done")
                         : words.format("cli.statusline.doneWithBackup",
                                        {singleLine(context.machine.abbreviated(backup))}));
        return ExitStatus::done;
    }

    static constexpr const char* separator = " | ";

    bool install_ = false;
    bool remove_ = false;
    bool yes_ = false;
    std::optional<std::string> then_;
    std::optional<std::string> now_;
};

} // namespace

std::unique_ptr<Subcommand> makeStatuslineCommand() {
    return std::make_unique<StatuslineCommand>();
}

} // namespace vellmark
