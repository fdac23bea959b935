#include "presentation/StatusMenuContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/MainMenuContent.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

namespace vellmark {
namespace {

constexpr std::string_view agentPrefix = "agent/";
/// Some agents name their windows themselves.
constexpr std::size_t longestTitle = 120;

std::string titleOf(std::string_view text) {
    return firstCharacters(singleLine(text), longestTitle);
}

/// "Session: 4% left · Resets 4:15 PM", with the time of old figures.
std::string windowTitle(const UsageWindow& window, const WindowStanding& standing,
                        FirstFigure first, Instant now, const Localization& words) {
    using Kind = WindowStanding::Kind;
    std::string text =
        singleLine(windowLabel(window, words)) + ": " + usageValueText(window, first, words);
    switch (standing.kind) {
    case Kind::counts:
        if (window.resetsAt) {
            text +=
                " · " + words.format("usage.reset.at", {instantText(*window.resetsAt, now, words)});
        }
        break;
    case Kind::usedUp:
        text += " · " + usedUpText(window, now, words);
        break;
    case Kind::held:
        text += " · " + waitingText(*standing.holder, words);
        break;
    case Kind::due:
        text += " · " + resetText(window, now, words);
        break;
    }
    return standing.isOld ? words.format("popover.status.asOf",
                                         {text, instantText(standing.readAt, now, words)})
                          : text;
}

/// "Claude · Session 4% left", or how the agent is.
std::string agentTitle(const AgentUsageSnapshot& snapshot, const UsageState& state,
                       const AgentStanding& standing, Instant now, const Localization& words) {
    const std::string name = agentShortName(snapshot.id, words);
    const auto pressing =
        mostPressingWindow(state, now, [&](const AgentUsageSnapshot& each, const UsageWindow&) {
            return each.id == snapshot.id;
        });
    if (pressing) {
        return name + " · " + singleLine(windowLabel(*pressing->window, words, true)) + " " +
               usageValueText(*pressing->window, state.firstFigure, words);
    }
    const bool isLoading = snapshot.source == SnapshotSource::loading && !snapshot.error;
    return name + " · " +
           words.text(isLoading          ? "popover.loadingValues"
                      : standing.isDue() ? "health.due"
                                         : "health.unavailable");
}

StatusMenuItem agentItem(const AgentUsageSnapshot& snapshot, const UsageState& state, Instant now,
                         const Localization& words) {
    const AgentStanding standing = standingOf(snapshot, state, now);
    const std::string action = std::string(agentPrefix) + snapshot.id.rawValue;
    StatusMenuItem item{titleOf(agentTitle(snapshot, state, standing, now, words)), action};
    for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
        item.items.push_back({titleOf(windowTitle(snapshot.windows[index], standing.windows[index],
                                                  state.firstFigure, now, words)),
                              action});
    }
    if (snapshot.error) {
        item.items.push_back({titleOf(snapshot.error->message(words)), action});
    }
    if (!item.items.empty()) {
        item.action.clear();
    }
    return item;
}

} // namespace

std::vector<StatusMenuItem> statusMenuContent(const UsageState& state, Instant now,
                                              const Localization& words) {
    std::vector<StatusMenuItem> menu;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        menu.push_back(agentItem(snapshot, state, now, words));
    }
    if (!menu.empty()) {
        menu.push_back({});
    }
    const auto add = [&](std::string_view key, std::string_view action) {
        menu.push_back({words.text(key), std::string(action)});
    };
    add("menu.statusItem.open", menuAction::openWindow);
    add("menu.statusItem.refresh", menuAction::refresh);
    menu.push_back({});
    add("menu.settings", menuAction::showSettings);
    menu.push_back({});
    add("menu.quit", menuAction::terminate);
    return menu;
}

std::optional<AgentProviderID> agentOfMenuAction(std::string_view action) {
    return action.starts_with(agentPrefix)
               ? std::optional(AgentProviderID(std::string(action.substr(agentPrefix.size()))))
               : std::nullopt;
}

} // namespace vellmark
