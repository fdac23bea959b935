#pragma once

class QKeyEvent;
class QWidget;

namespace vellmark::kit {

/// What Escape and Return mean in a window that is read and closed: Escape closes it, Return
/// presses the button that has the keyboard. Whether the key was one of these. Main thread.
bool handleWindowKey(QWidget& window, const QKeyEvent& event);

} // namespace vellmark::kit
