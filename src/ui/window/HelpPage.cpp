#include "ui/window/HelpPage.h"

#include "ui/Conversions.h"
#include "ui/kit/Field.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/Segments.h"
#include "ui/window/HelpGroupView.h"
#include "ui/window/PageHead.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QScrollBar>
#include <QShortcut>

#include <algorithm>

namespace vellmark {

namespace {

constexpr int margin = PageHead::margin;
constexpr int sectionsGap = 16;
constexpr int groupGap = 20;

class SearchField : public kit::Field {
public:
    using kit::Field::Field;
    QSize sizeHint() const override { return {240, kit::Field::sizeHint().height()}; }
};

} // namespace

HelpPage::HelpPage(const HelpPageActions& actions, QWidget* parent)
    : WindowPage([] {}, parent), actions_(actions), search_(new SearchField(this)),
      sections_(new kit::Segments(kit::Segments::Size::normal, this)),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget),
      nothingFound_(new kit::Label(kit::style::body, kit::ColorRole::ink2, column_)) {
    search_->setIconName("magnifyingglass");
    head().addControl(search_);
    nothingFound_->setMostLines(kit::anyNumberOfLines);
    column_->setAutoFillBackground(false);
    scroller_->setWidget(column_);
    connect(search_, &QLineEdit::textEdited, this,
            [this](const QString& text) { actions_.search(text.toStdString()); });
    sections_->onChoose = [this](int index) { actions_.choose(static_cast<HelpSection>(index)); };
    auto* find = new QShortcut(QKeySequence::Find, this);
    find->setContext(Qt::WindowShortcut);
    connect(find, &QShortcut::activated, search_, [this] {
        search_->setFocus(Qt::ShortcutFocusReason);
        search_->selectAll();
    });
}

void HelpPage::setContent(const HelpPageContent& content) {
    if (content == content_) {
        return;
    }
    const bool isOther = content.section != content_.section || content.query != content_.query;
    content_ = content;
    head().setContent(content.head);
    search_->setPlaceholderText(qString(content.searchHint));
    search_->setAccessibleName(qString(content.searchHint));
    if (search_->text() != qString(content.query)) {
        search_->setText(qString(content.query));
    }
    QStringList titles;
    for (const std::string& title : content.sections) {
        titles << qString(title);
    }
    sections_->setChoices(titles);
    // While something is looked for, no section is chosen: what is found is from all of them.
    sections_->setCurrent(content.query.empty() ? static_cast<int>(content.section) : -1);
    while (groups_.size() > content.groups.size()) {
        delete groups_.back();
        groups_.pop_back();
    }
    while (groups_.size() < content.groups.size()) {
        groups_.push_back(new HelpGroupView(actions_, column_));
        groups_.back()->show();
    }
    for (std::size_t index = 0; index < groups_.size(); ++index) {
        groups_[index]->setContent(content.groups[index], qString(content.copyTitle));
    }
    nothingFound_->setWords(qString(content.nothingFound));
    nothingFound_->setVisible(!content.nothingFound.empty());
    arrange();
    if (isOther) {
        scrollToTop();
    }
}

std::vector<QWidget*> HelpPage::controls() const {
    std::vector<QWidget*> result = head().controls();
    for (QAbstractButton* part : sections_->findChildren<QAbstractButton*>()) {
        result.push_back(part);
    }
    for (const HelpGroupView* group : groups_) {
        const std::vector<QWidget*> own = group->controls();
        result.insert(result.end(), own.begin(), own.end());
    }
    return result;
}

void HelpPage::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

void HelpPage::arrange() {
    const QRect below = body();
    const QSize sections = sections_->sizeHint();
    sections_->setGeometry(margin, below.top(), sections.width(), sections.height());
    const int top = below.top() + sections.height() + sectionsGap;
    scroller_->setGeometry(0, top, width(), std::max(height() - top, 0));
    const int wide = std::max(width() - 2 * margin, 1);
    int bottom = 0;
    for (HelpGroupView* group : groups_) {
        const int height = group->heightForWidth(wide);
        group->setGeometry(margin, bottom, wide, height);
        bottom += height + groupGap;
    }
    if (!content_.nothingFound.empty()) {
        const int height = nothingFound_->heightForWidth(wide);
        nothingFound_->setGeometry(margin, 4, wide, height);
        bottom = height + groupGap;
    }
    column_->setFixedHeight(bottom - groupGap + margin);
}

void HelpPage::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !content_.query.empty()) {
        actions_.search({});
    } else if (!scroller_->scrollByKey(event->key())) {
        WindowPage::keyPressEvent(event);
    }
}

} // namespace vellmark
