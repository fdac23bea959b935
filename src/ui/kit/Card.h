#pragma once

#include "ui/kit/Interaction.h"
#include "ui/kit/Track.h"

#include <QAbstractButton>

namespace vellmark::kit {

/// A ground for what belongs together; the whole card is one button.
class Card : public QAbstractButton, public ChangingGround {
public:
    explicit Card(QWidget* parent = nullptr);
    double groundChange() const override { return isDown() ? 1 : 0; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Interaction interaction_;
};

} // namespace vellmark::kit
