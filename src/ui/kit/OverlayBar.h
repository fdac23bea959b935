#pragma once

#include "ui/kit/Interaction.h"

#include <QScrollBar>

class QAbstractScrollArea;

namespace vellmark::kit {

/// The scroll bar that lies over the content's margin, in the place of an area's own vertical one,
/// which it hides.
class OverlayBar : public QScrollBar {
public:
    explicit OverlayBar(QAbstractScrollArea* area);
    /// To be called when the area's size has changed.
    void place();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QAbstractScrollArea* area_;
    Interaction interaction_;
};

} // namespace vellmark::kit
