#include "presentation/MenuBarGlyph.h"

#include "probes/ProviderRegistry.h"

#include <algorithm>
#include <cmath>

namespace vellmark {
namespace {

struct Candidate {
    const AgentProviderID* provider;
    const UsageWindow* window;
    Severity severity;
    std::optional<double> pace;
    double remaining;
};

constexpr double equalPace = 0.01;

/// Whether `challenger`, met later in the walk, takes the place of `current`.
bool isMorePressing(const Candidate& challenger, const Candidate& current) {
    if (challenger.severity != current.severity) {
        return challenger.severity > current.severity;
    }
    if (challenger.pace.has_value() != current.pace.has_value()) {
        return challenger.pace.has_value();
    }
    if (challenger.pace && std::abs(*challenger.pace - *current.pace) > equalPace) {
        return *challenger.pace > *current.pace;
    }
    return challenger.remaining < current.remaining;
}

bool mayDriveGlyph(const AgentProviderID& id) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    return descriptor != nullptr && descriptor->drivesGlyph();
}

bool differs(const std::optional<double>& drawn, const std::optional<double>& current) {
    if (drawn.has_value() != current.has_value()) {
        return true;
    }
    return drawn && !(std::abs(*drawn - *current) < 1.0);
}

} // namespace

MenuBarGlyph MenuBarGlyph::compute(std::span<const AgentUsageSnapshot> snapshots,
                                   const std::set<AgentProviderID>& enabled, Instant now) {
    std::optional<Candidate> choice;
    for (const AgentUsageSnapshot& snapshot : snapshots) {
        if (!enabled.contains(snapshot.id) || !mayDriveGlyph(snapshot.id)) {
            continue;
        }
        for (const UsageWindow& window : snapshot.windows) {
            const Candidate candidate{&snapshot.id, &window, severity(window, now),
                                      pace(window, now),
                                      std::clamp(remainingPercent(window), 0.0, 100.0)};
            if (!choice || isMorePressing(candidate, *choice)) {
                choice = candidate;
            }
        }
    }
    if (!choice) {
        return {};
    }
    return {.usedPercent = std::clamp(choice->window->usedPercent, 0.0, 100.0),
            .elapsedPercent = vellmark::elapsedPercent(*choice->window, now),
            .providerID = *choice->provider,
            .windowID = choice->window->id};
}

bool needsRedraw(const std::optional<MenuBarGlyph>& drawn, const MenuBarGlyph& current) {
    return !drawn || differs(drawn->usedPercent, current.usedPercent) ||
           differs(drawn->elapsedPercent, current.elapsedPercent);
}

} // namespace vellmark
