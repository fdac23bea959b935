#pragma once

#include "presentation/SetupAssistantContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class HealthDot;
class Label;
class LogoTile;
class Notice;
} // namespace kit

/// An agent in the setup assistant: how far it is set up, and what there is to do about it. The
/// command that would run stands above the button that runs it, and can be copied.
class SetupToolCard : public QWidget {
public:
    /// `actions` must outlive the card.
    SetupToolCard(const AgentProviderID& id, const SetupAssistantActions& actions, QWidget* parent);

    const AgentProviderID& agent() const { return id_; }
    void setContent(const SetupToolContent& content);
    std::vector<QWidget*> controls() const;
    /// What leads on: the button into the terminal, else the one that copies; null when ready.
    QWidget* mainControl() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Puts everything in its place; the height that is needed.
    int arrange(int width, bool moves) const;
    int arrangeButtons(int top, int width, bool moves) const;
    QRect commandBox(int width) const;
    void tickCopy();

    AgentProviderID id_;
    const SetupAssistantActions& actions_;
    SetupToolContent content_;
    kit::LogoTile* logo_;
    kit::Label* name_;
    kit::Label* detail_;
    kit::HealthDot* status_;
    kit::Label* command_;
    kit::Button* copy_;
    kit::Label* hint_;
    kit::Notice* outcome_;
    kit::Button* run_;
    kit::Button* alternative_;
    kit::Button* leaveOut_;
    kit::Button* guide_;
};

} // namespace vellmark
