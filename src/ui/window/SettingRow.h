#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/SettingsPageContent.h"
#include "ui/kit/Form.h"

#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Choice;
class DragHandle;
class Label;
class LogoTile;
class ReorderList;
class Segments;
class Switch;
} // namespace kit

/// A row of the settings: its words, and a switch, a choice or a button, made when it is first
/// needed.
class SettingRow : public kit::FormRow {
public:
    SettingRow(std::string name, const SettingsPageActions& actions,
               std::function<void(const std::string& name)> press);

    const std::string& name() const { return name_; }
    void setContent(const SettingRowContent& content);
    std::vector<QWidget*> controls() const;

private:
    void setSwitch(const SettingRowContent& content);
    void setChoices(const SettingRowContent& content);

    std::string name_;
    const SettingsPageActions& actions_;
    SettingSwitch values_;
    SettingChoices choices_;
    kit::Button* button_;
    kit::Switch* switch_ = nullptr;
    kit::Segments* segments_ = nullptr;
    kit::Choice* choice_ = nullptr;
};

/// An agent among those that can be switched on and put in order.
class AgentSettingRow : public kit::FormRow {
public:
    AgentSettingRow(const AgentProviderID& id, const SettingsPageActions& actions,
                    const AgentUIActions& program, kit::ReorderList& list);

    const AgentProviderID& agent() const { return id_; }
    void setContent(const AgentSettingContent& content);
    std::vector<QWidget*> controls() const;

private:
    AgentProviderID id_;
    kit::DragHandle* handle_;
    kit::LogoTile* logo_;
    kit::Label* status_;
    kit::Button* wayOut_;
    kit::Switch* switch_;
};

} // namespace vellmark
