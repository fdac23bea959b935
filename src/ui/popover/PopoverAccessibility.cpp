#include "ui/popover/PopoverAccessibility.h"

#include "ui/popover/Popover.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <qaccessibleobject.h>

namespace vellmark {

namespace {

/// The popovers that Qt's list of the application's windows lacks.
QWidgetList hiddenPopovers() {
    QWidgetList popovers;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->windowType() == Qt::Popup && dynamic_cast<Popover*>(window) != nullptr) {
            popovers.push_back(window);
        }
    }
    return popovers;
}

/// The application with its popovers behind all other windows.
class ApplicationInterface : public QAccessibleApplication {
public:
    int childCount() const override {
        return QAccessibleApplication::childCount() + static_cast<int>(hiddenPopovers().size());
    }

    QAccessibleInterface* child(int index) const override {
        const int others = QAccessibleApplication::childCount();
        if (index < others) {
            return QAccessibleApplication::child(index);
        }
        return QAccessible::queryAccessibleInterface(hiddenPopovers().value(index - others));
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        const qsizetype index = hiddenPopovers().indexOf(child->object());
        return index < 0 ? QAccessibleApplication::indexOfChild(child)
                         : QAccessibleApplication::childCount() + static_cast<int>(index);
    }
};

QAccessibleInterface* popoverInterface(const QString& /*className*/, QObject* object) {
    if (object == qApp) {
        return new ApplicationInterface;
    }
    if (auto* popover = dynamic_cast<Popover*>(object)) {
        return new QAccessibleWidget(popover, QAccessible::Dialog);
    }
    return nullptr;
}

} // namespace

void tellOfPopovers() {
    QAccessible::installFactory(popoverInterface);
}

} // namespace vellmark
