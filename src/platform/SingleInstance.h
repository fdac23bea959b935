#pragma once

#include "platform/DescriptorWatcher.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace vellmark {

/// The right to be the one instance of the program, held until destroyed.
class SingleInstance {
public:
    virtual ~SingleInstance() = default;
};

struct SingleInstanceRequest {
    /// "app.vellmark.Vellmark": the bundle's identifier and the name on the bus.
    std::string identifier;
    /// Where a lock can be kept. Created when needed.
    std::filesystem::path directory;
    /// Called on the main thread when a later launch asks this instance to show itself.
    std::function<void()> onShow;
    /// The same when it is asked for its popover; without it, `onShow` is called.
    std::function<void()> onShowPopover = {};
    /// What this launch asks of another instance: its popover instead of its window. The system has
    /// a way of its own to the status item where it shows a menu bar; there it is the window.
    bool asksForPopover = false;
};

/// Null when another instance holds the right; it has then been asked to show itself.
std::unique_ptr<SingleInstance> claimSingleInstance(DescriptorWatcher& loop,
                                                    SingleInstanceRequest request);

} // namespace vellmark
