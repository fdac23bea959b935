#include "ui/window/SettingRow.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Button.h"
#include "ui/kit/Choice.h"
#include "ui/kit/Label.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/ReorderList.h"
#include "ui/kit/Segments.h"
#include "ui/kit/Toggle.h"

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

constexpr int logoSide = 24;

QStringList titles(const SettingChoices& control) {
    QStringList result;
    for (const SettingChoices::Choice& choice : control.choices) {
        result << qString(choice.title);
    }
    return result;
}

void setButton(kit::Button& button, const ControlContent& content) {
    button.setText(qString(content.title));
    button.setIconName(content.icon);
    button.setToolTip(qString(content.help));
    button.setVisible(!content.title.empty());
}

} // namespace

SettingRow::SettingRow(std::string name, const SettingsPageActions& actions,
                       std::function<void(const std::string& name)> press)
    : name_(std::move(name)), actions_(actions),
      button_(new kit::Button(kit::Button::Kind::normal, this)) {
    addControl(button_);
    connect(button_, &QAbstractButton::clicked, this,
            [this, press = std::move(press)] { press(name_); });
}

void SettingRow::setContent(const SettingRowContent& content) {
    setButton(*button_, content.button);
    button_->setAccessibleDescription(qString(content.label));
    if (std::holds_alternative<SettingSwitch>(content.control)) {
        setSwitch(content);
    } else if (std::holds_alternative<SettingChoices>(content.control)) {
        setChoices(content);
    }
    setWords(qString(content.label), qString(content.explanation));
}

void SettingRow::setSwitch(const SettingRowContent& content) {
    if (switch_ == nullptr) {
        switch_ = new kit::Switch(this);
        addControl(switch_);
        connect(switch_, &QAbstractButton::clicked, this, [this](bool isOn) {
            actions_.change(name_, isOn ? values_.onValue : values_.offValue);
        });
    }
    values_ = std::get<SettingSwitch>(content.control);
    switch_->setChecked(values_.isOn);
    switch_->setEnabled(values_.isEnabled);
    switch_->setAccessibleName(qString(content.label));
    switch_->setAccessibleDescription(qString(content.explanation));
}

void SettingRow::setChoices(const SettingRowContent& content) {
    choices_ = std::get<SettingChoices>(content.control);
    const auto choose = [this](int index) {
        actions_.change(name_, choices_.choices[static_cast<std::size_t>(index)].value);
    };
    const auto holds =
        std::ranges::find(choices_.choices, choices_.current, &SettingChoices::Choice::value);
    const int current =
        holds == choices_.choices.end() ? -1 : static_cast<int>(holds - choices_.choices.begin());
    if (choices_.form == SettingChoices::Form::popUp) {
        if (choice_ == nullptr) {
            choice_ = new kit::Choice(this);
            choice_->onChoose = choose;
            addControl(choice_);
        }
        choice_->setChoices(titles(choices_));
        choice_->setCurrentIndex(current);
        choice_->setAccessibleName(qString(content.label));
        choice_->setAccessibleDescription(qString(content.explanation));
        return;
    }
    if (segments_ == nullptr) {
        segments_ = new kit::Segments(kit::Segments::Size::normal, this);
        segments_->onChoose = choose;
        addControl(segments_);
    }
    segments_->setChoices(titles(choices_));
    segments_->setCurrent(current);
    segments_->setAccessibleName(qString(content.label));
    segments_->setAccessibleDescription(qString(content.explanation));
}

std::vector<QWidget*> SettingRow::controls() const {
    std::vector<QWidget*> result{button_};
    if (switch_ != nullptr) {
        result.push_back(switch_);
    }
    if (choice_ != nullptr) {
        result.push_back(choice_);
    }
    if (segments_ != nullptr) {
        for (QWidget* part : segments_->controls()) {
            result.push_back(part);
        }
    }
    return result;
}

AgentSettingRow::AgentSettingRow(const AgentProviderID& id, const SettingsPageActions& actions,
                                 const AgentUIActions& program, kit::ReorderList& list)
    : id_(id), handle_(list.addHandle(this)), logo_(new kit::LogoTile(logoSide, this)),
      status_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      wayOut_(new kit::Button(kit::Button::Kind::normal, this)), switch_(new kit::Switch(this)) {
    setLeastHeight(tallHeight);
    setLabelStyle(kit::style::strong);
    logo_->setLook(providerLogo(id));
    addLeading(logo_);
    addControl(status_);
    addControl(wayOut_);
    addControl(switch_);
    connect(wayOut_, &QAbstractButton::clicked, this,
            [this, &program] { program.setUpAgent(id_); });
    connect(switch_, &QAbstractButton::clicked, this,
            [this, &actions](bool isOn) { actions.enableAgent(id_, isOn); });
}

void AgentSettingRow::setContent(const AgentSettingContent& content) {
    status_->setWords(qString(content.status));
    status_->setVisible(!content.status.empty());
    setButton(*wayOut_, content.wayOut);
    wayOut_->setAccessibleDescription(qString(content.name));
    switch_->setChecked(content.isEnabled);
    switch_->setAccessibleName(qString(content.switchName));
    handle_->setAccessibleName(qString(content.handleName));
    handle_->setAccessibleDescription(qString(content.place));
    handle_->setToolTip(qString(content.handleName));
    setWords(qString(content.name), qString(content.detail));
}

std::vector<QWidget*> AgentSettingRow::controls() const {
    return {handle_, wayOut_, switch_};
}

} // namespace vellmark
