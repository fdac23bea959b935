#include "ui/setup/SetupAssistantView.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/UpdateInPlace.h"
#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Form.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Label.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/Notice.h"
#include "ui/kit/Question.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Toggle.h"
#include "ui/kit/WindowKeys.h"
#include "ui/setup/SetupPoints.h"
#include "ui/setup/SetupStepList.h"
#include "ui/setup/SetupToolCard.h"
#include "ui/window/SettingRow.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <iterator>
#include <utility>

namespace vellmark {

namespace {

constexpr int margin = 28;
constexpr int titleTop = 24;
constexpr int titleHeight = 28;
constexpr int subtitleGap = 2;
constexpr int headBelow = 18;
constexpr int cardGap = 12;
/// Around the column, for what reaches out of it.
constexpr int ringRoom = 4;
constexpr int footHeight = 60;
constexpr int controlHeight = 28;
constexpr int buttonGap = 8;
constexpr int checkIconSide = 13;
constexpr int logoSide = 24;

void setButton(kit::Button& button, const ControlContent& content) {
    button.setText(qString(content.title));
    button.setToolTip(qString(content.help));
    button.setVisible(!content.title.empty());
}

} // namespace

SetupAssistantView::SetupAssistantView(SetupAssistantActions actions, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)), steps_(new SetupStepList(this)),
      title_(new kit::Label(kit::style::title, kit::ColorRole::ink, this)),
      subtitle_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget),
      trouble_(new kit::Notice(column_)), agents_(new kit::FormCard(column_)),
      nothingToDo_(new kit::Label(kit::style::body, kit::ColorRole::ink2, column_)),
      settings_(new kit::FormCard(column_)),
      check_(new kit::Button(kit::Button::Kind::plain, this)),
      checkedAt_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      later_(new kit::Button(kit::Button::Kind::plain, this)),
      back_(new kit::Button(kit::Button::Kind::normal, this)),
      next_(new kit::Button(kit::Button::Kind::primary, this)) {
    setMinimumSize(leastSize);
    resize(firstSize);
    settingActions_.change = [this](const std::string& name, const std::string& value) {
        actions_.change(name, value);
    };
    settingActions_.press = [this](const std::string& name) { actions_.press(name); };
    subtitle_->setMostLines(3);
    trouble_->hide();
    nothingToDo_->setMostLines(kit::anyNumberOfLines);
    column_->setAutoFillBackground(false);
    scroller_->setWidget(column_);
    check_->setContentColor(kit::ColorRole::ink2);
    later_->setContentColor(kit::ColorRole::ink2);
    connect(check_, &QAbstractButton::clicked, this, [this] { actions_.check(); });
    connect(later_, &QAbstractButton::clicked, this, [this] { actions_.later(); });
    connect(back_, &QAbstractButton::clicked, this, [this] { actions_.back(); });
    connect(next_, &QAbstractButton::clicked, this, [this] { actions_.next(); });
    next_->setFocus(Qt::OtherFocusReason);
}

void SetupAssistantView::setContent(const SetupAssistantContent& content) {
    if (content == content_) {
        return;
    }
    const SetupAssistantContent former = std::exchange(content_, content);
    const QPointer<QWidget> focused = focusWidget();
    const auto card = std::ranges::find_if(
        tools_, [&](const SetupToolCard* tool) { return focused && tool->isAncestorOf(focused); });
    const auto place = static_cast<std::size_t>(card - tools_.begin());
    const bool isInCard = card != tools_.end();
    steps_->setSteps(content.steps);
    title_->setWords(qString(content.title));
    subtitle_->setWords(qString(content.subtitle));
    trouble_->setLook({.words = qString(content.trouble)});
    trouble_->setVisible(!content.trouble.empty());
    updateRows(points_, content.points, column_);
    updateAgents(content);
    updateTools(content);
    updateSettings(content);
    updateFoot(content);
    arrange();
    if (content.step != former.step) {
        scroller_->verticalScrollBar()->setValue(0);
        if (isInCard || focusWidget() == nullptr || !focusWidget()->isVisibleTo(this)) {
            next_->setFocus(Qt::OtherFocusReason);
        }
    } else if (isInCard) {
        keepFocusNear(focused, place);
    }
    if (content.focus && content.focus != former.focus) {
        comeToAgent();
    }
}

SetupAssistantView::AgentRow SetupAssistantView::makeAgentRow(const AgentProviderID& id) {
    AgentRow made{id, new kit::FormRow, new kit::Switch, new kit::HealthDot};
    made.row->setLeastHeight(kit::FormRow::tallHeight);
    made.row->setLabelStyle(kit::style::strong);
    auto* logo = new kit::LogoTile(logoSide);
    logo->setLook(providerLogo(id));
    made.row->addLeading(logo);
    made.row->addControl(made.status);
    made.row->addControl(made.onOff);
    connect(made.onOff, &QAbstractButton::clicked, this,
            [this, id](bool isOn) { actions_.enableAgent(id, isOn); });
    return made;
}

/// With a switch where they are chosen, with their state at the end.
void SetupAssistantView::updateAgents(const SetupAssistantContent& content) {
    const bool isChoice = content.step == SetupStep::agents;
    std::vector<AgentRow> former = std::exchange(agentRows_, {});
    std::vector<kit::FormRow*> rows;
    for (std::size_t index = 0; index < content.agents.size(); ++index) {
        const AgentSettingContent& agent = content.agents[index];
        const auto known = std::ranges::find(former, agent.id, &AgentRow::id);
        AgentRow row{};
        if (known == former.end()) {
            row = makeAgentRow(agent.id);
        } else {
            row = *known;
            former.erase(known);
        }
        row.onOff->setVisible(isChoice);
        row.onOff->setChecked(agent.isEnabled);
        row.onOff->setAccessibleName(qString(agent.switchName));
        row.status->setVisible(!isChoice);
        row.status->setLook(
            {.words = qString(agent.status), .dot = dotColor(content.agentDots[index])});
        row.row->setWords(qString(agent.name), qString(agent.detail));
        rows.push_back(row.row);
        agentRows_.push_back(row);
    }
    agents_->setRows(rows);
    agents_->setVisible(!rows.empty());
    for (const AgentRow& gone : former) {
        delete gone.row;
    }
}

void SetupAssistantView::updateTools(const SetupAssistantContent& content) {
    std::vector<SetupToolCard*> former = std::exchange(tools_, {});
    for (const SetupToolContent& tool : content.tools) {
        const auto known = std::ranges::find(former, tool.id, &SetupToolCard::agent);
        if (known == former.end()) {
            tools_.push_back(new SetupToolCard(tool.id, actions_, column_));
            tools_.back()->show();
        } else {
            tools_.push_back(*known);
            former.erase(known);
        }
        tools_.back()->setContent(tool);
    }
    for (SetupToolCard* gone : former) {
        // It may be the one whose button was just pressed.
        gone->hide();
        gone->deleteLater();
    }
    nothingToDo_->setWords(qString(content.nothingToDo));
    nothingToDo_->setVisible(!content.nothingToDo.empty());
}

void SetupAssistantView::updateSettings(const SetupAssistantContent& content) {
    std::vector<SettingRow*> former = std::exchange(settingRows_, {});
    std::vector<kit::FormRow*> rows;
    for (const SettingRowContent& setting : content.settings) {
        const auto known = std::ranges::find(former, setting.name, &SettingRow::name);
        SettingRow* row = nullptr;
        if (known == former.end()) {
            row = new SettingRow(setting.name, settingActions_,
                                 [this](const std::string& name) { pressSetting(name); });
        } else {
            row = *known;
            former.erase(known);
        }
        row->setContent(setting);
        rows.push_back(row);
        settingRows_.push_back(row);
    }
    settings_->setRows(rows);
    settings_->setVisible(!rows.empty());
    for (const SettingRow* gone : former) {
        delete gone;
    }
}

void SetupAssistantView::pressSetting(const std::string& name) {
    if (name != settingsRow::statusLine) {
        return actions_.press(name);
    }
    question_ = kit::Question::ask(this, questionLook(content_.statusLineQuestion),
                                   [this, name] { actions_.press(name); });
}

kit::Question* SetupAssistantView::question() const {
    return question_;
}

void SetupAssistantView::updateFoot(const SetupAssistantContent& content) {
    setButton(*check_, content.check);
    check_->setIconName(content.check.icon, checkIconSide);
    check_->setTurning(content.isChecking && !content.check.title.empty());
    checkedAt_->setWords(qString(content.checkedAt));
    setButton(*later_, content.later);
    setButton(*back_, content.back);
    setButton(*next_, content.next);
}

void SetupAssistantView::setTopInset(int inset) {
    steps_->setTopInset(inset);
}

std::vector<QWidget*> SetupAssistantView::pageControls() const {
    std::vector<QWidget*> result;
    for (const AgentRow& row : agentRows_) {
        result.push_back(row.onOff);
    }
    const auto add = [&](const std::vector<QWidget*>& controls) {
        result.insert(result.end(), controls.begin(), controls.end());
    };
    for (const SetupToolCard* tool : tools_) {
        add(tool->controls());
    }
    for (const SettingRow* row : settingRows_) {
        add(row->controls());
    }
    return result;
}

std::vector<QWidget*> SetupAssistantView::controls() const {
    std::vector<QWidget*> result = pageControls();
    for (QWidget* button : std::initializer_list<QWidget*>{check_, later_, back_, next_}) {
        result.push_back(button);
    }
    return result;
}

/// In the order of reading, whatever the order in which the parts of the steps were made; what the
/// keyboard comes to is in sight.
bool SetupAssistantView::focusNextPrevChild(bool next) {
    std::vector<QWidget*> stops = controls();
    std::erase_if(stops, [this](const QWidget* control) {
        return !control->isVisibleTo(this) || !control->isEnabled() ||
               (control->focusPolicy() & Qt::TabFocus) == 0;
    });
    if (stops.empty()) {
        return false;
    }
    const auto current = std::ranges::find(stops, focusWidget());
    QWidget* wanted = nullptr;
    if (next) {
        const bool isLast = current == stops.end() || std::next(current) == stops.end();
        wanted = isLast ? stops.front() : *std::next(current);
    } else {
        const bool isFirst = current == stops.end() || current == stops.begin();
        wanted = isFirst ? stops.back() : *std::prev(current);
    }
    wanted->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    if (column_->isAncestorOf(wanted)) {
        scroller_->ensureWidgetVisible(wanted, 0, cardGap);
    }
    return true;
}

/// The card comes into sight with what leads on from it ready to be pressed.
void SetupAssistantView::comeToAgent() {
    const auto card = std::ranges::find(tools_, *content_.focus, &SetupToolCard::agent);
    if (card == tools_.end()) {
        return;
    }
    scroller_->ensureWidgetVisible(*card, 0, cardGap);
    if (QWidget* control = (*card)->mainControl()) {
        control->setFocus(Qt::OtherFocusReason);
    }
}

/// Where a control has gone that had the keyboard, what leads on from there gets it: in its card,
/// else in one below.
void SetupAssistantView::keepFocusNear(const QWidget* focused, std::size_t card) {
    const bool isThere =
        std::ranges::any_of(controls(), [&](const QWidget* control) { return control == focused; });
    if (isThere && focused->isVisibleTo(this)) {
        return;
    }
    for (std::size_t index = card; index < tools_.size(); ++index) {
        if (QWidget* control = tools_[index]->mainControl()) {
            return control->setFocus(Qt::TabFocusReason);
        }
    }
    next_->setFocus(Qt::TabFocusReason);
}

void SetupAssistantView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void SetupAssistantView::arrange() {
    steps_->setGeometry(0, 0, SetupStepList::width, height());
    const int left = SetupStepList::width + margin;
    const int wide = std::max(width() - left - margin, 1);
    title_->setGeometry(left, titleTop, wide, titleHeight);
    const int subtitleTop = titleTop + titleHeight + subtitleGap;
    subtitle_->setGeometry(left, subtitleTop, wide, subtitle_->heightForWidth(wide));
    const int top = subtitleTop + subtitle_->height() + headBelow - ringRoom;
    scroller_->setGeometry(SetupStepList::width, top, width() - SetupStepList::width,
                           std::max(height() - footHeight - top, 0));
    column_->setFixedHeight(arrangePage(wide) + margin);
    arrangeFoot();
}

/// The height that the page needs.
int SetupAssistantView::arrangePage(int width) {
    int top = ringRoom;
    const auto place = [&](QWidget* part) {
        const int height = part->heightForWidth(width);
        part->setGeometry(margin, top, width, height);
        top += height + cardGap;
    };
    if (!trouble_->isHidden()) {
        place(trouble_);
    }
    std::ranges::for_each(points_, place);
    if (!agents_->isHidden()) {
        place(agents_);
    }
    std::ranges::for_each(tools_, place);
    if (!nothingToDo_->isHidden()) {
        place(nothingToDo_);
    }
    if (!settings_->isHidden()) {
        place(settings_);
    }
    return top - cardGap;
}

void SetupAssistantView::arrangeFoot() {
    const int top = height() - footHeight + (footHeight - controlHeight) / 2;
    int right = width() - margin;
    for (kit::Button* button : {next_, back_, later_}) {
        if (button->isHidden()) {
            continue;
        }
        const int wanted = button->sizeHint().width();
        button->setGeometry(right - wanted, top, wanted, controlHeight);
        right -= wanted + buttonGap;
    }
    int left = SetupStepList::width + margin - kit::Button::plainPadding;
    if (!check_->isHidden()) {
        const int wanted = check_->sizeHint().width();
        check_->setGeometry(left, top, wanted, controlHeight);
        left += wanted + 4;
    }
    // Gives way whole: half a time tells nothing.
    const int room = right - left;
    checkedAt_->setVisible(!checkedAt_->text().isEmpty() && checkedAt_->wantedWidth() <= room);
    checkedAt_->setGeometry(left, top, std::max(room, 0), controlHeight);
}

void SetupAssistantView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::window));
    painter.fillRect(
        QRect(SetupStepList::width, height() - footHeight, width() - SetupStepList::width, 1),
        kit::color(kit::ColorRole::line));
}

void SetupAssistantView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        actions_.lookAgain();
    }
    QWidget::changeEvent(event);
}

void SetupAssistantView::keyPressEvent(QKeyEvent* event) {
    if (kit::handleWindowKey(*this, *event)) {
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        next_->click();
    } else if (!scroller_->scrollByKey(event->key())) {
        QWidget::keyPressEvent(event);
    }
}

} // namespace vellmark
