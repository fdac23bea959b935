#include "probes/claude/ClaudeUsageProvider.h"

#include "probes/BoundedProcess.h"
#include "probes/ChildEnvironment.h"
#include "probes/ExecutableLocator.h"
#include "probes/claude/ClaudeDiagnostics.h"
#include "probes/claude/ClaudeLoginCheck.h"
#include "probes/claude/ClaudeSession.h"
#include "probes/claude/ClaudeUsageParser.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace vellmark {

namespace {

using Kind = UsageProviderError::Kind;

constexpr const char* displayName = "Claude Code";

bool hasModelWindow(const AgentUsageSnapshot& snapshot) {
    return std::any_of(snapshot.windows.begin(), snapshot.windows.end(),
                       [](const UsageWindow& window) { return window.id == claudeModelWindowID; });
}

} // namespace

ClaudeUsageProvider::ClaudeUsageProvider(Machine machine, Seconds hardLimit)
    : ClaudeUsageProvider(std::move(machine), hardLimit, Limits{}) {}

ClaudeUsageProvider::ClaudeUsageProvider(Machine machine, Seconds hardLimit, Limits limits,
                                         std::filesystem::path interpreter)
    : machine_(std::move(machine)), workspace_(machine_.supportDirectory() / "ClaudeWorkspace"),
      hardLimit_(hardLimit), limits_(limits), interpreter_(std::move(interpreter)),
      modelWindows_(machine_.usageHistoryFile()) {}

std::filesystem::path ClaudeUsageProvider::diagnostics() const {
    return workspace_.parent_path() / "Diagnostics";
}

AgentUsageSnapshot ClaudeUsageProvider::fetch() {
    const Clock::time_point start = Clock::now();
    const auto claude = locateClaude(machine_);
    if (!claude) {
        throw UsageProviderError::executableMissing(displayName);
    }
    // Not knowing is no reason to give up: the session will tell.
    if (claudeIsLoggedIn(machine_, *claude, limits_.loginCheck, limits_.loginCheckGrace) == false) {
        throw UsageProviderError(Kind::claudeNotLoggedIn);
    }
    return readSession(*claude, start);
}

AgentUsageSnapshot ClaudeUsageProvider::readSession(const std::filesystem::path& claude,
                                                    Clock::time_point start) {
    std::filesystem::create_directories(workspace_);
    const auto log = PrivateTemporaryFile::create(machine_.temporary, "vellmark-claude-");
    if (!log) {
        throw UsageProviderError(Kind::claudeTempFileFailed);
    }
    const BoundedProcessResult result = runScript(claude, *log, start);
    ClaudeSessionTimes times;
    times.readAt = Clock::now() - start;
    times.run = result.elapsed;
    times.launch = result.launch;
    const ClaudeScreen screen(log->contents());
    const ClaudeSessionEnd end{result.terminationStatus, result.timedOut || result.uncaughtSignal};
    AgentUsageSnapshot snapshot = interpret(screen, end);
    if (auto note = claudeTimingNote(screen, times)) {
        snapshot.notes.push_back(std::move(*note));
    }
    return snapshot;
}

BoundedProcessResult ClaudeUsageProvider::runScript(const std::filesystem::path& claude,
                                                    const PrivateTemporaryFile& log,
                                                    Clock::time_point start) {
    const bool expectsModel = modelWindows_.shouldExpectModelWindow(ReferenceClock::now());
    ChildConfiguration child;
    child.executable = interpreter_;
    child.arguments = {"-c", claudeSessionScript(limits_.session)};
    child.environment =
        childEnvironment(machine_, {{"VELLMARK_CLAUDE_PATH", claude.string()},
                                    {"VELLMARK_EXPECT_FABLE", expectsModel ? "1" : "0"}});
    child.workingDirectory = workspace_;
    child.standardOutput = ChildOutput::toDescriptor(log.descriptor());
    child.mergesStandardError = true;
    child.stopsSurvivingChildren = true;
    const Seconds remaining = hardLimit_ - (Clock::now() - start);
    if (remaining <= limits_.leastForSession) {
        throw UsageProviderError::timeout("Claude");
    }
    try {
        return BoundedProcess::run(child, remaining, limits_.killGrace);
    } catch (const std::system_error& error) {
        throw UsageProviderError::launchFailed(displayName, error.code().message());
    }
}

AgentUsageSnapshot ClaudeUsageProvider::interpret(const ClaudeScreen& screen,
                                                  const ClaudeSessionEnd& end) {
    const Instant now = ReferenceClock::now();
    try {
        AgentUsageSnapshot snapshot = interpretClaudeSession(screen, end, now);
        if (hasModelWindow(snapshot)) {
            modelWindows_.markSeen(now);
        }
        if (claudeEndMarkerIsMissing(screen, end)) {
            writeClaudeDiagnostics(screen.text(), machine_.home, diagnostics(),
                                   "claude-usage-ending.txt");
        }
        return snapshot;
    } catch (const UsageProviderError& error) {
        if (error.kind() != Kind::claudeNoQuotas) {
            throw;
        }
        const auto file = writeClaudeDiagnostics(screen.text(), machine_.home, diagnostics(),
                                                 "claude-usage-last.txt");
        if (!file) {
            throw;
        }
        throw UsageProviderError::claudeNoQuotasDiagnosed(file->string());
    }
}

} // namespace vellmark
