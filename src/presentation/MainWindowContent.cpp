#include "presentation/MainWindowContent.h"

#include <algorithm>

namespace vellmark {

ControlContent menuButton(const Localization& words) {
    return {words.text("menu.open"), "ellipsis", words.text("menu.open.help")};
}

AgentPage shownPage(const AgentPage& selection, const UsageState& state) {
    const bool isShown = selection.kind != AgentPage::Kind::provider ||
                         std::ranges::find(state.snapshots, selection.providerID,
                                           &AgentUsageSnapshot::id) != state.snapshots.end();
    return isShown ? selection : AgentPage::of(AgentPage::Kind::overview);
}

} // namespace vellmark
