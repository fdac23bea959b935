#pragma once

#include "ui/UsageFigures.h"

#include <QWidget>

namespace vellmark {

/// One quota window in a summary card: label, large figure, bar, reset, and the forecast or how it
/// stands to the plan. Always of one height, so that all cards are equally high.
class SummaryCell : public QWidget {
public:
    static constexpr int cellHeight = 103;

    explicit SummaryCell(QWidget* parent = nullptr);
    void setContent(const UsageRowContent& content);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    UsageFigures figures_;
    bool isUsedUp_ = false;
};

/// The bones of a cell while its values are read.
void drawCellBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width);

} // namespace vellmark
