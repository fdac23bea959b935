#pragma once

#include "presentation/SetupAssistantContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Label;
}

/// A heading and a few sentences under it, each with a mark.
class SetupPoints : public QWidget {
public:
    explicit SetupPoints(QWidget* parent = nullptr);
    void setContent(const SetupPointsContent& content);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return arrange(width, false); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int arrange(int width, bool moves) const;

    SetupPointsContent content_;
    kit::Label* heading_;
    std::vector<kit::Label*> points_;
};

} // namespace vellmark
