#include "ui/window/AgentDetailPage.h"

#include "ui/Conversions.h"
#include "ui/FailureNotice.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Button.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/Segments.h"
#include "ui/window/AgentWindowCard.h"
#include "ui/window/PageHead.h"
#include "ui/window/ReadingCard.h"

#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {
constexpr int margin = PageHead::margin;
constexpr int logoTop = 24;
constexpr int logoSide = 44;
constexpr int logoGap = 12;
constexpr int noticeGap = 12;
constexpr int cardGap = 16;
/// With less room than two of these the cards stand one below the other.
constexpr int leastCardWidth = 328;
/// Where the window is high, the courses grow, and at some height stop to tell more.
constexpr int mostGrowth = 200;

/// What the way out of a failure does: of this agent alone.
AgentUIActions actionsFor(const AgentUIActions& program, std::function<void()> refresh) {
    AgentUIActions actions = program;
    actions.refresh = std::move(refresh);
    return actions;
}
} // namespace

AgentDetailPage::AgentDetailPage(const AgentUIActions& program, const AgentPageActions& actions,
                                 QWidget* parent)
    : WindowPage([this] { actions_.refresh(agent_); }, parent), actions_(actions),
      agentActions_(actionsFor(program, [this] { actions_.refresh(agent_); })),
      logo_(new kit::LogoTile(logoSide, this)), health_(new kit::Pill(this)),
      range_(new kit::Segments(kit::Segments::Size::normal, this)),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget),
      failure_(new FailureNotice(agentActions_, column_)),
      reading_(new ReadingCard(actions_, column_)) {
    scroller_->setWidget(column_);
    column_->setAutoFillBackground(false);
    head().setTitleInset(logoSide + logoGap);
    head().setTitleMark(health_);
    head().addControl(range_);
    range_->onChoose = [this](int index) {
        actions_.setRange(agentPageRanges.at(static_cast<std::size_t>(index)));
    };
}

void AgentDetailPage::setContent(const AgentPageContent& content) {
    const AgentBlockContent& agent = content.agent;
    if (agent_ != agent.id) {
        beginAgent(agent.id);
    }
    logo_->setLook(providerLogo(agent.id));
    health_->setLook(healthLook(agent));
    QStringList ranges;
    for (const std::string& range : content.ranges) {
        ranges << qString(range);
    }
    range_->setAccessibleName(qString(content.rangeTitle));
    range_->setChoices(ranges);
    range_->setCurrent(static_cast<int>(std::ranges::find(agentPageRanges, content.range) -
                                        agentPageRanges.begin()));
    range_->setVisible(!ranges.isEmpty());
    head().setContent(content.head);
    failure_->setContent(agent.failure);
    updateNotes(agent.notes);
    updateWindows(content);
    reading_->setContent(agent.id, content.reading);
    arrange();
}

/// Another agent's values do not grow out of the former one's.
void AgentDetailPage::beginAgent(const AgentProviderID& agent) {
    agent_ = agent;
    for (const AgentWindowCard* window : std::exchange(windows_, {})) {
        delete window;
    }
    delete reading_;
    reading_ = new ReadingCard(actions_, column_);
    reading_->show();
}

void AgentDetailPage::updateNotes(const std::vector<std::string>& notes) {
    while (notes_.size() > notes.size()) {
        delete notes_.back();
        notes_.pop_back();
    }
    while (notes_.size() < notes.size()) {
        notes_.push_back(new kit::Notice(column_));
        notes_.back()->show();
    }
    for (std::size_t index = 0; index < notes.size(); ++index) {
        notes_[index]->setLook({.iconName = "info.circle", .words = qString(notes[index])});
    }
}

/// A window keeps its card; while the first values are read, cards show their bones.
void AgentDetailPage::updateWindows(const AgentPageContent& content) {
    const auto bones = static_cast<std::size_t>(std::max(content.agent.boneRows, 0));
    const std::size_t wanted = content.windows.empty() ? bones : content.windows.size();
    const bool isFilled = !windows_.empty() && windows_.front()->hasContent();
    while (windows_.size() > wanted || (content.windows.empty() && isFilled && !windows_.empty())) {
        delete windows_.back();
        windows_.pop_back();
    }
    while (windows_.size() < wanted) {
        windows_.push_back(new AgentWindowCard(column_));
        windows_.back()->show();
    }
    for (std::size_t index = 0; index < content.windows.size(); ++index) {
        windows_[index]->setContent(content.windows[index]);
    }
}

std::vector<QWidget*> AgentDetailPage::controls() const {
    std::vector<QWidget*> result = range_->controls();
    result.push_back(head().refreshButton());
    if (QWidget* button = failure_->wayOutButton()) {
        result.push_back(button);
    }
    for (const AgentWindowCard* window : windows_) {
        result.push_back(window->chart());
    }
    for (QWidget* control : reading_->controls()) {
        result.push_back(control);
    }
    return result;
}

void AgentDetailPage::pageShown() {
    actions_.shown(agent_);
}

void AgentDetailPage::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

void AgentDetailPage::arrange() {
    arrangeHead();
    scroller_->setGeometry(body());
    const int wide = std::max(width() - 2 * margin, 0);
    const int top = arrangeNotices(wide);
    column_->setFixedHeight(arrangeCards(top, wide) + margin);
}

void AgentDetailPage::arrangeHead() {
    logo_->setGeometry(margin, logoTop, logoSide, logoSide);
    logo_->raise();
}

int AgentDetailPage::arrangeNotices(int wide) {
    int top = 0;
    std::vector<kit::Notice*> notices{failure_};
    notices.insert(notices.end(), notes_.begin(), notes_.end());
    for (kit::Notice* notice : notices) {
        if (notice->isVisibleTo(column_)) {
            notice->setGeometry(margin, top, wide, notice->heightForWidth(wide));
            top += notice->height() + noticeGap;
        }
    }
    return top > 0 ? top - noticeGap + cardGap : 0;
}

int AgentDetailPage::leastRowHeight(std::size_t first, std::size_t columns, int cardWidth) const {
    const bool hasReading = first + columns > windows_.size();
    const bool hasWindow = first < windows_.size();
    return std::max(hasWindow ? AgentWindowCard::leastHeight : 0,
                    hasReading ? reading_->heightForWidth(cardWidth) : 0);
}

int AgentDetailPage::arrangeCards(int top, int wide) {
    std::vector<QWidget*> cards(windows_.begin(), windows_.end());
    cards.push_back(reading_);
    const std::size_t columns = wide >= 2 * leastCardWidth + cardGap ? 2 : 1;
    const int cardWidth =
        (wide - static_cast<int>(columns - 1) * cardGap) / static_cast<int>(columns);

    int rows = 0;
    int least = top + margin - cardGap;
    for (std::size_t first = 0; first < cards.size(); first += columns, ++rows) {
        least += leastRowHeight(first, columns, cardWidth) + cardGap;
    }
    const int growth = std::clamp((body().height() - least) / std::max(rows, 1), 0, mostGrowth);
    for (std::size_t first = 0; first < cards.size(); first += columns) {
        const bool hasWindow = first < windows_.size();
        const int height = leastRowHeight(first, columns, cardWidth) + (hasWindow ? growth : 0);
        for (std::size_t index = first; index < std::min(first + columns, cards.size()); ++index) {
            const int column = static_cast<int>(index - first);
            cards[index]->setGeometry(margin + column * (cardWidth + cardGap), top, cardWidth,
                                      height);
        }
        top += height + cardGap;
    }
    return top - cardGap;
}

} // namespace vellmark
