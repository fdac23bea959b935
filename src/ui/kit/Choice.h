#pragma once

#include "ui/kit/Interaction.h"

#include <QComboBox>

#include <functional>

namespace vellmark::kit {

/// One of several, chosen from a list that pops up; 28 high. The pointer's wheel scrolls the page
/// below and never changes the choice. Give it an accessible name.
class Choice : public QComboBox {
public:
    explicit Choice(QWidget* parent = nullptr);

    void setChoices(const QStringList& choices);
    /// Called when the user chooses, not when `setCurrentIndex` does.
    std::function<void(int)> onChoose;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    void showPopup() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    Interaction interaction_;
};

} // namespace vellmark::kit
