#pragma once

#include "presentation/UsageRowContent.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Label;
}
class ForecastLine;
class UsageBar;

/// One quota window on an agent's tab: label and large figure, a thick bar, reset and planning, and
/// the forecast when it runs out before the reset.
class UsageFigureRow : public QWidget {
public:
    explicit UsageFigureRow(QWidget* parent = nullptr);
    void setContent(const UsageRowContent& content);
    int wantedHeight() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    kit::Label* label_;
    kit::Label* figure_;
    kit::Label* figureWord_;
    UsageBar* bar_;
    kit::Label* reset_;
    kit::Label* planning_;
    ForecastLine* forecast_;
};

/// The bones of such a row while its values are read.
void drawFigureBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width);
int figureBonesHeight();

} // namespace vellmark
