#pragma once

#include "presentation/AgentBlockContent.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Label;
}

/// One balance or credit: its name, and at the end what is left of how much.
class BalanceRow : public QWidget {
public:
    explicit BalanceRow(QWidget* parent = nullptr);
    void setContent(const BalanceRowContent& content);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    kit::Label* label_;
    kit::Label* value_;
    kit::Label* detail_;
};

} // namespace vellmark
