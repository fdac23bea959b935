#pragma once

#include "ui/kit/Interaction.h"
#include "ui/kit/LogoTile.h"

#include <QTabBar>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmark::kit {

/// One tab: an icon or a logo, and its name.
struct TabLook {
    QString words;
    std::string iconName;
    std::optional<LogoLook> logo;
    std::optional<ColorRole> badge;
    /// What screen readers say in place of the words, such as the name with its state.
    QString spokenWords;
    bool operator==(const TabLook&) const = default;
};

/// A row of tabs, 30 high. Left and right arrows go from tab to tab.
class Tabs : public QTabBar {
public:
    explicit Tabs(QWidget* parent = nullptr);

    /// Changes tabs in place and chooses one, without telling anybody.
    void setTabs(const std::vector<TabLook>& tabs, int current);
    /// The part of a tab that is its ground.
    QRect tabGround(int index) const;
    /// Called when the user chooses, by pointer or key.
    std::function<void(int)> onChoose;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void tabLayoutChange() override;
    void paintEvent(QPaintEvent* event) override;

private:
    void paintTab(QPainter& painter, int index) const;
    void pointAt(int index);
    void placeFocus();

    std::vector<TabLook> tabs_;
    int pointedAt_ = -1;
    Transition pointing_;
    Interaction interaction_;
};

} // namespace vellmark::kit
