#pragma once

#include "ui/kit/LogoTile.h"

#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;

namespace vellmark::kit {

/// A choice of one among a few, side by side.
class Segments : public QWidget {
public:
    enum class Size { normal, small };

    explicit Segments(Size size, QWidget* parent = nullptr);
    /// Each with a logo before it where there are any.
    void setChoices(const QStringList& choices, const std::vector<LogoLook>& logos = {});
    /// -1 for none.
    void setCurrent(int index);
    int current() const;
    /// Its parts; the keyboard reaches the chosen one, and the others by the arrow keys.
    std::vector<QWidget*> controls() const;
    /// Called when the user chooses, not when `setCurrent` does.
    std::function<void(int)> onChoose;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Part;
    void arrange();

    Size size_;
    std::vector<Part*> parts_;
};

} // namespace vellmark::kit
