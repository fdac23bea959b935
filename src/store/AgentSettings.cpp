#include "store/AgentSettings.h"

#include "text/Capitalization.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace vellmark {

namespace {

constexpr double leastIntervalMinutes = 1;
constexpr double mostIntervalMinutes = 24 * 60;

std::vector<std::string> list(const Preferences& preferences, std::string_view key) {
    return preferences.strings(key).value_or(std::vector<std::string>{});
}

} // namespace

std::string AgentSettings::executableKey(const AgentProviderID& id) {
    return capitalized(id.rawValue) + "Path";
}

std::string AgentSettings::wayKey(const AgentProviderID& id) {
    return capitalized(id.rawValue) + "ReadingWay";
}

std::string AgentSettings::intervalKey(const AgentProviderID& id) {
    return capitalized(id.rawValue) + "ReadingInterval";
}

AgentSettings::AgentSettings(Preferences& preferences,
                             const std::vector<ProviderRegistration>& registrations)
    : preferences_(preferences) {
    for (const ProviderRegistration& registration : registrations) {
        registered_.push_back(registration.descriptor.id);
    }
}

bool AgentSettings::isRegistered(const AgentProviderID& id) const {
    return std::ranges::find(registered_, id) != registered_.end();
}

std::vector<AgentProviderID> AgentSettings::order() const {
    std::vector<AgentProviderID> stored;
    for (const std::string& id : list(preferences_, orderKey)) {
        stored.emplace_back(id);
    }
    return completed(stored);
}

void AgentSettings::setOrder(const std::vector<AgentProviderID>& order) {
    std::vector<std::string> stored;
    for (const AgentProviderID& id : order) {
        stored.push_back(id.rawValue);
    }
    preferences_.setStrings(orderKey, std::move(stored));
}

std::vector<AgentProviderID>
AgentSettings::completed(const std::vector<AgentProviderID>& wanted) const {
    std::vector<AgentProviderID> order;
    const auto append = [&](const AgentProviderID& id) {
        if (isRegistered(id) && std::ranges::find(order, id) == order.end()) {
            order.push_back(id);
        }
    };
    std::ranges::for_each(wanted, append);
    std::ranges::for_each(registered_, append);
    return order;
}

ReadingOptions AgentSettings::readingOptions(const ProviderDescriptor& agent) const {
    ReadingOptions options;
    const auto way = preferences_.string(wayKey(agent.id));
    // Ignore a way that only another version has.
    if (way && std::ranges::find(agent.readingWays, *way) != agent.readingWays.end()) {
        options.way = *way;
    }
    const auto minutes = preferences_.number(intervalKey(agent.id));
    if (minutes && *minutes >= leastIntervalMinutes && *minutes <= mostIntervalMinutes) {
        options.interval = Seconds(*minutes * 60);
    }
    return options;
}

std::set<AgentProviderID> AgentSettings::enabled() const {
    const auto disabled = list(preferences_, disabledKey);
    std::set<AgentProviderID> enabled;
    for (const AgentProviderID& id : registered_) {
        if (std::ranges::find(disabled, id.rawValue) == disabled.end()) {
            enabled.insert(id);
        }
    }
    return enabled;
}

void AgentSettings::setEnabled(const AgentProviderID& id, bool enabled) {
    preferences_.setMember(disabledKey, id.rawValue, !enabled);
}

std::optional<std::filesystem::path>
AgentSettings::chosenExecutable(const AgentProviderID& id) const {
    const auto stored = preferences_.string(executableKey(id));
    return stored && std::filesystem::path(*stored).is_absolute()
               ? std::optional<std::filesystem::path>(*stored)
               : std::nullopt;
}

void AgentSettings::chooseExecutable(const AgentProviderID& id,
                                     const std::optional<std::filesystem::path>& path) {
    if (path) {
        preferences_.setString(executableKey(id), path->string());
    } else {
        preferences_.remove(executableKey(id));
    }
}

std::set<AgentProviderID> AgentSettings::applyExecutables(const Machine& machine) const {
    std::set<AgentProviderID> changed;
    for (const AgentProviderID& id : registered_) {
        if (machine.chosenExecutables &&
            machine.chosenExecutables->choose(id.rawValue, chosenExecutable(id))) {
            changed.insert(id);
        }
    }
    return changed;
}

} // namespace vellmark
