#pragma once

#include "presentation/PopoverContent.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// The popover's head, 72 high: name, what is worst in one line, and the refresh button. The line
/// has a brief form, because its end, when the figures were read, is never cut.
class PopoverHeader : public QWidget {
public:
    explicit PopoverHeader(QWidget* parent = nullptr);
    void setContent(const PopoverContent& content);
    kit::Button* refreshButton() const { return refresh_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    VerdictLine statusLine_;
    kit::Label* name_;
    kit::Label* status_;
    kit::Button* refresh_;
};

} // namespace vellmark
