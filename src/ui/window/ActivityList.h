#pragma once

#include "ui/window/ActivityListModel.h"

#include <QListView>

#include <functional>

namespace vellmark {

namespace kit {
class OverlayBar;
}

/// The rows of the activity page. Arrows go from row to row, with Shift they select; Return, Space,
/// the right and the left arrow or a click on the mark fold and unfold. Stays at its end while new
/// rows come, until it is scrolled up.
class ActivityList : public QListView {
public:
    /// Where the columns begin and end, for the titles above them.
    static constexpr int padding = 16;
    static constexpr int timeWidth = 72;
    static constexpr int levelWidth = 28;
    static constexpr int subjectWidth = 124;
    static constexpr int subjectLeft = padding + timeWidth + levelWidth;
    static constexpr int textLeft = subjectLeft + subjectWidth;

    ActivityList(ActivityListModel* model, QWidget* parent);

    /// Whether it stays at its end.
    bool follows() const { return follows_; }
    void followAgain();
    std::function<void()> onFollowChange;

    /// The selected rows, in their order.
    std::vector<std::size_t> selectedRows() const;
    /// Puts the selected rows' lines on the clipboard; without any all of them.
    void copy() const;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Painter;
    void toggle(int row);
    void goToEnd(QKeyEvent* event);
    bool isOnMark(const QModelIndex& index, QPoint position) const;
    void scrolled();
    void stayAtEnd();

    ActivityListModel* model_;
    Painter* painter_;
    kit::OverlayBar* bar_;
    bool follows_ = true;
    /// The rows change, not the user.
    bool isChanging_ = false;
    /// The keyboard has brought the focus here or has been used since.
    bool showsFocus_ = false;
};

} // namespace vellmark
