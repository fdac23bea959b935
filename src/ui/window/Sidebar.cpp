#include "ui/window/Sidebar.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Button.h"
#include "ui/kit/Label.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/SidebarEntry.h"
#include "ui/kit/Spoken.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {
constexpr int padding = 12;
constexpr int entryHeight = 32;
constexpr int sectionInset = 10;
constexpr int sectionAbove = 18;
constexpr int sectionBelow = 6;
constexpr int lineWidth = 1;
/// Of an entry, from its edge to behind its icon's place.
constexpr int iconColumn = 40;
constexpr int menuIconSide = 16;

class Entries : public QWidget, public kit::Spoken {
public:
    kit::SpokenAs spokenAs() const override { return {QAccessible::List}; }
};

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

Sidebar::Sidebar(QWidget* parent)
    : QWidget(parent), scroller_(new kit::ScrollArea(this)), column_(new Entries),
      menuButton_(new kit::Button(kit::Button::Kind::plain, this)) {
    scroller_->setWidget(column_);
    column_->setAutoFillBackground(false);
    menuButton_->hide();
}

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
    // An entry stays with its page, and the keyboard with its entry.
    std::vector<Line> former = std::exchange(lines_, {});
    for (const SidebarItem& item : items) {
        Line line;
        line.page = item.page;
        const auto same = std::ranges::find_if(former, [&](const Line& each) {
            return (each.section != nullptr) == item.isSection && each.page == item.page;
        });
        if (same != former.end()) {
            line = *same;
            former.erase(same);
        } else if (item.isSection) {
            line.section = new kit::Label(kit::style::smallStrong, kit::ColorRole::ink3, column_);
            line.section->setHeading(true);
            line.section->show();
        } else {
            line.entry = makeEntry(item.page);
        }
        lines_.push_back(line);
    }
    for (const Line& line : former) {
        if (line.entry != nullptr && line.entry == window()->focusWidget() && !entries().empty()) {
            entries().front()->setFocus(Qt::OtherFocusReason);
        }
        delete line.entry;
        delete line.section;
    }
}

kit::SidebarEntry* Sidebar::makeEntry(const AgentPage& page) {
    auto* entry = new kit::SidebarEntry(column_);
    connect(entry, &QAbstractButton::clicked, this, [this, page] {
        selection_ = page;
        if (onSelect) {
            onSelect(page);
        }
    });
    entry->show();
    return entry;
}

void Sidebar::setSpokenName(const QString& name) {
    column_->setAccessibleName(name);
}

void Sidebar::setSelection(const AgentPage& page) {
    selection_ = page;
    for (const Line& line : lines_) {
        if (line.entry == nullptr) {
            continue;
        }
        // Tab leads to the selected entry alone, arrows from there to the others.
        const bool isSelected = line.page == page;
        line.entry->setFocusPolicy(isSelected ? Qt::StrongFocus : Qt::ClickFocus);
        if (isSelected && !line.entry->isChecked()) {
            line.entry->setChecked(true);
            scroller_->ensureWidgetVisible(line.entry, 0, padding);
        }
    }
}

void Sidebar::setMenuButton(const std::optional<ControlContent>& look) {
    if (look) {
        menuButton_->setIconName(look->icon, menuIconSide);
        menuButton_->setToolTip(qString(look->help));
        menuButton_->setAccessibleName(qString(look->title));
    }
    menuButton_->setVisible(look.has_value());
    arrange();
}

std::vector<kit::SidebarEntry*> Sidebar::entries() const {
    std::vector<kit::SidebarEntry*> result;
    for (const Line& line : lines_) {
        if (line.entry != nullptr) {
            result.push_back(line.entry);
        }
    }
    return result;
}

std::vector<QWidget*> Sidebar::controls() const {
    const std::vector<kit::SidebarEntry*> all = entries();
    std::vector<QWidget*> result(all.begin(), all.end());
    result.push_back(menuButton_);
    return result;
}

void Sidebar::press(int index) {
    const std::vector<kit::SidebarEntry*> all = entries();
    if (index >= 0 && index < static_cast<int>(all.size())) {
        all[static_cast<std::size_t>(index)]->click();
    }
}

QWidget* Sidebar::selectedEntry() const {
    for (kit::SidebarEntry* entry : entries()) {
        if (entry->isChecked()) {
            return entry;
        }
    }
    return nullptr;
}

void Sidebar::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void Sidebar::arrange() {
    const int inside = std::max(width() - lineWidth, 0);
    const int wide = std::max(inside - 2 * padding, 0);
    int foot = 0;
    if (menuButton_->isVisibleTo(this)) {
        const QSize size = menuButton_->sizeHint();
        foot = size.height() + 2 * padding;
        menuButton_->setGeometry(padding + (iconColumn - size.width()) / 2,
                                 height() - padding - size.height(), size.width(), size.height());
    }
    scroller_->setGeometry(0, 0, inside, std::max(height() - foot, 0));
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
    column_->setFixedHeight(top + (foot > 0 ? 0 : padding));
}

void Sidebar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::sidebar));
    painter.fillRect(QRect(width() - lineWidth, 0, lineWidth, height()),
                     kit::color(kit::ColorRole::line));
}

} // namespace vellmark
