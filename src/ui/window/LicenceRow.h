#pragma once

#include "presentation/AboutPageActions.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// A library that the program is linked with: name, use, licence, and the way to its web page.
class LicenceRow : public QWidget {
public:
    static constexpr int rowHeight = 52;

    LicenceRow(const AboutPageActions& actions, QWidget* parent);

    void setContent(const LicenceContent& content);
    kit::Button* button() const { return link_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    LicenceContent content_;
    kit::Label* name_;
    kit::Label* use_;
    kit::Label* licence_;
    kit::Button* link_;
};

} // namespace vellmark
