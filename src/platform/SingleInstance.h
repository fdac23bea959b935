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
    /// The desktop's leave to take the keyboard that came with this launch, handed over with what
    /// it asks; empty without one.
    std::string activationToken = {};
    /// The same of a later launch, before it is shown what it asks for. The system brings a program
    /// to the front by itself where it gives no such leave.
    std::function<void(const std::string& token)> onActivationToken = {};
};

/// Null when another instance holds the right; it has then been asked to show itself.
std::unique_ptr<SingleInstance> claimSingleInstance(DescriptorWatcher& loop,
                                                    SingleInstanceRequest request);

} // namespace vellmark
