#include "ui/window/HelpGroupView.h"

#include "ui/Conversions.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/Label.h"
#include "ui/window/HelpEntryView.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int titleGap = 8;
} // namespace

HelpGroupView::HelpGroupView(const HelpPageActions& actions, QWidget* parent)
    : QWidget(parent), actions_(actions),
      title_(new kit::Label(kit::style::smallStrong, kit::ColorRole::ink2, this)) {}

void HelpGroupView::setContent(const HelpGroup& group, const QString& copyTitle) {
    title_->setWords(qString(group.title));
    title_->setVisible(!group.title.empty());
    while (entries_.size() > group.entries.size()) {
        delete entries_.back();
        entries_.pop_back();
    }
    while (entries_.size() < group.entries.size()) {
        entries_.push_back(new HelpEntryView(actions_, this));
        entries_.back()->show();
    }
    int markWidth = 0;
    for (const HelpEntry& entry : group.entries) {
        markWidth = std::max(markWidth, HelpEntryView::widthOf(entry.mark));
    }
    for (std::size_t index = 0; index < entries_.size(); ++index) {
        entries_[index]->setContent(group.entries[index], markWidth, copyTitle);
    }
    resizeEvent(nullptr);
    update();
}

std::vector<QWidget*> HelpGroupView::controls() const {
    std::vector<QWidget*> result;
    for (const HelpEntryView* entry : entries_) {
        const std::vector<QWidget*> own = entry->controls();
        result.insert(result.end(), own.begin(), own.end());
    }
    return result;
}

int HelpGroupView::cardTop() const {
    return title_->text().isEmpty() ? 0 : kit::style::smallStrong.lineHeight + titleGap;
}

int HelpGroupView::heightForWidth(int width) const {
    int height = cardTop();
    for (const HelpEntryView* entry : entries_) {
        height += entry->heightForWidth(width);
    }
    return height;
}

void HelpGroupView::resizeEvent(QResizeEvent* /*event*/) {
    title_->setGeometry(0, 0, width(), kit::style::smallStrong.lineHeight);
    int top = cardTop();
    for (HelpEntryView* entry : entries_) {
        const int height = entry->heightForWidth(width());
        entry->setGeometry(0, top, width(), height);
        top += height;
    }
}

void HelpGroupView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    kit::drawCardGround(painter, rect().adjusted(0, cardTop(), 0, 0));
    for (const HelpEntryView* entry : entries_) {
        if (entry != entries_.front()) {
            painter.fillRect(QRect(0, entry->y(), width(), 1), kit::color(kit::ColorRole::line));
        }
    }
}

} // namespace vellmark
