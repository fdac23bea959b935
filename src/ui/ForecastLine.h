#pragma once

#include "presentation/UsageRowContent.h"

#include <QLabel>

#include <optional>

namespace vellmark {

/// The line that says that a quota runs out before its reset or is used up: a warning mark and the
/// sentence, or its short form where the width does not do. One line, 14 high; hides itself without
/// a forecast.
class ForecastLine : public QLabel {
public:
    explicit ForecastLine(QWidget* parent = nullptr);
    void setContent(const std::optional<ForecastLineContent>& content);
    /// The forecast of a row, or, of a used-up one, its `reset`: that is then shown nowhere else.
    void setContent(const UsageRowContent& row);
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
