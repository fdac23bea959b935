#include "ui/kit/HeatMap.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ToolTip.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace vellmark::kit {

namespace {

constexpr double cellGap = 3;
constexpr double leastSide = 8;
constexpr double mostSide = 18;
constexpr double cellRadius = 3;
constexpr double nameGap = 10;
constexpr double columnNameRoom = 16;
constexpr std::array<double, HeatMap::lastLevel> shares{0.18, 0.36, 0.56, 0.78, 1};

class HeatMapInterface : public QAccessibleWidget {
public:
    explicit HeatMapInterface(HeatMap* map) : QAccessibleWidget(map, QAccessible::Chart) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value || kind == QAccessible::Description) {
            return static_cast<const HeatMap*>(widget())->spoken();
        }
        return QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* heatMapInterface(const QString& /*className*/, QObject* object) {
    auto* map = dynamic_cast<HeatMap*>(object);
    return map != nullptr ? new HeatMapInterface(map) : nullptr;
}

double nameRoom(const HeatMapLook& look) {
    double widest = 0;
    for (const QString& name : look.rowNames) {
        widest = std::max(widest, textWidth(name, style::small));
    }
    return std::ceil(widest) + nameGap;
}

} // namespace

QColor heatColor(const HeatMapLook& look, int level) {
    if (level <= 0) {
        return color(ColorRole::track);
    }
    const QColor accent = Theme::current().isDark() ? look.accentDark : look.accentLight;
    return mixed(color(ColorRole::card), accent,
                 shares[static_cast<std::size_t>(std::min(level, HeatMap::lastLevel) - 1)]);
}

HeatMap::HeatMap(QWidget* parent)
    : QWidget(parent), interaction_(this, FocusShape{radius::check, focusGap + 2}) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    static const bool isTold = (QAccessible::installFactory(heatMapInterface), true);
    static_cast<void>(isTold);
}

void HeatMap::setLook(const HeatMapLook& look) {
    if (look == look_) {
        return;
    }
    look_ = look;
    update();
}

QString HeatMap::spoken() const {
    return cell_ && wordsAt ? wordsAt(cell_->row, cell_->column) : QString();
}

int HeatMap::columns() const {
    return look_.levels.empty() ? 0 : static_cast<int>(look_.levels.front().size());
}

double HeatMap::side(int width) const {
    const int count = std::max(columns(), 1);
    const double room = width - nameRoom(look_) - cellGap * (count - 1);
    return std::clamp(std::floor(room / count * 2) / 2, leastSide, mostSide);
}

int HeatMap::heightForWidth(int width) const {
    const auto rows = static_cast<double>(look_.levels.size());
    return static_cast<int>(std::ceil(rows * (side(width) + cellGap) + columnNameRoom));
}

QRectF HeatMap::place(Cell cell) const {
    const double step = side(width()) + cellGap;
    return {nameRoom(look_) + cell.column * step, cell.row * step, side(width()), side(width())};
}

void HeatMap::read(std::optional<Cell> cell, const QPoint& beside) {
    if (cell == cell_) {
        return;
    }
    cell_ = cell;
    update();
    if (!cell_ || !wordsAt) {
        return;
    }
    showToolTip(this, beside, spoken());
    if (hasFocus()) {
        QAccessibleEvent event(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
}

bool HeatMap::event(QEvent* event) {
    if (event->type() == QEvent::Hide) {
        cell_.reset();
    }
    return QWidget::event(event);
}

void HeatMap::keyPressEvent(QKeyEvent* event) {
    Cell next = cell_.value_or(Cell{});
    const int rows = static_cast<int>(look_.levels.size());
    const auto go = [&](int down, int right) {
        if (cell_) { // the first key reads the first cell
            next.row = std::clamp(next.row + down, 0, rows - 1);
            next.column = std::clamp(next.column + right, 0, columns() - 1);
        }
    };
    switch (event->key()) {
    case Qt::Key_Left:
        go(0, -1);
        break;
    case Qt::Key_Right:
        go(0, 1);
        break;
    case Qt::Key_Up:
        go(-1, 0);
        break;
    case Qt::Key_Down:
        go(1, 0);
        break;
    case Qt::Key_Home:
        next.column = 0;
        break;
    case Qt::Key_End:
        next.column = std::max(columns() - 1, 0);
        break;
    case Qt::Key_Escape:
        if (cell_) {
            read(std::nullopt, {});
            return;
        }
        [[fallthrough]];
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    if (rows > 0 && columns() > 0) {
        read(next, mapToGlobal(place(next).bottomRight().toPoint()));
    }
}

void HeatMap::mouseMoveEvent(QMouseEvent* event) {
    const double step = side(width()) + cellGap;
    const QPointF at = event->position();
    const Cell pointed{static_cast<int>(std::floor(at.y() / step)),
                       static_cast<int>(std::floor((at.x() - nameRoom(look_)) / step))};
    const bool isCell = pointed.row >= 0 && pointed.row < static_cast<int>(look_.levels.size()) &&
                        pointed.column >= 0 && pointed.column < columns();
    read(isCell ? std::optional(pointed) : std::nullopt, event->globalPosition().toPoint());
}

void HeatMap::leaveEvent(QEvent* /*event*/) {
    read(std::nullopt, {});
}

void HeatMap::focusOutEvent(QFocusEvent* event) {
    read(std::nullopt, {});
    QWidget::focusOutEvent(event);
}

void HeatMap::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double size = side(width());
    for (int row = 0; row < static_cast<int>(look_.levels.size()); ++row) {
        painter.setPen(color(ColorRole::ink2));
        drawText(painter, QRectF(0, place({row, 0}).top(), nameRoom(look_), size), Qt::AlignLeft,
                 look_.rowNames.value(row), style::small);
        painter.setPen(Qt::NoPen);
        for (int column = 0; column < columns(); ++column) {
            painter.setBrush(heatColor(
                look_,
                look_.levels[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]));
            painter.drawRoundedRect(place({row, column}), cellRadius, cellRadius);
        }
    }
    const double namesTop = static_cast<double>(look_.levels.size()) * (size + cellGap) + 1;
    painter.setPen(color(ColorRole::ink3));
    for (const auto& [column, name] : look_.columnNames) {
        drawText(painter,
                 QRectF(place({0, column}).left(), namesTop, width(), style::axis.lineHeight),
                 Qt::AlignLeft, name, style::axis);
    }
    if (cell_) {
        painter.setPen(QPen(color(ColorRole::ink), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(place(*cell_).adjusted(-1, -1, 1, 1), cellRadius + 1,
                                cellRadius + 1);
    }
}

} // namespace vellmark::kit
