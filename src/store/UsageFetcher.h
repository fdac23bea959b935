#pragma once

#include "probes/AgentUsageProvider.h"
#include "store/MainExecutor.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace vellmark {

/// What a fetch came to: a reading, why there is none, or something that no probe should throw
/// (its message, empty when it had none).
struct UnexpectedFault {
    std::string message;
};
using FetchOutcome = std::variant<AgentUsageSnapshot, UsageProviderError, UnexpectedFault>;

/// Runs fetches, each on a thread of its own, and brings their outcomes to the main thread.
///
/// Main thread only. A fetch that is not over after `fetchLimit`, whatever it waits for, is
/// abandoned: it counts as timed out, and its thread may end when it will. A dropped fetch never
/// reports. The children of both are ended. Destroying the fetcher drops all and waits for the
/// threads, but those abandoned, up to `exitPatience`; one that is stuck beyond that is left
/// behind, with nothing of the fetcher's in its reach, and noted for the program's end.
class UsageFetcher {
public:
    using Ticket = std::uint64_t;
    using Completion = std::function<void(FetchOutcome)>;
    /// Longer than the limits of every probe's children, which should come first.
    static constexpr Seconds fetchLimit{90};
    static constexpr Seconds exitPatience{3};
    /// This many stuck fetches of one provider are tolerated; the next one times out at once.
    static constexpr int mostStuck = 3;

    /// Failures lose whatever they tell of `homeDirectory` and of secrets (`redactedWords`).
    UsageFetcher(MainExecutor& executor, std::string homeDirectory);
    ~UsageFetcher();
    UsageFetcher(const UsageFetcher&) = delete;
    UsageFetcher& operator=(const UsageFetcher&) = delete;

    /// Whether the user has asked for the reading.
    enum class Occasion { byHand, automatic };

    /// `completion` runs on the main thread, later, unless the ticket is dropped before. `name` is
    /// what has timed out when the fetch is abandoned.
    Ticket start(std::shared_ptr<AgentUsageProvider> provider, std::string name, Occasion occasion,
                 Completion completion);
    void drop(Ticket ticket);

private:
    struct State;
    std::shared_ptr<State> d_;
};

} // namespace vellmark
