#include "store/AgentFactsCache.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace vellmark {

namespace {

AgentFacts factsOf(const Machine& machine, const ProviderRegistration& registration) {
    try {
        return gatherAgentFacts(machine, {registration}).front();
    } catch (const std::exception&) {
        return {.id = registration.descriptor.id,
                .toolPath = {},
                .toolVersion = {},
                .loggedIn = {}}; // no memory: nothing is known
    }
}

} // namespace

struct AgentFactsCache::Entry {
    std::optional<AgentFacts> facts;
    Instant askedAt{};
    std::optional<std::filesystem::path> askedOf;
    bool isAsking = false;
    std::thread worker;
};

AgentFactsCache::AgentFactsCache(Configuration configuration, MainExecutor& executor,
                                 std::function<void()> onChange)
    : configuration_(std::move(configuration)), executor_(executor),
      onChange_(std::move(onChange)) {}

AgentFactsCache::~AgentFactsCache() {
    isAlive_.reset();
    for (const auto& [id, entry] : entries_) {
        if (entry->worker.joinable()) {
            entry->worker.join();
        }
    }
}

const AgentFacts* AgentFactsCache::of(const AgentProviderID& id) const {
    const auto found = entries_.find(id);
    return found != entries_.end() && found->second->facts ? &*found->second->facts : nullptr;
}

bool AgentFactsCache::isAsking(const AgentProviderID& id) const {
    const auto found = entries_.find(id);
    return found != entries_.end() && found->second->isAsking;
}

void AgentFactsCache::need(const AgentProviderID& id) {
    const auto found = entries_.find(id);
    if (found != entries_.end()) {
        const Seconds age = configuration_.now() - found->second->askedAt;
        // A clock that was set back makes nothing fresh.
        if (age >= Seconds(0) && age < freshFor && found->second->askedOf == chosenProgram(id)) {
            return;
        }
    }
    ask(id);
}

void AgentFactsCache::recheck(const AgentProviderID& id) {
    ask(id);
}

void AgentFactsCache::ask(const AgentProviderID& id) {
    const auto registered =
        std::ranges::find(configuration_.registrations, id,
                          [](const ProviderRegistration& one) { return one.descriptor.id; });
    if (registered == configuration_.registrations.end() || isAsking(id)) {
        return;
    }
    std::unique_ptr<Entry>& entry = entries_[id];
    if (!entry) {
        entry = std::make_unique<Entry>();
    }
    if (entry->worker.joinable()) {
        entry->worker.join(); // it has posted, so it is at its end
    }
    entry->askedAt = configuration_.now();
    entry->askedOf = chosenProgram(id);
    try {
        entry->worker =
            std::thread([this, id, machine = configuration_.machine, registration = *registered,
                         alive = std::weak_ptr<int>(isAlive_)] {
                AgentFacts facts = factsOf(machine, registration);
                executor_.post([this, id, alive, facts = std::move(facts)]() mutable {
                    if (alive.lock()) {
                        land(id, std::move(facts));
                    }
                });
            });
        entry->isAsking = true;
    } catch (const std::system_error&) {
        return; // no thread to be had: asked again when somebody looks after a while
    }
    onChange_();
}

std::optional<std::filesystem::path>
AgentFactsCache::chosenProgram(const AgentProviderID& id) const {
    const auto& chosen = configuration_.machine.chosenExecutables;
    return chosen ? chosen->of(id.rawValue) : std::nullopt;
}

void AgentFactsCache::land(const AgentProviderID& id, AgentFacts facts) {
    Entry& entry = *entries_.at(id);
    entry.worker.join();
    entry.isAsking = false;
    entry.facts = std::move(facts);
    onChange_();
}

} // namespace vellmark
