#include "cli/ArgumentValues.h"
#include "cli/DisplayWidth.h"
#include "cli/InputText.h"
#include "cli/LastState.h"
#include "cli/StatusForm.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "cli/UsageRefresh.h"
#include "cli/UsageView.h"
#include "cli/WrongArguments.h"
#include "model/UsageJSON.h"
#include "platform/Preferences.h"
#include "presentation/StatusReport.h"
#include "text/TerminalText.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmark {
namespace {

/// The dot and the blank after it.
constexpr std::size_t dotWidth = 2;
/// Has the bar that reads three lines show a block as urgent.
constexpr int urgentBlock = 33;

/// The most pressing window in a form for people, status bars or prompts.
class StatusCommand final : public Subcommand {
public:
    std::string name() const override { return "status"; }
    std::string summaryKey() const override { return "cli.status.summary"; }
    std::string detailKey() const override { return "cli.status.detail"; }

    void declare(CommandOptions& options) override {
        form_.declare(options);
        options.flag("--cached", cached_, "cli.status.cached");
        options.flag("--exit-status", exitStatus_, "cli.status.exitStatus");
        options.value("--snapshots", snapshots_, "FILE", "cli.status.snapshots");
        options.value("--now", now_, "T", "cli.option.now");
        options.flag("--json", json_, "cli.option.json");
    }

    std::vector<std::string> choices(const std::string& option) const override {
        return StatusForm::choices(option);
    }

    bool startsChildren() const override { return !cached_ && !snapshots_; }

    int run(const CommandContext& context) override {
        if (cached_ && snapshots_) {
            throw WrongArguments("cli.error.noEffect", "--cached", "--snapshots");
        }
        form_.understand(json_);
        const bool tellsUrgency = form_.format() == StatusFormat::i3blocks;
        if (exitStatus_ && tellsUrgency) {
            throw WrongArguments("cli.error.noEffect", "--exit-status", "--format i3blocks");
        }
        std::optional<Instant> now;
        if (now_) {
            now = instantArgument("--now", *now_);
        }
        const auto preferences = makePreferences(context.machine);
        UsageState state;
        if (const int status = gather(context, *preferences, now, state);
            status != ExitStatus::done) {
            return status;
        }
        const Instant moment = now.value_or(ReferenceClock::now());
        const StatusReport report = statusReport(
            state, form_.choice(), readingInterval(*preferences), moment, context.words);
        if (form_.isPlainText()) {
            writeLine(report, context);
        } else {
            context.output.writeData(form_.output(report));
        }
        if (tellsUrgency) {
            return report.health == UsageHealth::critical ? urgentBlock : ExitStatus::done;
        }
        return exitStatus_ ? statusExitStatus(report.health) : ExitStatus::done;
    }

private:
    int gather(const CommandContext& context, Preferences& preferences, std::optional<Instant> now,
               UsageState& state) const {
        if (snapshots_) {
            return readSnapshots(context, state);
        }
        if (cached_) {
            reportUnreadable(preferences, context);
            state = lastState(preferences, context, now.value_or(ReferenceClock::now()));
            return ExitStatus::done;
        }
        return refreshUsage(context, {}, state);
    }

    /// All agents of the file count as enabled.
    int readSnapshots(const CommandContext& context, UsageState& state) const {
        const auto text = readInputText(snapshots_, context);
        if (!text) {
            return ExitStatus::failed;
        }
        try {
            state.snapshots = snapshotsFromDocument(*text);
            for (const AgentUsageSnapshot& snapshot : state.snapshots) {
                if (!state.enabledProviderIDs.insert(snapshot.id).second) {
                    throw JSONDecodingError("more than one snapshot of " + snapshot.id.rawValue);
                }
                state.providerOrder.push_back(snapshot.id);
            }
        } catch (const JSONDecodingError& error) {
            context.report(
                context.words.format("cli.status.notSnapshots", {singleLine(error.what())}));
            return ExitStatus::failed;
        }
        return ExitStatus::done;
    }

    static void writeLine(const StatusReport& report, const CommandContext& context) {
        const TerminalOutput& output = context.output;
        const std::string dot = output.styled(styleOf(report.health), output.shapes().dot) + " ";
        std::size_t column = dotWidth;
        std::string text = dot;
        for (const std::string& part : statusTextParts(report)) {
            const std::string shown = column > dotWidth ? " · " + part : part;
            // One line, unless a terminal would break it where it likes.
            if (output.isTerminal() && column > dotWidth &&
                column + displayWidth(shown) > output.width()) {
                text += "\n" + std::string(dotWidth, ' ') + part;
                column = dotWidth + displayWidth(part);
            } else {
                text += shown;
                column += displayWidth(shown);
            }
        }
        context.output.write(text + "\n");
    }

    StatusForm form_;
    std::optional<std::string> snapshots_;
    std::optional<std::string> now_;
    bool cached_ = false;
    bool exitStatus_ = false;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeStatusCommand() {
    return std::make_unique<StatusCommand>();
}

} // namespace vellmark
