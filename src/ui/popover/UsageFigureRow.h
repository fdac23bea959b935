#pragma once

#include "ui/UsageFigures.h"

#include <QWidget>

namespace vellmark {

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
    /// Of the last line of words.
    int lastTop() const;

    UsageFigures figures_;
};

/// The bones of such a row while its values are read.
void drawFigureBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width);
int figureBonesHeight();

} // namespace vellmark
