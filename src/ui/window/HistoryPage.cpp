#include "ui/window/HistoryPage.h"

#include "presentation/AgentUIActions.h"
#include "ui/Conversions.h"
#include "ui/NoAgentsHint.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Button.h"
#include "ui/kit/HeatMap.h"
#include "ui/kit/Notice.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/Segments.h"
#include "ui/window/HistoryCards.h"
#include "ui/window/PageHead.h"

#include <QPointer>
#include <QScrollBar>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int margin = PageHead::margin;
constexpr int gap = 12;
constexpr int leastChartHeight = 260;
constexpr int mostChartHeight = 1100;
constexpr double heatShare = 0.58;
constexpr int mostHeatWidth = 600;
} // namespace

HistoryPage::HistoryPage(const AgentUIActions& program, const HistoryPageActions& actions,
                         QWidget* parent)
    : WindowPage([&program] { program.refresh(); }, parent), program_(program), actions_(actions),
      export_(new kit::Button(kit::Button::Kind::normal, this)),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget), note_(new kit::Notice(column_)),
      agents_(new kit::Segments(kit::Segments::Size::normal, column_)),
      ranges_(new kit::Segments(kit::Segments::Size::normal, column_)),
      chart_(new HistoryChartCard(column_)), heat_(new HeatMapCard(column_)),
      figures_(new FiguresCard(column_)), noAgents_(new NoAgentsHint(column_)) {
    setObjectName("history");
    scroller_->setWidget(column_);
    column_->setAutoFillBackground(false);
    head().addControl(export_);
    connect(export_, &QAbstractButton::clicked, this, [this] {
        // The window may be gone by the time that the user has answered.
        actions_.save([chart = QPointer<HistoryChartCard>(chart_)] {
            return chart ? chart->pictureData() : std::string();
        });
    });
    agents_->onChoose = [this](int index) {
        actions_.chooseAgent(agentIDs_.at(static_cast<std::size_t>(index)));
    };
    ranges_->onChoose = [this](int index) {
        actions_.chooseRange(allChartRanges.at(static_cast<std::size_t>(index)));
    };
    chart_->onToggle = [this](const std::string& windowID) { actions_.toggle(windowID); };
    noAgents_->onOpenSettings = [this] { program_.openSettings(); };
}

HistoryPage::~HistoryPage() = default;

void HistoryPage::setContent(const HistoryPageContent& content) {
    head().setContent(content.head);
    export_->setText(qString(content.exportButton.title));
    export_->setIconName(content.exportButton.icon);
    export_->setToolTip(qString(content.exportButton.help));
    const bool hasAgents = !content.noAgents;
    export_->setVisible(hasAgents);
    for (QWidget* part :
         std::initializer_list<QWidget*>{agents_, ranges_, chart_, heat_, figures_}) {
        part->setVisible(hasAgents);
    }
    noAgents_->setVisible(!hasAgents);
    note_->setVisible(!content.exportNote.empty());
    note_->setLook({.iconName = content.exportFailed ? "xmark.circle" : "checkmark",
                    .words = qString(content.exportNote)});
    if (content.noAgents) {
        noAgents_->setContent(*content.noAgents);
        arrange();
        return;
    }
    agentIDs_.clear();
    QStringList names;
    std::vector<kit::LogoLook> logos;
    for (const HistoryPageContent::Agent& agent : content.agents) {
        agentIDs_.push_back(agent.id);
        names << qString(agent.name);
        logos.push_back(providerLogo(agent.id));
    }
    agents_->setAccessibleName(qString(content.agentsTitle));
    agents_->setChoices(names, logos);
    agents_->setCurrent(content.agent);
    QStringList ranges;
    for (const std::string& range : content.ranges) {
        ranges << qString(range);
    }
    ranges_->setAccessibleName(qString(content.rangesTitle));
    ranges_->setChoices(ranges);
    ranges_->setCurrent(content.range);
    chart_->setContent(content);
    heat_->setContent(content.heat);
    figures_->setContent(content);
    arrange();
}

std::vector<QWidget*> HistoryPage::controls() const {
    std::vector<QWidget*> result = head().controls();
    const auto add = [&](const std::vector<QWidget*>& more) {
        result.insert(result.end(), more.begin(), more.end());
    };
    add(agents_->controls());
    add(ranges_->controls());
    add(chart_->controls());
    result.push_back(heat_->map());
    result.push_back(noAgents_->button());
    return result;
}

void HistoryPage::pageHidden() {
    actions_.leave();
    // A year of points goes back while nobody sees them.
    chart_->setContent({});
}

void HistoryPage::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

void HistoryPage::arrange() {
    const int wide = std::max(width() - 2 * margin, 0);
    scroller_->setGeometry(body());
    int top = 0;
    if (note_->isVisibleTo(column_)) {
        const int height = note_->heightForWidth(wide);
        note_->setGeometry(margin, top, wide, height);
        top += height + gap;
    }
    if (noAgents_->isVisibleTo(column_)) {
        noAgents_->setGeometry(margin, top, wide, noAgents_->sizeHint().height());
        column_->setFixedHeight(top + noAgents_->height() + margin);
        return;
    }
    const QSize agents = agents_->sizeHint();
    const QSize ranges = ranges_->sizeHint();
    agents_->setGeometry(margin, top, agents.width(), agents.height());
    if (agents.width() + gap + ranges.width() > wide) {
        top += agents.height() + gap;
    }
    ranges_->setGeometry(margin + std::max(wide - ranges.width(), 0), top, ranges.width(),
                         ranges.height());
    top += ranges.height() + gap;
    const int heatWidth = std::min(static_cast<int>(wide * heatShare), mostHeatWidth);
    const int figuresWidth = wide - heatWidth - gap;
    const int low =
        std::max(heat_->heightForWidth(heatWidth), figures_->heightForWidth(figuresWidth));
    const int spare = body().height() - top - gap - low - margin;
    const int chartHeight = std::clamp(spare, leastChartHeight, mostChartHeight);
    chart_->setGeometry(margin, top, wide, chartHeight);
    top += chartHeight + gap;
    heat_->setGeometry(margin, top, heatWidth, low);
    figures_->setGeometry(margin + heatWidth + gap, top, figuresWidth, low);
    column_->setFixedHeight(top + low + margin);
}

} // namespace vellmark
