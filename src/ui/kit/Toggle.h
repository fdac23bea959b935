#pragma once

#include "ui/kit/Interaction.h"

#include <QAbstractButton>

namespace vellmark::kit {

/// A setting that is on or off and takes effect at once; its label stands elsewhere, so give it an
/// accessible name.
class Switch : public QAbstractButton {
public:
    explicit Switch(QWidget* parent = nullptr);
    QSize sizeHint() const override { return {34, 20}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Interaction interaction_;
};

/// A box to tick, with its words beside it.
class Check : public QAbstractButton {
public:
    explicit Check(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    Interaction interaction_;
};

} // namespace vellmark::kit
