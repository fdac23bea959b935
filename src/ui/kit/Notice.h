#pragma once

#include "ui/kit/Spoken.h"
#include "ui/kit/Theme.h"

#include <QWidget>

#include <functional>
#include <string>

namespace vellmark::kit {

class Button;
class Label;

/// One message in a few lines with a mark and at most one button, on a wash of its kind.
class Notice : public QWidget, public Spoken {
public:
    enum class Kind { neutral, attention, critical };

    struct Look {
        Kind kind = Kind::neutral;
        std::string iconName = "exclamationmark.triangle.fill";
        /// Stands first, stronger; may be empty.
        QString strongWords;
        QString words;
        /// Empty for no button.
        QString buttonWords;
        /// What screen readers say in place of the words, such as the words with how bad it is;
        /// empty for just the words.
        QString spokenWords = {};
        bool operator==(const Look&) const = default;
    };

    explicit Notice(QWidget* parent = nullptr);
    void setLook(const Look& look);
    /// Two until then.
    void setMostLines(int lines);
    Button* button() const { return button_; }
    /// What the button does.
    std::function<void()> onPress;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    SpokenAs spokenAs() const override { return {QAccessible::StaticText, true}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int textWidthFor(int width) const;
    void arrange();

    Look look_;
    Label* strongWords_;
    Label* words_;
    Button* button_;
};

} // namespace vellmark::kit
