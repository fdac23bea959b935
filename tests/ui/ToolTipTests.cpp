#include "ui/QtEnvironment.h"
#include "ui/kit/ToolTip.h"

#include <QApplication>
#include <QHelpEvent>
#include <QScreen>
#include <QWidget>
#include <gtest/gtest.h>

namespace vellmark::kit {
namespace {

QWidget* shownTip() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->windowType() == Qt::ToolTip && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

class ToolTip : public ::testing::Test {
protected:
    ToolTip() {
        useToolTips();
        owner.resize(200, 100);
        owner.show();
    }
    void restAt(QPoint place, const QString& text) {
        owner.setToolTip(text);
        QHelpEvent rest(QEvent::ToolTip, QPoint(5, 5), place);
        QCoreApplication::sendEvent(&owner, &rest);
    }
    static void send(QWidget& widget, QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&widget, &event);
    }

    QWidget owner;
};

TEST_F(ToolTip, StandsByThePointerAndOnTheScreenHoweverLongItsText) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QString line = "93% used";
    restAt(screen.center(), line);
    ASSERT_NE(shownTip(), nullptr);
    const QSize small = shownTip()->size();
    EXPECT_GT(shownTip()->y(), screen.center().y());
    for (const QString& text :
         {line, QString(300, u'x'), QStringLiteral("<b>no</b> markup &amp; <img src='x'>")}) {
        for (const QPoint place : {screen.topLeft(), screen.bottomRight()}) {
            restAt(place, text);
            ASSERT_NE(shownTip(), nullptr);
            EXPECT_TRUE(screen.contains(shownTip()->geometry())) << text.toStdString();
            EXPECT_FALSE(shownTip()->geometry().contains(place));
        }
    }
    restAt(screen.center(), QString(300, u'x'));
    EXPECT_GT(shownTip()->height(), small.height());
}

TEST_F(ToolTip, GoesWhenThePointerLeavesOrSomethingIsPressed) {
    for (const auto ending : {QEvent::Leave, QEvent::Hide, QEvent::WindowDeactivate}) {
        restAt(QPoint(50, 50), "tip");
        ASSERT_NE(shownTip(), nullptr);
        send(owner, ending);
        EXPECT_EQ(shownTip(), nullptr) << ending;
    }
    restAt(QPoint(50, 50), "tip");
    tests::pressKey(owner, Qt::Key_A);
    EXPECT_EQ(shownTip(), nullptr);
}

} // namespace
} // namespace vellmark::kit
