#pragma once

#include "presentation/PageHeadContent.h"
#include "ui/kit/Spoken.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace vellmark {

class PageHead;

/// A page of the main window: its head, and the body below it. Made when it is shown for the first
/// time and kept as long as the window. Only the page that is shown gets content. Main thread.
///
/// A page has a `setContent` for the content of its kind; WindowPages.cpp calls it.
class WindowPage : public QWidget, public kit::Spoken {
public:
    /// `refresh` is what the head's refresh button does.
    WindowPage(std::function<void()> refresh, QWidget* parent);

    /// The controls in reading order, hidden ones among them.
    virtual std::vector<QWidget*> controls() const = 0;
    /// The page takes its place in the window, with its content set. Not called for the same page
    /// with other content, except when another agent's is shown.
    virtual void pageShown() {}
    /// Another page has taken its place: what runs or is held for being seen ends here.
    virtual void pageHidden() {}
    /// Shows the first line again.
    virtual void scrollToTop() {}
    QString title() const;
    kit::SpokenAs spokenAs() const override { return {QAccessible::Pane}; }

protected:
    PageHead& head() const { return *head_; }
    /// Everything below the head.
    QRect body() const;
    /// Lays out the body; called when the page's size has changed.
    virtual void arrange() = 0;
    void resizeEvent(QResizeEvent* event) final;

private:
    PageHead* head_;
};

} // namespace vellmark
