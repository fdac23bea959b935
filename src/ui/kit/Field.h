#pragma once

#include "ui/kit/Interaction.h"

#include <QLineEdit>

#include <string>

namespace vellmark::kit {

/// One line to type in, 28 high, with an optional icon before it.
class Field : public QLineEdit {
public:
    explicit Field(QWidget* parent = nullptr);
    void setIconName(std::string name);
    /// For a control that its owner lays over the end.
    void setRoomAtEnd(int room);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void placeText();

    std::string iconName_;
    int roomAtEnd_ = 0;
    Interaction interaction_;
};

} // namespace vellmark::kit
