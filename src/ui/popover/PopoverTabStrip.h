#pragma once

#include "presentation/PopoverContent.h"

#include <QScrollArea>

#include <functional>

namespace vellmark {

namespace kit {
class Tabs;
}

/// The popover's tabs, 46 high: the overview and one per agent. Too many for the width, they
/// scroll sideways.
class PopoverTabStrip : public QScrollArea {
public:
    explicit PopoverTabStrip(QWidget* parent = nullptr);
    void setContent(const PopoverContent& content);
    /// Chooses as the user would; nothing happens without such a tab.
    void choose(int index);
    void chooseNeighbour(int step);
    kit::Tabs* tabs() const { return tabs_; }

    std::function<void(const PopoverTab&)> onChoose;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showCurrent();

    std::vector<PopoverTabContent> contents_;
    QWidget* strip_;
    kit::Tabs* tabs_;
};

} // namespace vellmark
