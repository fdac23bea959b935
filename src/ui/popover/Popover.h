#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/PopoverContent.h"
#include "ui/kit/WindowSurface.h"

#include <QElapsedTimer>
#include <QWidget>

#include <functional>

namespace vellmark {

class AgentUsagePopoverView;

/// The window of the popover: opens at the status item, closes by a click elsewhere, Escape, or a
/// second click on the item, and follows its content's height. Where the program cannot choose its
/// place it is a window with a title in the popover's size, and closes by the same. Main thread.
///
/// Hidden it does nothing; give it content just before it opens and while it is visible.
class Popover : public QWidget {
public:
    explicit Popover(AgentUIActions actions, QWidget* parent = nullptr);

    AgentUsagePopoverView& view() { return *view_; }
    void setContent(PopoverContent content);

    /// Called when it has opened (true) and when it has closed, in whatever way.
    std::function<void(bool isOpen)> onOpenChange;

    /// Has its window made and draws its content once, unseen: what that loads (fonts, the shapes
    /// of letters and of the pointer, code) takes several times as long as the drawing, and the
    /// first opening shall not wait for it.
    void rehearse();
    /// Opens under `anchor`, the status item in screen coordinates (or a point of no size). Whoever
    /// opens it brings it to the front.
    void open(const QRect& anchor);
    /// A click on the status item: closes an open popover. The click that closed it a moment ago by
    /// landing outside does not open it again. Answers whether it is open now; `beforeOpening` is
    /// called only when it opens.
    bool toggle(const QRect& anchor, const std::function<void()>& beforeOpening);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The popover itself, without the shadow around it.
    QRect body() const;
    QMargins margins() const;
    /// What the desktop does for it now: a compositor may have come or gone.
    void takeSurface();
    void place();
    void placeAtAnchor();
    void cutCorners();
    /// Whether the user has turned to another window.
    bool isLeft() const;

    AgentUsagePopoverView* view_;
    kit::WindowSurface surface_;
    QRect anchor_;
    QElapsedTimer sinceOpened_;
    QElapsedTimer sinceClosed_;
    /// The pointer, since it was opened.
    bool hasBeenEntered_ = false;
};

} // namespace vellmark
