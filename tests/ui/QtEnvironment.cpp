#include "ui/QtEnvironment.h"

#include "support/ProcessCensus.h"
#include "ui/ForecastLine.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/Label.h"
#include "ui/kit/SidebarEntry.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTabBar>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace vellmark::tests {

namespace {

/// One application for all tests of the program, without a display and a bus.
class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
        QApplication::setQuitOnLastWindowClosed(false);
        application_ = std::make_unique<QApplication>(count_, arguments_);
        QFont font = QApplication::font();
        font.setFamily("Inter");
        QApplication::setFont(font);
    }
    void TearDown() override { application_.reset(); }

private:
    char name_[9] = "ui_tests";
    char* arguments_[2] = {name_, nullptr};
    int count_ = 1;
    std::unique_ptr<QApplication> application_;
};

/// Room for the warning mark before the words of a forecast.
constexpr int markRoom = 16;

/// Whether the place of a widget is too small for its words. A short form counts as fitting.
bool isCut(const QWidget& widget, const QWidget& view) {
    if (const auto* forecast = dynamic_cast<const ForecastLine*>(&widget)) {
        // The tooltip has the long form where that does not fit.
        return !forecast->toolTip().isEmpty() &&
               kit::textWidth(forecast->text(), kit::style::smallMedium) >
                   forecast->width() - markRoom;
    }
    if (const auto* label = dynamic_cast<const kit::Label*>(&widget)) {
        // What an agent calls its limits is not ours to shorten, and paths are told by tooltips.
        return label->height() < label->heightForWidth(label->width()) ||
               (label->isShortened() && !label->text().contains("GPT-5.3") &&
                !label->text().contains("~/"));
    }
    if (const auto* entry = dynamic_cast<const kit::SidebarEntry*>(&widget)) {
        return entry->isShortened();
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        return button->mapTo(&view, button->rect().topRight()).x() > view.width() ||
               (!button->text().isEmpty() && button->width() < button->minimumSizeHint().width());
    }
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        return tabs->count() > 0 && !tabs->rect().contains(tabs->tabRect(tabs->count() - 1));
    }
    return false;
}

/// Words, or a control; what stands within a field has its room there.
bool needsPlace(const QWidget& widget) {
    const auto* label = qobject_cast<const QLabel*>(&widget);
    return label != nullptr ? !label->text().isEmpty()
                            : (widget.focusPolicy() & Qt::TabFocus) != 0 &&
                                  qobject_cast<const QLineEdit*>(&widget) == nullptr;
}

/// Whether words or a control leave what they stand in, or cover others there.
bool isOutOfPlace(const QWidget& widget) {
    const QRect place = widget.geometry();
    return needsPlace(widget) &&
           (!widget.parentWidget()->rect().contains(place) ||
            std::ranges::any_of(visibleParts<QWidget>(*widget.parentWidget()), [&](auto* other) {
                return other != &widget && other->parent() == widget.parent() &&
                       needsPlace(*other) && other->geometry().intersects(place);
            }));
}

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new QtEnvironment);

} // namespace

bool waitUntil(const std::function<bool()>& condition) {
    return becomesTrue(
        [&] {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            return condition();
        },
        std::chrono::minutes(1));
}

void settle() {
    for (int turn = 0; turn < 3; ++turn) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

bool becomesActive(QWidget& window) {
    window.activateWindow();
    return waitUntil([&] { return window.isActiveWindow(); });
}

void pressKey(QWidget& window, int key, Qt::KeyboardModifiers modifiers) {
    QWidget* target = window.focusWidget() != nullptr ? window.focusWidget() : &window;
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers);
    QCoreApplication::sendEvent(target, &release);
}

void sendMouse(QWidget& widget, QEvent::Type type, QPointF place, Qt::MouseButton button) {
    QMouseEvent event(type, place, widget.mapToGlobal(place),
                      type == QEvent::MouseMove ? Qt::NoButton : button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

AgentUIActions RecordedActions::actions() {
    return {.refresh = note("refresh"),
            .openWindow = note("openWindow"),
            .openProvider = note("openProvider"),
            .openSettings = note("openSettings"),
            .showAbout = note("showAbout"),
            .startSetup = note("startSetup"),
            .setUpAgent = note("setUpAgent"),
            .showLegal = note("showLegal"),
            .showSupportReport = note("showSupportReport"),
            .quit = note("quit")};
}

std::string RecordedActions::text(const std::vector<AgentProviderID>& order) {
    std::string names;
    for (const AgentProviderID& id : order) {
        names += (names.empty() ? "" : " ") + id.rawValue;
    }
    return names;
}

std::vector<QWidget*> tabStops(QWidget& window) {
    std::vector<QWidget*> stops;
    for (QWidget* widget = window.nextInFocusChain(); widget != &window;
         widget = widget->nextInFocusChain()) {
        const bool isStop = (widget->focusPolicy() & Qt::TabFocus) != 0;
        if (isStop && widget->isVisibleTo(&window) && widget->isEnabled()) {
            stops.push_back(widget);
        }
    }
    return stops;
}

bool says(const QWidget& view, const QString& words) {
    return std::ranges::count(visibleParts<QLabel>(view), words, &QLabel::text) > 0;
}

void expectFocusRingsAreWhole(QWidget& view) {
    if (view.focusWidget() != nullptr) {
        view.focusWidget()->clearFocus();
    }
    for (QWidget* stop : tabStops(view)) {
        stop->setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(view.rect().contains(QRect(stop->mapTo(&view, QPoint()), stop->size())))
            << stop->accessibleName().toStdString();
        const auto rings = visibleParts<kit::FocusRing>(view);
        ASSERT_FALSE(rings.empty()) << stop->accessibleName().toStdString();
        const kit::FocusRing& ring = *rings.back();
        EXPECT_TRUE(ring.parentWidget()->rect().contains(ring.geometry()))
            << stop->accessibleName().toStdString();
    }
}

void expectNothingIsCut(const QWidget& view, const std::string& where) {
    const auto parts = visibleParts<QWidget>(view);
    for (const QWidget* part : parts) {
        EXPECT_FALSE(isCut(*part, view) || isOutOfPlace(*part))
            << where << ": " << part->metaObject()->className() << " "
            << part->property("text").toString().toStdString();
    }
    EXPECT_GT(parts.size(), 5U) << where;
}

} // namespace vellmark::tests
