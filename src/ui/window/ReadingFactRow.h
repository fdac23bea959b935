#pragma once

#include "presentation/AgentPageContent.h"

#include <QTimer>
#include <QWidget>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// A fact about how an agent is read: its name, its value with a detail, and a button that copies
/// it where it can be of use elsewhere.
class ReadingFactRow : public QWidget {
public:
    static constexpr int rowHeight = 26;

    explicit ReadingFactRow(QWidget* parent = nullptr);

    void setContent(const ReadingFactContent& content);
    int wantedLabelWidth() const;
    /// The same for all rows of a card.
    void setLabelWidth(int width);
    /// Hidden where there is nothing to copy.
    kit::Button* copyButton() const { return copy_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void copy();
    void showWhatCopyDoes();
    void arrange();

    ReadingFactContent content_;
    int labelWidth_ = 0;
    kit::Label* label_;
    kit::Label* value_;
    kit::Label* detail_;
    kit::Button* copy_;
    /// While it says that it has been done.
    QTimer copied_;
};

} // namespace vellmark
