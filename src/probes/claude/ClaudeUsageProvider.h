#pragma once

#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "probes/claude/ClaudeExecutable.h"
#include "probes/claude/ClaudeLoginCheck.h"
#include "probes/claude/ClaudeQueryReader.h"
#include "probes/claude/ClaudeSessionReader.h"
#include "text/Instant.h"

#include <atomic>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace vellmark {

/// The names of the ways.
inline constexpr const char* claudeQueryWay = "query";
inline constexpr const char* claudeSessionWay = "session";

/// Reads Claude's quotas by the CLI's own usage query, and off its screens where the CLI does not
/// have it. A proper answer without figures is the reading's result and no cause to open the
/// screens, which would show nothing newer and spend quota.
///
/// A fetch checks the login first. It blocks for `hardLimit` plus a child's grace at most. The CLI
/// repeats an answer for a minute, so within that time it is not asked again. Beside
/// UsageProviderError, `fetch` throws std::filesystem::filesystem_error when the directory that the
/// CLI is started in cannot be made.
class ClaudeUsageProvider : public AgentUsageProvider {
public:
    struct Limits {
        Seconds loginCheck{10.0};
        Seconds loginCheckGrace{2.0};
        ClaudeQueryReader::Limits query;
        ClaudeSessionReader::Limits session;
        /// For how long the CLI repeats its last answer.
        Seconds repetition{60.0};
    };

    static constexpr Seconds defaultHardLimit{45.0};
    /// Between two automatic readings that spend quota.
    static constexpr Seconds defaultCostlyInterval{1800.0};
    static constexpr const char* defaultInterpreter = "/usr/bin/expect";

    /// `hardLimit` is the budget of one fetch.
    explicit ClaudeUsageProvider(Machine machine, Seconds hardLimit = defaultHardLimit,
                                 ReadingOptions options = {});
    /// Tests give shorter limits.
    ClaudeUsageProvider(Machine machine, Seconds hardLimit, ReadingOptions options, Limits limits,
                        std::filesystem::path interpreter = defaultInterpreter);

    AgentProviderID id() const override { return AgentProviderID::claude(); }
    AgentUsageSnapshot fetch() override;
    ReadingPace pace() const override;

private:
    using Budget = ClaudeSessionReader::Budget;

    std::optional<AgentUsageSnapshot> repeated(const ExecutableIdentity& claude) const;
    AgentUsageSnapshot read(const std::filesystem::path& claude, const ClaudeLogin& login,
                            const Budget& budget);
    std::optional<AgentUsageSnapshot> readByQuery(const std::filesystem::path& claude,
                                                  const ClaudeLogin& login,
                                                  const ClaudeExecutable::Facts& facts,
                                                  const Budget& budget);
    AgentUsageSnapshot readBySession(const std::filesystem::path& claude, const ClaudeLogin& login,
                                     const Budget& budget);

    Machine machine_;
    std::filesystem::path workspace_;
    Seconds hardLimit_;
    ReadingOptions options_;
    Limits limits_;
    ClaudeExecutable executable_;
    ClaudeQueryReader query_;
    ClaudeSessionReader session_;

    std::atomic<bool> readsBySession_ = false;
    std::atomic<bool> hasToldCosts_ = false;

    /// The last live answer to a query, and which CLI gave it.
    mutable std::mutex mutex_;
    std::optional<AgentUsageSnapshot> lastAnswer_;
    std::optional<ExecutableIdentity> lastAnswerFrom_;
    std::chrono::steady_clock::time_point lastAnswerAt_{};
};

} // namespace vellmark
