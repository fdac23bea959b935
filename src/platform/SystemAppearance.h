#pragma once

#include "platform/DescriptorWatcher.h"

#include <functional>
#include <memory>

namespace vellmark {

enum class ColorScheme { noPreference, light, dark };

/// Whether the system is light or dark, how much may move on it, and how much its colours stand
/// out. Main thread.
class SystemAppearance {
public:
    virtual ~SystemAppearance() = default;
    /// `noPreference` also until the answer has arrived.
    virtual ColorScheme colorScheme() const = 0;
    /// The user has asked the system for less motion.
    virtual bool reducesMotion() const = 0;
    /// The user has asked the system for more contrast.
    virtual bool increasesContrast() const = 0;
};

/// Calls `onChange` on the main thread whenever an answer has changed. Never null; asks without
/// waiting.
std::unique_ptr<SystemAppearance> observeSystemAppearance(DescriptorWatcher& loop,
                                                          std::function<void()> onChange);

/// Light or dark for what the system draws of this program (title bars, menus, panels); with
/// `noPreference` it follows the system again. `colorScheme` answers the set one meanwhile. Does
/// nothing where the system decides that itself. Main thread.
void setApplicationAppearance(ColorScheme scheme);

} // namespace vellmark
