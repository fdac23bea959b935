#include "ui/kit/WindowKeys.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace vellmark::kit {

bool handleWindowKey(QWidget& window, const QKeyEvent& event) {
    if (event.key() == Qt::Key_Escape) {
        window.close();
        return true;
    }
    auto* focused = qobject_cast<QAbstractButton*>(window.focusWidget());
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (isReturn && focused != nullptr) {
        focused->click();
        return true;
    }
    return false;
}

} // namespace vellmark::kit
