#include "cli/ArgumentValues.h"
#include "cli/InputText.h"
#include "cli/Subcommands.h"
#include "cli/WrongArguments.h"
#include "model/UsageJSON.h"
#include "probes/ProviderRegistry.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace vellmark {
namespace {

/// Says what a probe makes of output that was saved earlier. Writes no file and runs nothing.
class InspectCommand final : public Subcommand {
public:
    std::string name() const override { return "inspect"; }
    std::string summaryKey() const override { return "cli.inspect.summary"; }
    std::string detailKey() const override { return "cli.inspect.detail"; }

    void declare(CommandOptions& options) override {
        options.positional("AGENT", agent_, "cli.inspect.agent");
        options.optionalPositional("FILE", file_, "cli.inspect.file");
        options.value("--now", now_, "T", "cli.option.now");
        options.value("--exit-status", exitStatus_, "N", "cli.inspect.exitStatus");
        options.flag("--timed-out", timedOut_, "cli.inspect.timedOut");
        options.value("--log", log_, "FILE", "cli.inspect.log");
    }

    bool startsChildren() const override { return false; }
    bool hasDemo() const override { return false; }

    int run(const CommandContext& context) override {
        const AgentProviderID agent = agentArgument(agent_);
        const SavedRunReader& reader = providerRegistration(agent)->savedRuns;
        refuseWhatHasNoEffect(agent, reader);
        std::optional<SavedRun> run = savedRun(context);
        if (!run) {
            return ExitStatus::failed;
        }
        AgentUsageSnapshot snapshot{.id = agent, .updatedAt = run->now};
        try {
            snapshot = reader.read(*run, context.machine);
        } catch (const UsageProviderError& error) {
            snapshot.source = SnapshotSource::stale;
            snapshot.error = error;
        }
        context.output.writeData(serialized(toJSON(snapshot)) + "\n");
        if (!snapshot.error) {
            return ExitStatus::done;
        }
        context.report(singleLine(snapshot.error->message(context.words)));
        return ExitStatus::failed;
    }

private:
    /// Not every reading depends on all that can be told about a run.
    void refuseWhatHasNoEffect(const AgentProviderID& agent, const SavedRunReader& reader) const {
        if (!reader.heedsEnd && exitStatus_) {
            throw WrongArguments("cli.error.noEffect", "--exit-status", agent.rawValue);
        }
        if (!reader.heedsEnd && timedOut_) {
            throw WrongArguments("cli.error.noEffect", "--timed-out", agent.rawValue);
        }
        if (!reader.heedsLog && log_) {
            throw WrongArguments("cli.error.noEffect", "--log", agent.rawValue);
        }
    }

    /// Absent when a file cannot be read.
    std::optional<SavedRun> savedRun(const CommandContext& context) const {
        using Status = std::numeric_limits<std::int32_t>;
        SavedRun run{.timedOut = timedOut_};
        run.now = now_ ? instantArgument("--now", *now_) : ReferenceClock::now();
        if (exitStatus_) {
            run.exitStatus = static_cast<std::int32_t>(
                integerArgument("--exit-status", *exitStatus_, Status::min(), Status::max()));
        }
        auto output = readInputText(file_, context);
        auto log = log_ ? readInputText(log_, context) : std::string();
        if (!output || !log) {
            return std::nullopt;
        }
        run.output = std::move(*output);
        run.log = std::move(*log);
        return run;
    }

    std::string agent_;
    std::optional<std::string> file_;
    std::optional<std::string> now_;
    std::optional<std::string> exitStatus_;
    std::optional<std::string> log_;
    bool timedOut_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeInspectCommand() {
    return std::make_unique<InspectCommand>();
}

} // namespace vellmark
