#pragma once

#include "presentation/ChartContent.h"
#include "ui/kit/Chart.h"

#include <QWidget>

namespace vellmark {

/// A chart of one agent on a card: what is left over time, in the agent's colour, read out by
/// pointer and keyboard.
class ChartView : public kit::Chart {
public:
    enum class Size { small, large };

    explicit ChartView(Size size, QWidget* parent = nullptr);
    void setContent(const ChartContent& content);
    const ChartContent& content() const { return content_; }

private:
    Size size_;
    ChartContent content_;
};

kit::ChartLook::Stroke chartStroke(ChartLine::Role role);

/// The kit's form of a chart's content.
kit::ChartLook chartLook(const ChartContent& content, bool isLarge);

} // namespace vellmark
