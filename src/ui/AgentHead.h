#pragma once

#include "presentation/AgentBlockContent.h"
#include "ui/kit/TextStyle.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class HealthDot;
class Label;
class LogoTile;
} // namespace kit

/// The head of something that leads to an agent as a whole: logo and name with a detail beside it,
/// at the end the agent's state and a chevron.
class AgentHead : public QWidget {
public:
    struct Form {
        /// Of the head and of the logo.
        int height;
        kit::TextStyle nameStyle;
        /// How far the detail stands below the middle.
        int detailDrop;
        int chevronSide;
        int chevronGap;
    };

    AgentHead(const Form& form, QWidget* parent);
    void setContent(const AgentBlockContent& agent, const QString& detail);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();

    Form form_;
    kit::LogoTile* logo_;
    kit::Label* name_;
    kit::Label* detail_;
    kit::HealthDot* health_;
};

} // namespace vellmark
