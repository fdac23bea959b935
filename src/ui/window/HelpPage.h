#pragma once

#include "presentation/HelpPageActions.h"
#include "ui/window/WindowPage.h"

#include <vector>

namespace vellmark {

namespace kit {
class Field;
class Label;
class ScrollArea;
class Segments;
} // namespace kit
class HelpGroupView;

/// The help: one section of it, or what was found in all. Control (on macOS Command) with F leads
/// to the field for what is looked for, Escape empties it.
class HelpPage : public WindowPage {
public:
    HelpPage(const HelpPageActions& actions, QWidget* parent);

    void setContent(const HelpPageContent& content);
    std::vector<QWidget*> controls() const override;
    void scrollToTop() override;

protected:
    void arrange() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const HelpPageActions& actions_;
    HelpPageContent content_;
    kit::Field* search_;
    kit::Segments* sections_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    std::vector<HelpGroupView*> groups_;
    kit::Label* nothingFound_;
};

} // namespace vellmark
