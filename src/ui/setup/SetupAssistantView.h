#pragma once

#include "presentation/SetupAssistantContent.h"

#include <QPointer>
#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class FormCard;
class FormRow;
class HealthDot;
class Label;
class Notice;
class Question;
class ScrollArea;
class Switch;
} // namespace kit
class SettingRow;
class SetupPoints;
class SetupStepList;
class SetupToolCard;

/// The setup assistant: its steps at the left, the page of the current one, and the ways on and
/// back at the foot. The arrow and page keys scroll, Escape closes. Main thread.
class SetupAssistantView final : public QWidget {
public:
    static constexpr QSize firstSize{820, 580};
    static constexpr QSize leastSize{640, 420};

    explicit SetupAssistantView(SetupAssistantActions actions, QWidget* parent = nullptr);

    void setContent(const SetupAssistantContent& content);
    /// What the window's own buttons take at the top, where the content reaches under the title
    /// bar.
    void setTopInset(int inset);
    /// In reading order.
    std::vector<QWidget*> controls() const;
    /// The question that waits for an answer, or null.
    kit::Question* question() const;

    QSize sizeHint() const override { return firstSize; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    struct AgentRow {
        AgentProviderID id;
        kit::FormRow* row;
        kit::Switch* onOff;
        kit::HealthDot* status;
    };
    void updateAgents(const SetupAssistantContent& content);
    AgentRow makeAgentRow(const AgentProviderID& id);
    void updateTools(const SetupAssistantContent& content);
    void updateSettings(const SetupAssistantContent& content);
    void pressSetting(const std::string& name);
    void updateFoot(const SetupAssistantContent& content);
    void arrange();
    int arrangePage(int width);
    void arrangeFoot();
    void comeToAgent();
    void keepFocusNear(const QWidget* focused, std::size_t card);
    std::vector<QWidget*> pageControls() const;

    SetupAssistantActions actions_;
    /// What rows of settings ask for.
    SettingsPageActions settingActions_;
    SetupAssistantContent content_;
    SetupStepList* steps_;
    kit::Label* title_;
    kit::Label* subtitle_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    std::vector<SetupPoints*> points_;
    kit::Notice* trouble_;
    kit::FormCard* agents_;
    std::vector<AgentRow> agentRows_;
    std::vector<SetupToolCard*> tools_;
    kit::Label* nothingToDo_;
    kit::FormCard* settings_;
    std::vector<SettingRow*> settingRows_;
    QPointer<kit::Question> question_;
    kit::Button* check_;
    kit::Label* checkedAt_;
    kit::Button* later_;
    kit::Button* back_;
    kit::Button* next_;
};

} // namespace vellmark
