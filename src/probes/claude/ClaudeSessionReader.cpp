#include "probes/claude/ClaudeSessionReader.h"

#include "probes/LaunchFailure.h"
#include "probes/claude/ClaudeDiagnostics.h"
#include "probes/claude/ClaudeModelWindow.h"
#include "process/ChildEnvironment.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace vellmark {

namespace {

using Kind = UsageProviderError::Kind;

bool hasModelWindow(const AgentUsageSnapshot& snapshot) {
    return std::any_of(snapshot.windows.begin(), snapshot.windows.end(),
                       [](const UsageWindow& window) { return window.id == claudeModelWindowID; });
}

} // namespace

ClaudeSessionReader::ClaudeSessionReader(const Machine& machine, std::filesystem::path workspace,
                                         Limits limits, std::filesystem::path interpreter)
    : machine_(machine), workspace_(std::move(workspace)), limits_(limits),
      interpreter_(std::move(interpreter)), modelWindows_(machine_.usageHistoryFile()) {}

std::filesystem::path ClaudeSessionReader::diagnostics() const {
    return workspace_.parent_path() / "Diagnostics";
}

AgentUsageSnapshot ClaudeSessionReader::read(const std::filesystem::path& claude,
                                             const Budget& budget) {
    const auto log = PrivateTemporaryFile::create(machine_.temporary);
    if (!log) {
        throw UsageProviderError(Kind::claudeTempFileFailed);
    }
    const BoundedProcessResult result = runScript(claude, *log, budget);
    ClaudeSessionTimes times;
    times.readAt = budget.spent();
    times.run = result.elapsed;
    times.launch = result.launch;
    const ClaudeScreen screen(log->contents());
    if (const auto reason = claudeLaunchFailure(screen)) {
        // The interpreter says the same when it is the program's own interpreter that is missing.
        throw UsageProviderError::launchFailed(
            "Claude Code",
            reason->ends_with("no such file or directory")
                ? launchFailureReason(std::make_error_code(std::errc::no_such_file_or_directory),
                                      claude)
                : *reason);
    }
    const ClaudeSessionEnd end{result.terminationStatus, result.timedOut || result.uncaughtSignal,
                               result.outputCapped};
    AgentUsageSnapshot snapshot = interpret(screen, end, *log);
    if (auto note = claudeTimingNote(screen, times)) {
        snapshot.notes.push_back(std::move(*note));
    }
    return snapshot;
}

BoundedProcessResult ClaudeSessionReader::runScript(const std::filesystem::path& claude,
                                                    const PrivateTemporaryFile& log,
                                                    const Budget& budget) {
    const bool expectsModel = modelWindows_.shouldExpectModelWindow(ReferenceClock::now());
    ChildConfiguration child;
    child.executable = interpreter_;
    child.arguments = {"-c", claudeSessionScript(limits_.timings)};
    // The screens name times of day in the zone of the session and are read as Zurich's.
    child.environment =
        childEnvironment(machine_, {{"VELLMARK_CLAUDE_PATH", claude.string()},
                                    {"VELLMARK_EXPECT_FABLE", expectsModel ? "1" : "0"},
                                    {"TZ", "Europe/Zurich"}});
    child.workingDirectory = workspace_;
    child.standardOutput = ChildOutput::recorded(log.descriptor(), PrivateTemporaryFile::readLimit);
    child.mergesStandardError = true;
    child.stopsSurvivingChildren = true;
    const Seconds remaining = budget.left();
    if (remaining <= limits_.least) {
        throw UsageProviderError::timeout("Claude");
    }
    try {
        return BoundedProcess::run(child, remaining, limits_.killGrace);
    } catch (const std::system_error& error) {
        throw UsageProviderError::launchFailed("Claude Code",
                                               launchFailureReason(error.code(), interpreter_));
    }
}

AgentUsageSnapshot ClaudeSessionReader::interpret(const ClaudeScreen& screen,
                                                  const ClaudeSessionEnd& end,
                                                  const PrivateTemporaryFile& log) {
    const Instant now = ReferenceClock::now();
    try {
        AgentUsageSnapshot snapshot = interpretClaudeSession(screen, end, now);
        if (hasModelWindow(snapshot)) {
            modelWindows_.markSeen(now);
        }
        if (claudeEndMarkerIsMissing(screen, end)) {
            writeClaudeDiagnostics(screen.drawn(), machine_.home, diagnostics(),
                                   "claude-usage-ending.txt");
        }
        return snapshot;
    } catch (const UsageProviderError& error) {
        const bool isWithoutQuotas = error.kind() == Kind::claudeNoQuotas;
        // A full disk ends the recording as too much output would: what the session showed is lost.
        if ((isWithoutQuotas || end.outputCapped) && !log.hasRoom()) {
            throw UsageProviderError(Kind::claudeTempFileFailed);
        }
        if (!isWithoutQuotas) {
            throw;
        }
        const auto file = writeClaudeDiagnostics(screen.drawn(), machine_.home, diagnostics(),
                                                 "claude-usage-last.txt");
        if (!file) {
            throw;
        }
        throw UsageProviderError::claudeNoQuotasDiagnosed(file->string());
    }
}

} // namespace vellmark
