#pragma once

#include <QString>

class QPoint;
class QWidget;

namespace vellmark::kit {

/// From now on every widget's `toolTip()` is shown as plain text on the theme's ground. Called once
/// after the application was made. Main thread.
void useToolTips();

/// Shows `text` beside the pointer, which rests on `owner`, until it leaves or something is
/// pressed.
void showToolTip(QWidget* owner, const QPoint& pointer, const QString& text);

} // namespace vellmark::kit
