#pragma once

#include "presentation/SidebarContent.h"

#include <QWidget>

#include <functional>
#include <vector>

namespace vellmark {

namespace kit {
class Label;
class SidebarEntry;
} // namespace kit

/// The list of pages at the left of the main window.
class Sidebar : public QWidget {
public:
    static constexpr int sidebarWidth = 248;

    explicit Sidebar(QWidget* parent = nullptr);

    /// Room above the first entry: for the title bar's buttons where the content reaches under
    /// them.
    void setTopInset(int inset);
    void setItems(const std::vector<SidebarItem>& items);
    void setSelection(const AgentPage& page);
    /// The entries from the top.
    std::vector<QWidget*> controls() const;

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
    void arrange();

    int topInset_ = 12;
    AgentPage selection_;
    std::vector<Line> lines_;
};

} // namespace vellmark
