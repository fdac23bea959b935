#include "ui/kit/ToolTip.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"
#include "ui/kit/WindowSurface.h"

#include <QApplication>
#include <QBitmap>
#include <QHelpEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace vellmark::kit {

namespace {

constexpr TextStyle textStyle = style::small;
constexpr int widestText = 480;
constexpr int sidePadding = 10;
constexpr int verticalPadding = 6;
/// Around the ground, where the outline runs.
constexpr int edgeWidth = 1;
/// From the pointer's tip: beside the arrow, as far above.
constexpr int belowPointer = 20;
constexpr int abovePointer = 6;

class Tip : public QWidget {
public:
    Tip(QWidget* owner, const QString& text)
        : QWidget(owner, Qt::ToolTip | Qt::FramelessWindowHint),
          lines_(wrappedText(text, textStyle, widestText)),
          isComposited_(windowSurface().isComposited) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TranslucentBackground, isComposited_);
        double widest = 0;
        for (const QString& line : lines_) {
            widest = std::max(widest, textWidth(line, textStyle));
        }
        resize(static_cast<int>(std::ceil(widest)) + 2 * (sidePadding + edgeWidth),
               static_cast<int>(lines_.size()) * textStyle.lineHeight +
                   2 * (verticalPadding + edgeWidth));
        if (!isComposited_) {
            cutCorners();
        }
    }

    void placeAt(const QPoint& pointer) {
        const QScreen* on = QGuiApplication::screenAt(pointer);
        const QRect area =
            (on != nullptr ? on : QGuiApplication::primaryScreen())->availableGeometry();
        int top = pointer.y() + belowPointer;
        if (top + height() > area.bottom() + 1) {
            top = pointer.y() - abovePointer - height();
        }
        const int rightmost = std::max(area.right() + 1 - width(), area.left());
        move(std::clamp(pointer.x(), area.left(), rightmost), std::max(top, area.top()));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        if (isComposited_) {
            painter.setBrush(color(ColorRole::edge));
            painter.drawRoundedRect(rect(), radius::notice + edgeWidth, radius::notice + edgeWidth);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
        } else {
            painter.fillRect(rect(), color(ColorRole::lineStrong));
        }
        painter.setBrush(color(ColorRole::popover));
        const QRect ground = rect().adjusted(edgeWidth, edgeWidth, -edgeWidth, -edgeWidth);
        painter.drawRoundedRect(ground, radius::notice, radius::notice);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setPen(color(ColorRole::ink));
        QRectF line(ground.left() + sidePadding, ground.top() + verticalPadding, widestText,
                    textStyle.lineHeight);
        for (const QString& text : lines_) {
            drawText(painter, line, Qt::AlignLeft, text, textStyle);
            line.translate(0, textStyle.lineHeight);
        }
    }

private:
    void cutCorners() {
        QBitmap shape(size());
        shape.clear();
        QPainter painter(&shape);
        painter.setBrush(Qt::color1);
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(rect(), radius::notice, radius::notice);
        painter.end();
        setMask(shape);
    }

    QStringList lines_;
    bool isComposited_;
};

/// Watches the application for when a tip is wanted and when it is to go.
class ToolTips : public QObject {
public:
    using QObject::QObject;

    void show(QWidget* owner, const QPoint& pointer, const QString& text) {
        hide();
        auto* tip = new Tip(owner, text);
        tip->placeAt(pointer);
        tip->show();
        tip_ = tip;
        owner_ = owner;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::ToolTip:
            if (auto* widget = qobject_cast<QWidget*>(watched);
                widget != nullptr && !widget->toolTip().isEmpty()) {
                show(widget, static_cast<QHelpEvent*>(event)->globalPos(), widget->toolTip());
                return true;
            }
            break;
        case QEvent::Leave:
        case QEvent::Hide:
        case QEvent::WindowDeactivate:
            if (watched == owner_) {
                hide();
            }
            break;
        case QEvent::MouseButtonPress:
        case QEvent::KeyPress:
        case QEvent::Wheel:
            hide();
            break;
        default:
            break;
        }
        return false;
    }

private:
    void hide() {
        if (tip_) {
            tip_->hide();
            tip_->deleteLater();
            tip_.clear();
        }
    }

    QPointer<QWidget> tip_;
    QPointer<QWidget> owner_;
};

ToolTips* toolTips() {
    static QPointer<ToolTips> known;
    if (!known) {
        known = new ToolTips(qApp);
        qApp->installEventFilter(known);
    }
    return known;
}

} // namespace

void useToolTips() {
    toolTips();
}

void showToolTip(QWidget* owner, const QPoint& pointer, const QString& text) {
    toolTips()->show(owner, pointer, text);
}

} // namespace vellmark::kit
