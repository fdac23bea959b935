#pragma once

#include "ui/kit/TextStyle.h"

#include <QMargins>
#include <QPointer>
#include <QWidget>

#include <vector>

namespace vellmark::kit {

class Button;
class Label;

/// A line of a form, at least 44 high: what is set, with an explanation under it, at the left, and
/// the controls that set it at the right. Where both have no room side by side, the controls go
/// below. A control that is hidden takes no room.
class FormRow : public QWidget {
public:
    static constexpr int padding = 16;
    static constexpr int usualHeight = 44;
    /// Of rows with a logo.
    static constexpr int tallHeight = 52;

    explicit FormRow(QWidget* parent = nullptr);

    void setWords(const QString& label, const QString& explanation = {});
    void setLabelStyle(const TextStyle& style);
    void setLeastHeight(int height);
    /// Stands before the words; in reading order. `reach` is how far it stands out of its place at
    /// the left and at the right: room to be hit, or for a ground.
    void addLeading(QWidget* mark, const QMargins& reach = {});
    /// Stands at the end; in reading order. A control whose least width is smaller than the wanted
    /// one gives way first.
    /// `reach` is how far it stands out of its place on every side.
    void addControl(QWidget* control, int reach = 0);

    /// While it is dragged it has a ground and a shadow of its own.
    void setLifted(bool isLifted);
    /// To be called when a control's size or visibility has changed.
    void arrange();

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Plan {
        int wordsLeft = 0;
        int wordsWidth = 0;
        int labelHeight = 0;
        int explanationHeight = 0;
        int controlsWidth = 0;
        int controlsHeight = 0;
        bool isBeside = true;
        int height = 0;
    };
    Plan plan(int width) const;
    struct Control {
        QWidget* widget;
        int reach;
        QSize wanted() const { return shrunk(widget->sizeHint()); }
        /// As wanted where it names no least width.
        QSize least() const {
            const QSize size = widget->minimumSizeHint();
            return size.width() > 0 ? shrunk(size) : wanted();
        }
        QSize shrunk(QSize size) const { return size - QSize(2 * reach, 2 * reach); }
    };
    std::vector<Control> shownControls() const;

    Label* label_;
    Label* explanation_;
    struct Mark {
        QWidget* widget;
        QMargins reach;
        int width() const { return widget->sizeHint().width() - reach.left() - reach.right(); }
    };
    std::vector<Mark> leading_;
    std::vector<Control> controls_;
    int leastHeight_ = usualHeight;
    bool isLifted_ = false;
};

/// The ground that rows stand on, with hairlines between them.
class FormCard : public QWidget {
public:
    explicit FormCard(QWidget* parent = nullptr);

    /// From top to bottom; rows that are no longer in it are hidden, not deleted.
    void setRows(const std::vector<FormRow*>& rows);
    /// To be called when a row's height may have changed.
    virtual void arrange();

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    std::vector<FormRow*> shownRows() const;

private:
    std::vector<QPointer<FormRow>> rows_;
};

/// A heading with an optional button at its end, a card of rows, and an optional hint under it.
class FormSection : public QWidget {
public:
    /// The heading's button ends where the card does by its words: its ground, and the ring around
    /// that, reach so far beyond the card. At both sides.
    static constexpr int sideRoom = 12;

    /// `card` becomes the section's child.
    explicit FormSection(FormCard* card, QWidget* parent = nullptr);

    void setHeading(const QString& words);
    void setHint(const QString& words);
    /// Hidden until it has words.
    Button* headingButton() const { return button_; }
    FormCard* card() const { return card_; }
    void arrange();

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    Label* heading_;
    Button* button_;
    FormCard* card_;
    Label* hint_;
};

} // namespace vellmark::kit
