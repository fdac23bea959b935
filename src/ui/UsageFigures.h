#pragma once

#include "presentation/UsageRowContent.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

class QWidget;

namespace vellmark {

namespace kit {
class Label;
}
class ForecastLine;
class UsageProgressBar;

/// The parts of one quota window in large figures. They are children of the view that arranges
/// them.
struct UsageFigures {
    struct Form {
        kit::ColorRole labelColor;
        kit::TextStyle figureStyle;
        kit::TextStyle wordStyle;
        int barHeight;
    };

    UsageFigures(const Form& form, QWidget* parent);
    void setContent(const UsageRowContent& content);

    kit::Label* label;
    /// "62%" and "left".
    kit::Label* figure;
    kit::Label* word;
    UsageProgressBar* bar;
    kit::Label* reset;
    kit::Label* planning;
    /// Of a used-up window it stands in the place of `reset`, which is hidden.
    ForecastLine* forecast;
};

} // namespace vellmark
