#pragma once

#include "presentation/PopoverContent.h"
#include "presentation/SidebarContent.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
class ScrollArea;
class SidebarEntry;
} // namespace kit

/// The list of pages at the left of the main window; it scrolls where it does not fit.
class Sidebar : public QWidget {
public:
    static constexpr int sidebarWidth = 248;

    explicit Sidebar(QWidget* parent = nullptr);

    /// Room above the first entry: for the title bar's buttons where the content reaches under
    /// them.
    void setTopInset(int inset);
    void setItems(const std::vector<SidebarItem>& items);
    /// What screen readers call the list.
    void setSpokenName(const QString& name);
    void setSelection(const AgentPage& page);
    /// A button at the foot; none without a look.
    void setMenuButton(const std::optional<ControlContent>& look);
    kit::Button* menuButton() const { return menuButton_; }
    /// The entries from the top, and the menu's button.
    std::vector<QWidget*> controls() const;
    /// Presses an entry, counted from the top; nothing where there is none.
    void press(int index);
    /// The entry of the selected page; null without one.
    QWidget* selectedEntry() const;

    std::function<void(const AgentPage&)> onSelect;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Line {
        AgentPage page;
        kit::SidebarEntry* entry = nullptr;
        kit::Label* section = nullptr;
    };
    bool hasShapeOf(const std::vector<SidebarItem>& items) const;
    void build(const std::vector<SidebarItem>& items);
    kit::SidebarEntry* makeEntry(const AgentPage& page);
    std::vector<kit::SidebarEntry*> entries() const;
    void arrange();

    int topInset_ = 12;
    AgentPage selection_;
    std::vector<Line> lines_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    kit::Button* menuButton_;
};

} // namespace vellmark
