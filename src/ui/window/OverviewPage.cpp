#include "ui/window/OverviewPage.h"

#include "ui/Conversions.h"
#include "ui/NoAgentsHint.h"
#include "ui/UpdateInPlace.h"
#include "ui/kit/Button.h"
#include "ui/kit/Notice.h"
#include "ui/kit/ScrollArea.h"
#include "ui/window/AgentSummaryCard.h"
#include "ui/window/PageHead.h"

#include <QScrollBar>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int margin = PageHead::margin;
constexpr int gap = 12;
constexpr int storageLines = 4; // a long path has two of its own

kit::Notice::Kind noticeKind(UsageHealth tone) {
    switch (tone) {
    case UsageHealth::attention:
        return kit::Notice::Kind::attention;
    case UsageHealth::critical:
        return kit::Notice::Kind::critical;
    case UsageHealth::healthy:
    case UsageHealth::unavailable:
        break;
    }
    return kit::Notice::Kind::neutral;
}
} // namespace

OverviewPage::OverviewPage(const AgentUIActions& actions, QWidget* parent)
    : WindowPage([&actions] { actions.refresh(); }, parent), actions_(actions),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget),
      verdict_(new kit::Notice(column_)), storage_(new kit::Notice(column_)),
      noAgents_(new NoAgentsHint(column_)) {
    scroller_->setWidget(column_);
    column_->setAutoFillBackground(false);
    storage_->setMostLines(storageLines);
    noAgents_->onOpenSettings = [this] { actions_.openSettings(); };
}

void OverviewPage::setContent(const OverviewPageContent& content) {
    head().setContent(content.head);
    verdict_->setLook({.kind = noticeKind(content.verdict.tone),
                       .iconName = content.verdict.icon,
                       .strongWords = qString(content.verdict.subject),
                       .words = qString(content.verdict.text),
                       .spokenWords = qString(content.verdict.accessibilityText)});
    verdict_->setVisible(!content.noAgents);
    storage_->setLook({.words = qString(content.storage)});
    storage_->setVisible(!content.storage.empty());
    if (content.noAgents) {
        noAgents_->setContent(*content.noAgents);
    }
    noAgents_->setVisible(content.noAgents.has_value());
    updateAgents(cards_, content.cards, actions_, column_);
    for (std::size_t index = 0; index < content.cards.size(); ++index) {
        cards_[index]->setContent(content.cards[index]);
    }
    arrange();
}

std::vector<QWidget*> OverviewPage::controls() const {
    std::vector<QWidget*> result = head().controls();
    for (AgentSummaryCard* card : cards_) {
        result.push_back(card);
        if (QWidget* button = card->wayOutButton()) {
            result.push_back(button);
        }
    }
    result.push_back(noAgents_->button());
    return result;
}

void OverviewPage::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

void OverviewPage::arrange() {
    const int wide = std::max(width() - 2 * margin, 0);
    scroller_->setGeometry(body());
    int top = 0;
    for (kit::Notice* notice : {verdict_, storage_}) {
        if (notice->isVisibleTo(column_)) {
            const int height = notice->heightForWidth(wide);
            notice->setGeometry(margin, top, wide, height);
            top += height + gap;
        }
    }
    for (AgentSummaryCard* card : cards_) {
        const int height = card->heightForWidth(wide);
        card->setGeometry(margin, top, wide, height);
        top += height + gap;
    }
    if (noAgents_->isVisibleTo(column_)) {
        noAgents_->setGeometry(margin, top, wide, noAgents_->sizeHint().height());
        top += noAgents_->height();
    }
    column_->setFixedHeight(top + margin - gap);
}

} // namespace vellmark
