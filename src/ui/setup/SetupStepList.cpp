#include "ui/setup/SetupStepList.h"

#include "ui/Conversions.h"
#include "ui/UpdateInPlace.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Spoken.h"
#include "ui/kit/Theme.h"

#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int padding = 12;
constexpr int rowHeight = 32;
constexpr int rowPadding = 10;
constexpr int badgeSide = 18;
constexpr int badgeGap = 8;
constexpr int checkSide = 11;
} // namespace

class SetupStepRow : public QLabel, public kit::Spoken {
public:
    explicit SetupStepRow(QWidget* parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

    void setContent(const SetupStepContent& content) {
        place_ = content.place;
        setText(qString(content.title));
        setAccessibleName(qString(content.spoken));
        update();
    }
    void setNumber(int number) { number_ = number; }
    kit::SpokenAs spokenAs() const override { return {QAccessible::StaticText}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        using Place = SetupStepContent::Place;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        if (place_ == Place::current) {
            painter.setBrush(kit::color(kit::ColorRole::select));
            painter.drawRoundedRect(rect(), kit::radius::control, kit::radius::control);
        }
        const QRectF badge(rowPadding, (height() - badgeSide) / 2.0, badgeSide, badgeSide);
        const QColor ink =
            kit::color(place_ == Place::ahead ? kit::ColorRole::ink2 : kit::ColorRole::ink);
        if (place_ == Place::done) {
            painter.setBrush(kit::color(kit::ColorRole::primary));
            painter.drawEllipse(badge);
            const double inset = (badgeSide - checkSide) / 2.0;
            kit::drawIcon(painter, badge.adjusted(inset, inset, -inset, -inset), "checkmark",
                          kit::color(kit::ColorRole::onPrimary));
        } else {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(kit::color(kit::ColorRole::lineStrong), 1));
            painter.drawEllipse(badge.adjusted(0.5, 0.5, -0.5, -0.5));
            painter.setPen(ink);
            kit::drawText(painter, badge, Qt::AlignHCenter, QString::number(number_),
                          kit::style::smallStrong);
        }
        const double left = badge.right() + badgeGap;
        painter.setPen(ink);
        kit::drawText(painter, QRectF(left, 0, width() - left, height()), Qt::AlignLeft,
                      kit::elidedText(text(), kit::style::bodyMedium, width() - left),
                      kit::style::bodyMedium);
    }

private:
    SetupStepContent::Place place_ = SetupStepContent::Place::ahead;
    int number_ = 1;
};

SetupStepList::SetupStepList(QWidget* parent) : QWidget(parent) {}

void SetupStepList::setSteps(const std::vector<SetupStepContent>& steps) {
    updateRows(rows_, steps, this);
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        rows_[index]->setNumber(static_cast<int>(index) + 1);
    }
    resizeEvent(nullptr);
}

void SetupStepList::setTopInset(int inset) {
    topInset_ = inset;
    resizeEvent(nullptr);
}

void SetupStepList::resizeEvent(QResizeEvent* /*event*/) {
    int top = std::max(padding, topInset_);
    for (SetupStepRow* row : rows_) {
        row->setGeometry(padding, top, QWidget::width() - 2 * padding, rowHeight);
        top += rowHeight;
    }
}

void SetupStepList::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::sidebar));
    painter.fillRect(QRect(QWidget::width() - 1, 0, 1, height()), kit::color(kit::ColorRole::line));
}

} // namespace vellmark
