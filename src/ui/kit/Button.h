#pragma once

#include "ui/kit/Interaction.h"
#include "ui/kit/Motion.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QAbstractButton>

#include <optional>
#include <string>
#include <string_view>

namespace vellmark::kit {

/// A push button: an icon, words, or both.
class Button : public QAbstractButton {
public:
    enum class Kind {
        normal,
        primary,  ///< the one main action of a window
        plain,    ///< no ground until pointed at
        outlined, ///< in notices: card ground with a line
    };

    /// How far a plain button's words stand inside its ground. Where they are to line up with
    /// other content, the ground reaches that far beyond.
    static constexpr int plainPadding = 8;

    explicit Button(Kind kind, QWidget* parent = nullptr);

    void setIconName(std::string_view name, int side = 14);
    /// An icon behind the words, such as the chevron of a link.
    void setTrailingIconName(std::string_view name, int side);
    /// Of icon and words; the kind's own until set.
    void setContentColor(ColorRole color);
    void setSmallText(bool isSmall);
    /// Keeps the width that the widest of these words needs, so that changing words move nothing.
    void reserveWidthFor(const QStringList& words);
    /// Turns the icon while something runs. Where motion is reduced the icon is dimmed instead.
    void setTurning(bool isTurning) { turn_.setTurning(isTurning); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int padding() const;
    double contentWidth(const QString& words) const;
    QColor groundColor() const;
    QColor contentColor() const;
    void paintContent(QPainter& painter) const;
    const TextStyle& textStyle() const;

    Kind kind_;
    std::string iconName_;
    int iconSide_ = 14;
    std::string trailingIconName_;
    int trailingIconSide_ = 11;
    std::optional<ColorRole> contentColor_;
    bool isSmallText_ = false;
    QStringList reservedWords_;
    Interaction interaction_;
    Turn turn_;
};

} // namespace vellmark::kit
