#pragma once

#include "presentation/PopoverContent.h"

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The head that every page of the main window has.
struct PageHeadContent {
    std::string title;
    /// May be empty.
    std::string subtitle;
    /// When the figures of the page were read; empty on pages without figures.
    std::string age;
    /// Its title is empty on pages that have nothing to refresh.
    ControlContent refresh;
    /// Everything that the refresh button may say: it keeps the width of the widest.
    std::vector<std::string> refreshTitles;
    bool isRefreshing = false;

    bool operator==(const PageHeadContent&) const = default;
};

/// The texts of a head; no key, no text.
struct PageHeadKeys {
    std::string_view title;
    std::string_view subtitle;
};

/// A head without age and refresh button.
PageHeadContent pageHead(const PageHeadKeys& keys, const Localization& words);

/// A head with the moment of the last completed refresh and the refresh button.
PageHeadContent refreshablePageHead(const PageHeadKeys& keys, const UsageState& state,
                                    const Localization& words);

} // namespace vellmark
