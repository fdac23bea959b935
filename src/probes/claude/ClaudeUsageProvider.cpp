#include "probes/claude/ClaudeUsageProvider.h"

#include "probes/AgentWorkspace.h"
#include "probes/ExecutableLocator.h"
#include "probes/claude/ClaudeModelWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vellmark {

namespace {

using Kind = UsageProviderError::Kind;
using ReplyKind = ClaudeQueryReply::Kind;
using Clock = std::chrono::steady_clock;

SnapshotNote wayNote(const char* way, Seconds took) {
    return {SnapshotNote::ReadingWay{way, std::llround(took.count() * 1000)}};
}

} // namespace

ClaudeUsageProvider::ClaudeUsageProvider(Machine machine, Seconds hardLimit, ReadingOptions options)
    : ClaudeUsageProvider(std::move(machine), hardLimit, std::move(options), Limits{}) {}

ClaudeUsageProvider::ClaudeUsageProvider(Machine machine, Seconds hardLimit, ReadingOptions options,
                                         Limits limits, std::filesystem::path interpreter)
    : machine_(std::move(machine)), workspace_(agentWorkspace(machine_, "Claude")),
      hardLimit_(hardLimit), options_(std::move(options)), limits_(limits),
      query_(machine_, workspace_, limits_.query),
      session_(machine_, workspace_, limits_.session, std::move(interpreter)) {}

AgentUsageSnapshot ClaudeUsageProvider::fetch() {
    const Budget budget{Clock::now(), hardLimit_};
    const auto claude = locateClaude(machine_);
    if (!claude) {
        throw UsageProviderError::executableMissing("Claude Code");
    }
    if (auto answer = repeated(ExecutableIdentity::of(*claude))) {
        return std::move(*answer);
    }
    madeAgentWorkspace(machine_, "Claude");
    const ClaudeLogin login =
        claudeLogin(machine_, *claude, limits_.loginCheck, limits_.loginCheckGrace);
    // Not knowing is no reason to give up: the reading will show.
    if (login.isLoggedIn == false) {
        throw UsageProviderError(Kind::claudeNotLoggedIn);
    }
    if (login.usesAPIKey) {
        throw UsageProviderError(Kind::claudeAPIKey);
    }
    return read(*claude, login, budget);
}

std::optional<AgentUsageSnapshot>
ClaudeUsageProvider::repeated(const ExecutableIdentity& claude) const {
    const std::lock_guard lock(mutex_);
    const bool isRecent = lastAnswer_ && lastAnswerFrom_ == claude &&
                          Clock::now() - lastAnswerAt_ < limits_.repetition;
    return isRecent ? lastAnswer_ : std::nullopt;
}

AgentUsageSnapshot ClaudeUsageProvider::read(const std::filesystem::path& claude,
                                             const ClaudeLogin& login, const Budget& budget) {
    if (options_.way != claudeSessionWay) {
        const ClaudeExecutable::Facts facts = executable_.facts(machine_, claude);
        if (facts.mayHaveQuery() || options_.way == claudeQueryWay) {
            if (auto snapshot = readByQuery(claude, login, facts, budget)) {
                return std::move(*snapshot);
            }
        }
    }
    return readBySession(claude, login, budget);
}

/// Absent when the CLI is to be read by its screens.
std::optional<AgentUsageSnapshot>
ClaudeUsageProvider::readByQuery(const std::filesystem::path& claude, const ClaudeLogin& login,
                                 const ClaudeExecutable::Facts& facts, const Budget& budget) {
    readsBySession_ = false;
    const ClaudeQueryReader::Result result = query_.ask(claude, budget.left());
    const ClaudeQueryReply& reply = result.reply;
    if (reply.kind == ReplyKind::failed) {
        throw UsageProviderError::claudeQueryFailed(reply.reason);
    }
    if (reply.kind == ReplyKind::answered) {
        AgentUsageSnapshot snapshot =
            claudeQuerySnapshot(reply.answer, login, facts.version, ReferenceClock::now());
        snapshot.notes.insert(snapshot.notes.begin(), wayNote(claudeQueryWay, budget.spent()));
        if (std::ranges::find(snapshot.windows, claudeModelWindowID, &UsageWindow::id) !=
            snapshot.windows.end()) {
            session_.markModelWindowSeen(snapshot.updatedAt);
        }
        if (snapshot.source == SnapshotSource::live) {
            const std::lock_guard lock(mutex_);
            lastAnswer_ = snapshot;
            lastAnswerFrom_ = ExecutableIdentity::of(claude);
            lastAnswerAt_ = Clock::now();
        }
        return snapshot;
    }
    if (result.timedOut) {
        throw UsageProviderError::timeout("Claude");
    }
    if (reply.kind == ReplyKind::unsupported) {
        executable_.markQueryRefused(claude);
    }
    if (options_.way == claudeQueryWay) {
        throw UsageProviderError::claudeQueryFailed(reply.reason.empty() ? result.words
                                                                         : reply.reason);
    }
    return std::nullopt;
}

AgentUsageSnapshot ClaudeUsageProvider::readBySession(const std::filesystem::path& claude,
                                                      const ClaudeLogin& login,
                                                      const Budget& budget) {
    if (login.lacksSubscription && login.isLoggedIn == true) {
        // Otherwise the CLI would keep asking whether to trust the folder until time is up.
        throw UsageProviderError(Kind::claudeNoSubscription);
    }
    readsBySession_ = true;
    AgentUsageSnapshot snapshot = session_.read(claude, budget);
    snapshot.notes.insert(snapshot.notes.begin(), wayNote(claudeSessionWay, budget.spent()));
    if (!hasToldCosts_.exchange(true)) {
        snapshot.notes.push_back({SnapshotNote::ReadingCosts{}});
    }
    return snapshot;
}

ReadingPace ClaudeUsageProvider::pace() const {
    return readsBySession_
               ? ReadingPace{.interval = options_.interval.value_or(defaultCostlyInterval)}
               : ReadingPace{};
}

} // namespace vellmark
