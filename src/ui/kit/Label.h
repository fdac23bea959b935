#pragma once

#include "ui/kit/Motion.h"
#include "ui/kit/Spoken.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QLabel>

#include <memory>

namespace vellmark::kit {

/// A text in one style and colour, with figures of equal width. Plain text only. It breaks into as
/// many lines as it may have, one until `setMostLines`; what does not fit there ends in "…" and is
/// told whole in the tooltip.
class Label : public QLabel, public Spoken {
public:
    explicit Label(const TextStyle& style, ColorRole color = ColorRole::ink,
                   QWidget* parent = nullptr);

    void setWords(const QString& words);
    /// As setWords; a visible label fades from the old words to the new.
    void setChangingWords(const QString& words);
    void setTextStyle(const TextStyle& style);
    void setColor(ColorRole color);
    void setMostLines(int lines);
    /// Told as a heading, from which screen readers go to the next; in the styles of titles and
    /// headings it is one already.
    void setHeading(bool isHeading) { isHeading_ = isHeading; }

    const TextStyle& textStyle() const { return style_; }
    /// The width that all words on one line need.
    int wantedWidth() const;
    bool isShortened() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return mostLines_ > 1; }
    int heightForWidth(int width) const override;
    SpokenAs spokenAs() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Words in the lines that a width has for them.
    struct Broken {
        QString words;
        int width = -1;
        QStringList lines;
    };

    QStringList linesOf(const QString& words, int width) const;
    void forgetLines() { broken_ = {}; }
    void drawWords(QPainter& painter, const QString& words) const;

    TextStyle style_;
    ColorRole color_;
    int mostLines_ = 1;
    bool isHeading_ = false;
    /// The last that were asked for: layouts ask several times, and drawing once more.
    mutable Broken broken_;
    QString formerWords_;
    /// Made when words first change before the user's eyes.
    std::unique_ptr<Transition> change_;
};

} // namespace vellmark::kit
