#pragma once

#include "presentation/AboutPageActions.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"
#include "ui/window/WindowPage.h"

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
class ScrollArea;
} // namespace kit
class LicenceRow;

/// What the program is, which version of it runs, where there is more, and what it is made of.
class AboutPage : public WindowPage {
public:
    AboutPage(const AboutPageActions& actions, QWidget* parent);

    void setContent(const AboutPageContent& content);
    std::vector<QWidget*> controls() const override;
    void scrollToTop() override;

protected:
    void arrange() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// What moves when the page scrolls; draws the emblem and the ground of the licences.
    class Column;
    int arrangeProgram(int wide);
    int arrangeLinks(int top, int wide);
    int arrangeLicences(int top, int wide);
    kit::Label* addLabel(const kit::TextStyle& style, kit::ColorRole color);

    const AboutPageActions& actions_;
    AboutPageContent content_;
    kit::ScrollArea* scroller_;
    Column* column_;
    kit::Label* name_;
    kit::Label* version_;
    kit::Label* description_;
    kit::Label* privacy_;
    std::vector<kit::Button*> links_;
    kit::Label* licencesTitle_;
    kit::Label* introduction_;
    std::vector<LicenceRow*> licences_;
};

} // namespace vellmark
