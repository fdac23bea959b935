#include "ui/kit/Spoken.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QLabel>

#include <algorithm>

namespace vellmark::kit {

namespace {

bool takesKeyboard(const QWidget& widget) {
    return (widget.focusPolicy() & Qt::TabFocus) != 0;
}

bool leadsToControls(const QWidget& widget) {
    const QList<QWidget*> inside = widget.findChildren<QWidget*>();
    return takesKeyboard(widget) ||
           std::ranges::any_of(inside, [](const QWidget* each) { return takesKeyboard(*each); });
}

const Spoken* spoken(const QWidget* widget) {
    return dynamic_cast<const Spoken*>(widget);
}

/// Whether something around the widget says what it says.
bool isSaidAlready(const QWidget& widget) {
    for (const QWidget* around = widget.parentWidget(); around != nullptr;
         around = around->parentWidget()) {
        const Spoken* told = spoken(around);
        if (told != nullptr && told->spokenAs().isReadAsOne) {
            return true;
        }
    }
    return false;
}

class SpokenInterface : public QAccessibleWidget {
public:
    explicit SpokenInterface(QWidget* widget) : QAccessibleWidget(widget) {}

    QAccessible::Role role() const override {
        return isSilent() ? QAccessible::Grouping : account().role;
    }

    QString text(QAccessible::Text kind) const override {
        if (isSilent()) {
            return {};
        }
        const QString said = QAccessibleWidget::text(kind);
        const auto* label = qobject_cast<const QLabel*>(widget());
        return kind == QAccessible::Name && said.isEmpty() && label != nullptr ? label->text()
                                                                               : said;
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget())) {
            state.pressed = button->isDown();
            state.selectable = button->isCheckable();
            state.selected = button->isChecked();
        }
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (qobject_cast<QAbstractButton*>(widget()) != nullptr && widget()->isEnabled()) {
            names.prepend(pressAction());
        }
        return names;
    }

    void doAction(const QString& name) override {
        auto* button = qobject_cast<QAbstractButton*>(widget());
        if (button != nullptr && name == pressAction()) {
            button->click();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

    int childCount() const override {
        return account().isReadAsOne ? static_cast<int>(told().size())
                                     : QAccessibleWidget::childCount();
    }

    QAccessibleInterface* child(int index) const override {
        return account().isReadAsOne ? QAccessible::queryAccessibleInterface(told().value(index))
                                     : QAccessibleWidget::child(index);
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        return account().isReadAsOne
                   ? static_cast<int>(told().indexOf(qobject_cast<QWidget*>(child->object())))
                   : QAccessibleWidget::indexOfChild(child);
    }

private:
    SpokenAs account() const { return spoken(widget())->spokenAs(); }

    /// A part of something that is read as one, and no control itself.
    bool isSilent() const { return !takesKeyboard(*widget()) && isSaidAlready(*widget()); }

    QList<QWidget*> told() const {
        QList<QWidget*> result;
        for (QWidget* inside :
             widget()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!inside->isWindow() && leadsToControls(*inside)) {
                result.push_back(inside);
            }
        }
        return result;
    }
};

QAccessibleInterface* spokenInterface(const QString& /*className*/, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    return widget != nullptr && spoken(widget) != nullptr ? new SpokenInterface(widget) : nullptr;
}

} // namespace

Spoken::Spoken() {
    // Once for all: Qt knows a factory that it has.
    QAccessible::installFactory(spokenInterface);
}

} // namespace vellmark::kit
