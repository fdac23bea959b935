#pragma once

#include "presentation/AgentPageContent.h"
#include "ui/UsageFigures.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class HealthDot;
class Label;
} // namespace kit
class ChartView;

/// One quota window on an agent's page: how it stands in large figures, and its course below, which
/// takes whatever height there is. Without content it shows its bones.
class AgentWindowCard : public QWidget {
public:
    static constexpr int leastHeight = 300;

    explicit AgentWindowCard(QWidget* parent);

    void setContent(const AgentWindowContent& content);
    /// Without, it shows its bones.
    bool hasContent() const { return hasContent_; }
    QWidget* chart() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    void paintBones(QPainter& painter) const;

    bool hasContent_ = false;
    bool isUsedUp_ = false;
    UsageFigures figures_;
    kit::HealthDot* health_;
    kit::Label* elapsed_;
    kit::Label* outlook_;
    kit::Label* chartTitle_;
    ChartView* chart_;
    kit::Label* chartNote_;
};

} // namespace vellmark
