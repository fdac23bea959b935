#include "ui/kit/ReorderList.h"

#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace vellmark::kit {

namespace {
constexpr int iconSide = 14;
constexpr int hairline = 1;
/// Its lines stand four points before where words would begin.
constexpr QMargins handleReach(8, 0, 4, 0);

/// Minus one for Up, one for Down, else nothing.
int placesOf(const QKeyEvent& event) {
    return event.key() == Qt::Key_Up ? -1 : event.key() == Qt::Key_Down ? 1 : 0;
}
} // namespace

DragHandle::DragHandle(QWidget* parent)
    : QAbstractButton(parent), interaction_(this, FocusShape{radius::control, 0}) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::OpenHandCursor);
}

void DragHandle::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const double hover = isHeld_ ? 1 : interaction_.hover();
    if (hover > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(mixed(Qt::transparent, color(ColorRole::fill), hover));
        painter.drawRoundedRect(rect(), radius::control, radius::control);
    }
    drawIcon(painter,
             QRectF((width() - iconSide) / 2.0, (height() - iconSide) / 2.0, iconSide, iconSide),
             "line.3.horizontal", mixed(color(ColorRole::ink3), color(ColorRole::ink), hover));
}

void DragHandle::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        isHeld_ = true;
        isDragged_ = false;
        takenAt_ = event->globalPosition().toPoint().y();
        setCursor(Qt::ClosedHandCursor);
        update();
    }
}

void DragHandle::mouseMoveEvent(QMouseEvent* event) {
    if (!isHeld_) {
        return;
    }
    const int distance = event->globalPosition().toPoint().y() - takenAt_;
    isDragged_ = isDragged_ || std::abs(distance) >= QApplication::startDragDistance();
    if (isDragged_ && onDrag) {
        onDrag(distance);
    }
}

void DragHandle::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        release(true);
    }
}

void DragHandle::release(bool isDropped) {
    if (!std::exchange(isHeld_, false)) {
        return;
    }
    setCursor(Qt::OpenHandCursor);
    update();
    if (std::exchange(isDragged_, false) && onRelease) {
        onRelease(isDropped);
    }
}

void DragHandle::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && isHeld_) {
        release(false);
    } else if (const int places = placesOf(*event); places != 0) {
        interaction_.showFocus();
        if (onStep) {
            onStep(places);
        }
    } else {
        QAbstractButton::keyPressEvent(event);
    }
}

void DragHandle::focusOutEvent(QFocusEvent* event) {
    release(false);
    QAbstractButton::focusOutEvent(event);
}

ReorderList::ReorderList(QWidget* parent) : FormCard(parent) {}

DragHandle* ReorderList::addHandle(FormRow* row) {
    auto* handle = new DragHandle(row);
    row->addLeading(handle, handleReach);
    handle->onDrag = [this, row](int distance) { drag(row, distance); };
    handle->onRelease = [this](bool isDropped) { drop(isDropped); };
    handle->onStep = [this, row](int places) { step(row, places); };
    return handle;
}

int ReorderList::indexOf(const FormRow* row) const {
    const std::vector<FormRow*> shown = shownRows();
    return static_cast<int>(std::ranges::find(shown, row) - shown.begin());
}

void ReorderList::step(FormRow* row, int places) {
    const int from = indexOf(row);
    const int to = from + places;
    if (dragged_ == nullptr && to >= 0 && to < static_cast<int>(shownRows().size()) && onMove) {
        onMove(from, to);
    }
}

void ReorderList::drag(FormRow* row, int distance) {
    const int from = indexOf(row);
    if (dragged_ == nullptr) {
        dragged_ = row;
        row->setLifted(true);
    }
    distance_ = distance;
    // It takes another row's place once its middle has passed that row's.
    int top = 0;
    std::vector<int> middles;
    for (const FormRow* other : shownRows()) {
        middles.push_back(top + other->height() / 2);
        top += other->height() + hairline;
    }
    const int middle = middles[static_cast<std::size_t>(from)] + distance;
    target_ = 0;
    for (int index = 0; index < static_cast<int>(middles.size()); ++index) {
        if (index != from && middles[static_cast<std::size_t>(index)] < middle) {
            ++target_;
        }
    }
    arrange();
}

void ReorderList::drop(bool isWanted) {
    FormRow* row = std::exchange(dragged_, QPointer<FormRow>());
    if (row == nullptr) {
        return;
    }
    row->setLifted(false);
    const int from = indexOf(row);
    arrange();
    if (isWanted && target_ != from && onMove) {
        onMove(from, target_);
    }
}

void ReorderList::arrange() {
    if (dragged_ == nullptr) {
        FormCard::arrange();
        for (FormRow* row : shownRows()) {
            // Once is enough for a row; Qt keeps no filter twice.
            for (QWidget* control : row->findChildren<QWidget*>()) {
                control->installEventFilter(this);
            }
        }
        return;
    }
    std::vector<FormRow*> order = shownRows();
    const int from = indexOf(dragged_);
    int home = 0;
    for (int index = 0; index < from; ++index) {
        home += order[static_cast<std::size_t>(index)]->height() + hairline;
    }
    order.erase(order.begin() + from);
    order.insert(order.begin() + target_, dragged_);
    int top = 0;
    for (FormRow* row : order) {
        if (row != dragged_) {
            row->move(0, top);
        }
        top += row->height() + hairline;
    }
    dragged_->move(0, std::clamp(home + distance_, 0, std::max(height() - dragged_->height(), 0)));
}

bool ReorderList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const int places = placesOf(key);
        if (places != 0 && (key.modifiers() & Qt::AltModifier) != 0) {
            for (FormRow* row : shownRows()) {
                if (row->isAncestorOf(static_cast<QWidget*>(watched))) {
                    step(row, places);
                    return true;
                }
            }
        }
    }
    return FormCard::eventFilter(watched, event);
}

} // namespace vellmark::kit
