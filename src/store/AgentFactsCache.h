#pragma once

#include "platform/Machine.h"
#include "probes/AgentFacts.h"
#include "store/MainExecutor.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace vellmark {

/// What is known of the agents' CLIs, for pages that show it: asked when somebody looks, on a
/// thread of its own, and remembered for a while. Costs nothing as long as nobody asks.
///
/// Main thread. Destroying it waits for inquiries under way, up to the limits of their checks
/// (about 15 s, or at once when the children are ended before).
class AgentFactsCache {
public:
    /// A CLI may be installed, updated or removed behind our back.
    static constexpr Seconds freshFor{600};

    struct Configuration {
        Machine machine;
        std::vector<ProviderRegistration> registrations = providerRegistry();
        std::function<Instant()> now = [] { return ReferenceClock::now(); };
    };

    /// `onChange` is called when an inquiry begins or has come to its end.
    AgentFactsCache(Configuration configuration, MainExecutor& executor,
                    std::function<void()> onChange);
    ~AgentFactsCache();
    AgentFactsCache(const AgentFactsCache&) = delete;
    AgentFactsCache& operator=(const AgentFactsCache&) = delete;

    /// Null as long as nothing is known. What was known stays while it is asked anew.
    const AgentFacts* of(const AgentProviderID& id) const;
    bool isAsking(const AgentProviderID& id) const;
    /// Asks unless the answer is under way, or fresh and of the program that is chosen now.
    void need(const AgentProviderID& id);
    /// Asks however fresh the answer is.
    void recheck(const AgentProviderID& id);

private:
    struct Entry;
    void ask(const AgentProviderID& id);
    std::optional<std::filesystem::path> chosenProgram(const AgentProviderID& id) const;
    void land(const AgentProviderID& id, AgentFacts facts);

    Configuration configuration_;
    MainExecutor& executor_;
    std::function<void()> onChange_;
    std::map<AgentProviderID, std::unique_ptr<Entry>> entries_;
    /// Posted tasks hold it weakly and do nothing once this object is gone.
    std::shared_ptr<int> isAlive_ = std::make_shared<int>();
};

} // namespace vellmark
