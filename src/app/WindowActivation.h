#pragma once

#include <string>

class QWidget;

namespace vellmark {

/// The desktop's leave to take the keyboard, which came with what the user did elsewhere: started
/// the program once more, clicked its item in a panel or a notice. The next `bringToFront` uses it.
/// Nothing where the system needs none. Main thread.
void setActivationToken(const std::string& token);

/// Before all other windows and with the keyboard, as far as the desktop allows it. Main thread.
void bringToFront(QWidget& window);

} // namespace vellmark
