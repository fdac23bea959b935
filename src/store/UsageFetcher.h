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
/// Main thread only. A dropped fetch never reports; its children are ended. Destroying the fetcher
/// drops all and waits for the threads up to `exitPatience`; one that is stuck beyond that is left
/// behind, with nothing of the fetcher's in its reach.
class UsageFetcher {
public:
    using Ticket = std::uint64_t;
    using Completion = std::function<void(FetchOutcome)>;
    static constexpr Seconds exitPatience{3};

    explicit UsageFetcher(MainExecutor& executor);
    ~UsageFetcher();
    UsageFetcher(const UsageFetcher&) = delete;
    UsageFetcher& operator=(const UsageFetcher&) = delete;

    /// `completion` runs on the main thread, later, unless the ticket is dropped before.
    Ticket start(std::shared_ptr<AgentUsageProvider> provider, Completion completion);
    void drop(Ticket ticket);

private:
    struct State;
    std::shared_ptr<State> d_;
};

} // namespace vellmark
