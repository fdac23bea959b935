#pragma once

#include "presentation/UsageRowContent.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Label;
}
class ForecastLine;
class UsageProgressBar;

/// The widths that all rows of the overview share, in points.
struct RowColumns {
    int label = 112;
    int value = 76;
    bool operator==(const RowColumns&) const = default;

    /// Wide enough for one more row.
    void include(const UsageRowContent& row);
};

/// One quota window in three columns: label, bar, what is left; under the bar when it resets and,
/// if it runs out before, when.
class CompactUsageRow : public QWidget {
public:
    explicit CompactUsageRow(QWidget* parent = nullptr);
    void setContent(const UsageRowContent& content);
    void setColumns(const RowColumns& columns);
    int wantedHeight() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    RowColumns columns_;
    bool isUsedUp_ = false;
    kit::Label* label_;
    UsageProgressBar* bar_;
    kit::Label* value_;
    kit::Label* reset_;
    ForecastLine* forecast_;
};

/// The bones of a row whose values are being read, at the same places.
void drawRowBones(QPainter& painter, const QWidget& on, QPoint topLeft, int width,
                  const RowColumns& columns);

} // namespace vellmark
