#pragma once

#include "presentation/SetupAssistantContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

class SetupStepRow;

/// The steps of the setup assistant, one below the other: done, current, ahead. Nothing to press.
class SetupStepList : public QWidget {
public:
    static constexpr int width = 196;

    explicit SetupStepList(QWidget* parent = nullptr);
    void setSteps(const std::vector<SetupStepContent>& steps);
    /// What the window's own buttons take at the top.
    void setTopInset(int inset);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<SetupStepRow*> rows_;
    int topInset_ = 0;
};

} // namespace vellmark
