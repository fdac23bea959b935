#pragma once

#include <QWidget>

namespace vellmark::kit {

/// Where the ring of a focused control runs.
struct FocusShape {
    /// Of the control's own outline, in points.
    double cornerRadius = 6;
    /// From the control's edge to the ring; negative for a ring inside.
    int gap = 2;
    bool operator==(const FocusShape&) const = default;
};

/// The ring around a control that has the keyboard: a sibling of the control, drawn over it, since
/// a widget cannot paint outside itself.
class FocusRing : public QWidget {
public:
    FocusRing(QWidget* control, FocusShape shape);
    ~FocusRing() override;
    /// Whether the user goes by the keyboard just now: some control has the ring.
    static bool isAnyShown();
    /// Follows the control's place, or `part` of it.
    void follow(const QRect& part);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* control_;
    FocusShape shape_;
};

} // namespace vellmark::kit
