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
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    std::string iconName_;
    Interaction interaction_;
};

} // namespace vellmark::kit
