#pragma once

#include "presentation/UsageRowContent.h"

#include <QLabel>

#include <optional>

namespace vellmark {

/// The line that says that a quota runs out before its reset: a warning mark and the sentence, or
/// its short form where the width does not do. One line, 14 high; hides itself without a forecast.
class ForecastLine : public QLabel {
public:
    explicit ForecastLine(QWidget* parent = nullptr);
    void setContent(const std::optional<ForecastLineContent>& content);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Where the words begin.
    double wordsLeft() const;
    void chooseForm();

    ForecastLineContent content_;
};

} // namespace vellmark
