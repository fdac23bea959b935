#include "ui/window/Sidebar.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Label.h"
#include "ui/kit/SidebarEntry.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int padding = 12;
constexpr int entryHeight = 32;
constexpr int sectionInset = 10;
constexpr int sectionAbove = 18;
constexpr int sectionBelow = 6;
constexpr int lineWidth = 1;

kit::SidebarEntryLook entryLook(const SidebarItem& item) {
    kit::SidebarEntryLook look;
    look.words = qString(item.title);
    look.iconName = item.icon;
    if (item.page.kind == AgentPage::Kind::provider) {
        look.logo = providerLogo(item.page.providerID);
    }
    look.badge = badgeColor(item.badge);
    look.detail = qString(item.value);
    return look;
}
} // namespace

Sidebar::Sidebar(QWidget* parent) : QWidget(parent) {}

void Sidebar::setTopInset(int inset) {
    topInset_ = inset;
    arrange();
}

bool Sidebar::hasShapeOf(const std::vector<SidebarItem>& items) const {
    return std::equal(lines_.begin(), lines_.end(), items.begin(), items.end(),
                      [](const Line& line, const SidebarItem& item) {
                          return item.isSection == (line.section != nullptr) &&
                                 line.page == item.page;
                      });
}

void Sidebar::setItems(const std::vector<SidebarItem>& items) {
    if (!hasShapeOf(items)) {
        build(items);
    }
    for (std::size_t index = 0; index < items.size(); ++index) {
        const Line& line = lines_[index];
        if (line.section != nullptr) {
            line.section->setWords(qString(items[index].title));
        } else {
            line.entry->setLook(entryLook(items[index]));
            line.entry->setToolTip(qString(items[index].help));
            // What the name says already is not said twice.
            const bool saysMore = items[index].accessibilityText != items[index].title;
            line.entry->setAccessibleDescription(saysMore ? qString(items[index].accessibilityText)
                                                          : QString());
        }
    }
    setSelection(selection_);
    arrange();
}

void Sidebar::build(const std::vector<SidebarItem>& items) {
    for (const Line& line : lines_) {
        delete line.entry;
        delete line.section;
    }
    lines_.clear();
    for (const SidebarItem& item : items) {
        Line line;
        line.page = item.page;
        if (item.isSection) {
            line.section = new kit::Label(kit::style::smallStrong, kit::ColorRole::ink3, this);
            line.section->show();
        } else {
            line.entry = new kit::SidebarEntry(this);
            connect(line.entry, &QAbstractButton::clicked, this, [this, page = item.page] {
                selection_ = page;
                if (onSelect) {
                    onSelect(page);
                }
            });
            line.entry->show();
        }
        lines_.push_back(line);
    }
}

void Sidebar::setSelection(const AgentPage& page) {
    selection_ = page;
    for (const Line& line : lines_) {
        if (line.entry != nullptr && line.page == page) {
            line.entry->setChecked(true);
        }
    }
}

std::vector<QWidget*> Sidebar::controls() const {
    std::vector<QWidget*> result;
    for (const Line& line : lines_) {
        if (line.entry != nullptr) {
            result.push_back(line.entry);
        }
    }
    return result;
}

void Sidebar::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void Sidebar::arrange() {
    const int wide = std::max(width() - lineWidth - 2 * padding, 0);
    int top = topInset_;
    for (const Line& line : lines_) {
        if (line.section != nullptr) {
            top += sectionAbove;
            const int height = kit::style::smallStrong.lineHeight;
            line.section->setGeometry(padding + sectionInset, top, wide - 2 * sectionInset, height);
            top += height + sectionBelow;
        } else {
            line.entry->setGeometry(padding, top, wide, entryHeight);
            top += entryHeight;
        }
    }
}

void Sidebar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::sidebar));
    painter.fillRect(QRect(width() - lineWidth, 0, lineWidth, height()),
                     kit::color(kit::ColorRole::line));
}

} // namespace vellmark
