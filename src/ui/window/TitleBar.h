#pragma once

class QWidget;

namespace vellmark {

/// Lets a window's content reach under its title bar, where the system has windows like that.
/// Answers how much of its top the title bar's buttons then take at the left; 0 where nothing
/// changed.
int reachUnderTitleBar(QWidget& window);

} // namespace vellmark
