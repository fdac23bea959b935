#pragma once

#include "presentation/PageHeadContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// The head of a page, 92 high and as wide as the page, so that the button's focus ring has room:
/// title and subtitle, at the right the age of the figures and the buttons.
class PageHead : public QWidget {
public:
    static constexpr int headHeight = 92;
    /// At both sides, as of everything below the head.
    static constexpr int margin = 28;

    explicit PageHead(QWidget* parent = nullptr);

    void setContent(const PageHeadContent& content);
    QString title() const;
    kit::Button* refreshButton() const { return refresh_; }
    /// Takes over a control of the page that stands at the right, before those added earlier and
    /// before the refresh button.
    void addControl(QWidget* control);
    /// Takes over what stands behind the title.
    void setTitleMark(QWidget* mark);
    /// Room for what the page draws before the title; 0 at first.
    void setTitleInset(int inset);
    /// The controls from the left, hidden ones among them.
    std::vector<QWidget*> controls() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    kit::Label* title_;
    kit::Label* subtitle_;
    kit::Label* age_;
    kit::Button* refresh_;
    /// From the right, before the refresh button.
    std::vector<QWidget*> added_;
    QWidget* titleMark_ = nullptr;
    int titleInset_ = 0;
};

} // namespace vellmark
