#include "ui/report/ReportProgressView.h"

#include "ui/Conversions.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {

using kit::ColorRole;

constexpr int padding = 16;
constexpr int titleHeight = 20;
constexpr int titleGap = 8;
constexpr int rowHeight = 26;
constexpr int markSide = 12;
constexpr int markGap = 8;
constexpr int columnGap = 16;
constexpr int leastName = 96;
constexpr double dotSide = 5;

} // namespace

ReportProgressView::ReportProgressView(QWidget* parent)
    : QWidget(parent), title_(new kit::Label(kit::style::strong, ColorRole::ink, this)) {}

void ReportProgressView::setRows(const QString& title,
                                 const std::vector<SupportReportContent::ProgressRow>& rows) {
    title_->setWords(title);
    while (rows_.size() > rows.size()) {
        delete rows_.back().name;
        delete rows_.back().state;
        rows_.pop_back();
    }
    while (rows_.size() < rows.size()) {
        rows_.push_back({.name = new kit::Label(kit::style::row, ColorRole::ink, this),
                         .state = new kit::Label(kit::style::text, ColorRole::ink2, this)});
        rows_.back().name->show();
        rows_.back().state->show();
    }
    QString said = title;
    for (std::size_t index = 0; index < rows.size(); ++index) {
        rows_[index].mark = rows[index].mark;
        rows_[index].name->setWords(qString(rows[index].name));
        rows_[index].state->setWords(qString(rows[index].state));
        said += QStringLiteral("; ") + qString(rows[index].name) + QStringLiteral(": ") +
                qString(rows[index].state);
    }
    setAccessibleName(said);
    arrange();
    update();
}

void ReportProgressView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void ReportProgressView::arrange() {
    int name = leastName;
    for (const Row& row : rows_) {
        name = std::max(name, row.name->wantedWidth());
    }
    title_->setGeometry(padding, padding, std::max(width() - 2 * padding, 0), titleHeight);
    const int nameLeft = padding + markSide + markGap;
    const int stateLeft = nameLeft + name + columnGap;
    int top = padding + titleHeight + titleGap;
    for (const Row& row : rows_) {
        row.name->setGeometry(nameLeft, top, name, rowHeight);
        row.state->setGeometry(stateLeft, top, std::max(width() - padding - stateLeft, 0),
                               rowHeight);
        top += rowHeight;
    }
}

void ReportProgressView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(kit::color(ColorRole::card));
    painter.setPen(QPen(kit::color(ColorRole::lineStrong), 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5),
                            kit::radius::notice - 0.5, kit::radius::notice - 0.5);
    for (const Row& row : rows_) {
        const QRectF mark(padding, row.name->geometry().center().y() - markSide / 2.0 + 0.5,
                          markSide, markSide);
        if (row.mark == Mark::done) {
            kit::drawIcon(painter, mark, "checkmark", kit::color(ColorRole::ink));
        } else if (row.mark == Mark::trouble) {
            kit::drawIcon(painter, mark, "exclamationmark.triangle.fill",
                          kit::color(ColorRole::ink2));
        } else {
            painter.setPen(Qt::NoPen);
            painter.setBrush(kit::color(ColorRole::none));
            painter.drawEllipse(mark.center(), dotSide / 2, dotSide / 2);
        }
    }
}

} // namespace vellmark
