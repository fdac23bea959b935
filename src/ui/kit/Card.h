#pragma once

#include "ui/kit/Interaction.h"

#include <QAbstractButton>

namespace vellmark::kit {

/// A ground for what belongs together; the whole card is one button.
class Card : public QAbstractButton {
public:
    explicit Card(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Interaction interaction_;
};

} // namespace vellmark::kit
