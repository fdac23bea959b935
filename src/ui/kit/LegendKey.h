#pragma once

#include "ui/kit/ChartLook.h"
#include "ui/kit/Interaction.h"

#include <QAbstractButton>

namespace vellmark::kit {

/// One line of a chart's legend: how it is drawn, its name, and what it tells now. Pressing it
/// shows or hides the line.
class LegendKey : public QAbstractButton {
public:
    struct Look {
        QColor accentLight;
        QColor accentDark;
        ChartLook::Stroke stroke = ChartLook::Stroke::strong;
        QString name;
        QString value;
        bool isShown = true;
        bool operator==(const Look&) const = default;
    };

    explicit LegendKey(QWidget* parent = nullptr);
    void setLook(const Look& look);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Look look_;
    Interaction interaction_;
};

} // namespace vellmark::kit
