#include "presentation/PageHeadContent.h"

#include "text/Formatting.h"

namespace vellmark {

PageHeadContent pageHead(const PageHeadKeys& keys, const Localization& words) {
    PageHeadContent head;
    head.title = words.text(keys.title);
    if (!keys.subtitle.empty()) {
        head.subtitle = words.text(keys.subtitle);
    }
    return head;
}

PageHeadContent refreshablePageHead(const PageHeadKeys& keys, const UsageState& state,
                                    const Localization& words) {
    PageHeadContent head = pageHead(keys, words);
    head.age =
        state.lastRefreshCompletedAt
            ? words.format("overview.updated", {momentText(*state.lastRefreshCompletedAt, words)})
            : words.text("overview.notUpdated");
    head.isRefreshing = state.isRefreshing;
    head.refresh = {words.text(state.isRefreshing ? "header.refreshing" : "header.refresh"),
                    "arrow.clockwise", ""};
    head.refreshTitles = {words.text("header.refresh"), words.text("header.refreshing")};
    return head;
}

} // namespace vellmark
