#pragma once

#include "ui/kit/Motion.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QLabel>

#include <memory>

namespace vellmark::kit {

/// A text in one style and colour, with figures of equal width. Plain text only. Too long, it ends
/// in "…" and tells the whole in its tooltip, or breaks into lines when `setWrapping` is on.
class Label : public QLabel {
public:
    explicit Label(const TextStyle& style, ColorRole color = ColorRole::ink,
                   QWidget* parent = nullptr);

    void setWords(const QString& words);
    /// As setWords; a visible label fades from the old words to the new.
    void setChangingWords(const QString& words);
    void setTextStyle(const TextStyle& style);
    void setColor(ColorRole color);
    void setWrapping(bool isWrapping);

    const TextStyle& textStyle() const { return style_; }
    /// The width that all words on one line need.
    int wantedWidth() const;
    bool isShortened() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void drawWords(QPainter& painter, const QString& words) const;

    TextStyle style_;
    ColorRole color_;
    bool isWrapping_ = false;
    QString formerWords_;
    /// Made when words first change before the user's eyes.
    std::unique_ptr<Transition> change_;
};

} // namespace vellmark::kit
