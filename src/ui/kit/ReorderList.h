#pragma once

#include "ui/kit/Form.h"
#include "ui/kit/Interaction.h"

#include <QAbstractButton>

#include <functional>

namespace vellmark::kit {

/// What a row is dragged by: three lines. With the keyboard on it, Up and Down move the row.
class DragHandle : public QAbstractButton {
public:
    explicit DragHandle(QWidget* parent = nullptr);

    /// While the pointer holds it: how far it is from where it was taken, in points downwards.
    std::function<void(int distance)> onDrag;
    /// The pointer let go; `isDropped` is false when Escape ended it.
    std::function<void(bool isDropped)> onRelease;
    /// The keyboard asks to move the row by so many places.
    std::function<void(int places)> onStep;

    QSize sizeHint() const override { return {22, 28}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void release(bool isDropped);

    Interaction interaction_;
    int takenAt_ = 0;
    bool isHeld_ = false;
    bool isDragged_ = false;
};

/// Rows that the user puts in order: by dragging a row's handle, with Up and Down on the handle, or
/// with Alt and Up or Down anywhere in the row. The dragged row is lifted and the others make room;
/// Escape puts it back. The list tells what is wanted and shows it once it is given the rows in
/// their new order.
class ReorderList : public FormCard {
public:
    explicit ReorderList(QWidget* parent = nullptr);

    /// Makes a row's handle, its first mark.
    DragHandle* addHandle(FormRow* row);
    /// The row at `from` is to stand at `to`.
    std::function<void(int from, int to)> onMove;

    void arrange() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int indexOf(const FormRow* row) const;
    void drag(FormRow* row, int distance);
    void drop(bool isWanted);
    void step(FormRow* row, int places);

    QPointer<FormRow> dragged_;
    int distance_ = 0;
    /// Where the dragged row would stand.
    int target_ = 0;
};

} // namespace vellmark::kit
