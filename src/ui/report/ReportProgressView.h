#pragma once

#include "presentation/SupportReportContent.h"
#include "ui/kit/Spoken.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Label;
}

/// Stands in the place of a report's text until there is one: which agent has answered, and what
/// could not be had of it.
class ReportProgressView : public QWidget, public kit::Spoken {
public:
    explicit ReportProgressView(QWidget* parent = nullptr);

    void setRows(const QString& title, const std::vector<SupportReportContent::ProgressRow>& rows);

    kit::SpokenAs spokenAs() const override { return {QAccessible::StaticText, true}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    using Mark = SupportReportContent::ProgressRow::Mark;
    struct Row {
        Mark mark = Mark::waiting;
        kit::Label* name;
        kit::Label* state;
    };
    void arrange();

    kit::Label* title_;
    std::vector<Row> rows_;
};

} // namespace vellmark
