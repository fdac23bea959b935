#pragma once

#include "presentation/ActivityPageContent.h"
#include "ui/window/WindowPage.h"

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Choice;
class Field;
class Label;
class Notice;
class Segments;
} // namespace kit
class ActivityList;
class ActivityListModel;

/// The main window's activity page: what the program has done, grouped by refresh. Control (on
/// macOS Command) with F looks for words. It holds entries only while it can be seen.
class ActivityPage : public WindowPage {
public:
    ActivityPage(const ActivityPageActions& actions, QWidget* parent);

    void setContent(const ActivityPageContent& content);
    std::vector<QWidget*> controls() const override;
    /// The newest entries are what the page is opened for.
    void scrollToTop() override;

    ActivityList& list() const { return *list_; }

protected:
    void arrange() override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void filter();
    void showAll();
    void setTexts(const ActivityPageContent& content);
    void showState();
    QRect card() const;

    const ActivityPageActions& actions_;
    ActivityPageContent content_;
    kit::Button* copy_;
    kit::Button* save_;
    kit::Notice* trouble_;
    kit::Field* search_;
    kit::Choice* subject_;
    kit::Segments* levels_;
    kit::Label* count_;
    kit::Label* timeTitle_;
    kit::Label* subjectTitle_;
    kit::Label* textTitle_;
    ActivityListModel* model_;
    ActivityList* list_;
    kit::Label* empty_;
    kit::Button* showAll_;
    kit::Label* follows_;
    kit::Button* toNewest_;
};

} // namespace vellmark
