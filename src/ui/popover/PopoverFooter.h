#pragma once

#include "presentation/PopoverContent.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Button;
}

/// The popover's foot, 58 high with the line above it: open the window, about, quit.
class PopoverFooter : public QWidget {
public:
    explicit PopoverFooter(QWidget* parent = nullptr);
    void setContent(const PopoverContent& content);

    kit::Button* openWindowButton() const { return openWindow_; }
    kit::Button* aboutButton() const { return about_; }
    kit::Button* quitButton() const { return quit_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();

    kit::Button* openWindow_;
    kit::Button* about_;
    kit::Button* quit_;
};

} // namespace vellmark
