#pragma once

#include "platform/ActivationPolicy.h"

#include <functional>
#include <set>
#include <string>
#include <utility>

namespace vellmark {

/// Keeps the program a regular application while a window is open, and a menu-bar accessory
/// otherwise. Main thread.
class WindowPresenceController {
public:
    using Switch = std::function<void(ActivationPolicy)>;
    explicit WindowPresenceController(Switch setPolicy = setActivationPolicy)
        : setPolicy_(std::move(setPolicy)) {}

    void windowOpened(const std::string& identifier) {
        const bool isFirst = open_.empty();
        open_.insert(identifier);
        if (isFirst) {
            setPolicy_(ActivationPolicy::regular);
        }
    }

    void windowClosed(const std::string& identifier) {
        if (open_.erase(identifier) > 0 && open_.empty()) {
            setPolicy_(ActivationPolicy::accessory);
        }
    }

    bool hasOpenWindows() const { return !open_.empty(); }

private:
    Switch setPolicy_;
    std::set<std::string> open_;
};

} // namespace vellmark
