#pragma once

#include "presentation/HelpPageActions.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// One thing that the help explains: its mark as it is drawn elsewhere, title and text, commands to
/// copy, keys, and buttons.
class HelpEntryView : public QWidget {
public:
    HelpEntryView(const HelpPageActions& actions, QWidget* parent);

    /// `markWidth`: of the column before the title, the same in a group; 0 without marks.
    void setContent(const HelpEntry& entry, int markWidth, const QString& copyTitle);
    std::vector<QWidget*> controls() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

    /// The room that a mark needs, and the gap behind it.
    static int widthOf(const HelpMark& mark);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Command {
        kit::Label* words;
        kit::Button* copy;
    };
    void setCommands(const QString& copyTitle);
    void setButtons();
    /// Puts everything in its place; the height that is needed.
    int arrange(int width, bool moves) const;
    int arrangeExtras(int left, int top, int width, bool moves) const;
    void paintMark(QPainter& painter) const;
    void paintKeys(QPainter& painter) const;

    const HelpPageActions& actions_;
    HelpEntry entry_;
    int markWidth_ = 0;
    kit::Label* title_;
    kit::Label* text_;
    std::vector<Command> commands_;
    std::vector<kit::Button*> buttons_;
};

} // namespace vellmark
