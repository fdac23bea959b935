#pragma once

#include "presentation/HelpPageActions.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Label;
}
class HelpEntryView;

/// Entries of the help on one card, under their title.
class HelpGroupView : public QWidget {
public:
    HelpGroupView(const HelpPageActions& actions, QWidget* parent);

    void setContent(const HelpGroup& group, const QString& copyTitle);
    std::vector<QWidget*> controls() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int cardTop() const;

    const HelpPageActions& actions_;
    kit::Label* title_;
    std::vector<HelpEntryView*> entries_;
};

} // namespace vellmark
