#pragma once

#include "presentation/PopoverContent.h"

#include <QWidget>

#include <functional>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// What stands in place of the agents when none is enabled, with the way to enable one.
class NoAgentsHint : public QWidget {
public:
    explicit NoAgentsHint(QWidget* parent = nullptr);
    void setContent(const NoAgentsContent& content);
    std::function<void()> onOpenSettings;

    kit::Button* button() const { return button_; }
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int wordsWidth() const;

    std::string iconName_;
    kit::Label* title_;
    kit::Label* words_;
    kit::Button* button_;
};

} // namespace vellmark
