#include "ui/window/ActivityPage.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/Choice.h"
#include "ui/kit/Field.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/Notice.h"
#include "ui/kit/Segments.h"
#include "ui/window/ActivityList.h"
#include "ui/window/PageHead.h"

#include <QKeyEvent>
#include <QPainter>
#include <QShortcut>

#include <algorithm>
#include <array>

namespace vellmark {

namespace {

using kit::ColorRole;
using Level = ActivityEntry::Level;

constexpr int margin = PageHead::margin;
constexpr int gap = 12;
constexpr int controlGap = 8;
constexpr int controlHeight = 28;
constexpr int widestSearch = 260;
constexpr int leastSearch = 120;
constexpr int subjectWidth = 148;
constexpr int headHeight = 32;
constexpr int footHeight = 36;
constexpr int line = 1;
constexpr int followIcon = 12;
constexpr int followGap = 6;
constexpr int emptyGap = 12;
/// In the order of the segments.
constexpr std::array levels{Level::info, Level::notice, Level::error};

kit::Label* columnTitle(QWidget* parent) {
    return new kit::Label(kit::style::smallMedium, ColorRole::ink2, parent);
}

} // namespace

ActivityPage::ActivityPage(const ActivityPageActions& actions, QWidget* parent)
    : WindowPage([] {}, parent), actions_(actions),
      copy_(new kit::Button(kit::Button::Kind::normal)),
      save_(new kit::Button(kit::Button::Kind::normal)), trouble_(new kit::Notice(this)),
      search_(new kit::Field(this)), subject_(new kit::Choice(this)),
      levels_(new kit::Segments(kit::Segments::Size::normal, this)),
      count_(new kit::Label(kit::style::text, ColorRole::ink2, this)),
      timeTitle_(columnTitle(this)), subjectTitle_(columnTitle(this)),
      textTitle_(columnTitle(this)), model_(new ActivityListModel(Localization("en"), this)),
      list_(new ActivityList(model_, this)),
      empty_(new kit::Label(kit::style::text, ColorRole::ink2, this)),
      showAll_(new kit::Button(kit::Button::Kind::normal, this)),
      follows_(new kit::Label(kit::style::text, ColorRole::ink2, this)),
      toNewest_(new kit::Button(kit::Button::Kind::plain, this)) {
    head().addControl(save_);
    head().addControl(copy_);
    trouble_->hide();
    count_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setMostLines(3);
    search_->setIconName("magnifyingglass");
    search_->setClearButtonEnabled(false);
    search_->installEventFilter(this);
    connect(copy_, &QAbstractButton::clicked, this, [this] { list_->copy(); });
    connect(save_, &QAbstractButton::clicked, this, [this] { actions_.save(); });
    connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
    subject_->onChoose = [this](int) { filter(); };
    levels_->onChoose = [this](int) { filter(); };
    connect(showAll_, &QAbstractButton::clicked, this, [this] { showAll(); });
    connect(toNewest_, &QAbstractButton::clicked, this, [this] { list_->followAgain(); });
    list_->onFollowChange = [this] { showState(); };
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] {
        search_->setFocus(Qt::ShortcutFocusReason);
        search_->selectAll();
    });
}

void ActivityPage::setContent(const ActivityPageContent& content) {
    const bool isOther = content.entries != content_.entries;
    const bool speaksOtherwise = !(content.words == content_.words);
    content_ = content;
    setTexts(content);
    model_->setNow(content.now);
    if (speaksOtherwise) {
        model_->listing().setWords(content.words);
    }
    model_->listing().setEntries(content.entries, content.entryCount);
    if (isOther || speaksOtherwise) {
        model_->showOtherRows();
        list_->followAgain();
    } else {
        model_->showRows();
    }
    showState();
    arrange();
}

void ActivityPage::setTexts(const ActivityPageContent& content) {
    for (const auto& [button, control] :
         {std::pair(copy_, &content.copy), std::pair(save_, &content.save),
          std::pair(toNewest_, &content.toNewest), std::pair(showAll_, &content.showAll)}) {
        button->setText(qString(control->title));
        button->setIconName(control->icon);
        button->setToolTip(qString(control->help));
    }
    head().setContent(content.head); // which gives the buttons the room they need now
    search_->setPlaceholderText(qString(content.search));
    search_->setAccessibleName(qString(content.search));
    QStringList names;
    for (const auto& subject : content.subjects) {
        names << qString(subject.name);
    }
    subject_->setChoices(names);
    subject_->setCurrentIndex(std::max(subject_->currentIndex(), 0));
    subject_->setAccessibleName(qString(content.subjectsName));
    QStringList levelNames;
    for (const std::string& level : content.levels) {
        levelNames << qString(level);
    }
    levels_->setChoices(levelNames);
    levels_->setCurrent(std::max(levels_->current(), 0));
    timeTitle_->setWords(qString(content.timeTitle));
    subjectTitle_->setWords(qString(content.subjectTitle));
    textTitle_->setWords(qString(content.textTitle));
    list_->setAccessibleName(qString(content.listName));
    trouble_->setLook({.words = qString(content.trouble)});
    trouble_->setVisible(!content.trouble.empty());
}

void ActivityPage::filter() {
    const auto subject = static_cast<std::size_t>(std::max(subject_->currentIndex(), 0));
    const auto level = static_cast<std::size_t>(std::max(levels_->current(), 0));
    ActivityFilter filter{.least = levels[level], .words = search_->text().toStdString()};
    if (subject < content_.subjects.size()) {
        filter.agent = content_.subjects[subject].agent;
    }
    if (filter == model_->listing().filter()) {
        return;
    }
    model_->listing().setFilter(std::move(filter));
    model_->showOtherRows();
    list_->followAgain();
}

void ActivityPage::showAll() {
    search_->clear();
    subject_->setCurrentIndex(0);
    levels_->setCurrent(0);
    filter();
    search_->setFocus(Qt::OtherFocusReason);
}

/// What goes with the rows: how many, whether there are any, whether new ones are followed.
void ActivityPage::showState() {
    const ActivityListing& listing = model_->listing();
    const bool isEmpty = listing.rows().empty();
    const bool isLoading = content_.entries == nullptr;
    count_->setWords(isLoading ? QString() : qString(listing.countText()));
    empty_->setWords(qString(isLoading              ? content_.loading
                             : listing.total() == 0 ? content_.nothingYet
                                                    : content_.nothingFound));
    empty_->setVisible(isEmpty);
    showAll_->setVisible(isEmpty && listing.total() > 0);
    list_->setVisible(!isEmpty);
    copy_->setEnabled(!isEmpty);
    save_->setEnabled(listing.total() > 0);
    const bool follows = list_->follows();
    follows_->setWords(isEmpty ? QString() : qString(follows ? content_.follows : content_.rests));
    toNewest_->setVisible(!isEmpty && !follows);
    arrange();
    update();
}

std::vector<QWidget*> ActivityPage::controls() const {
    std::vector<QWidget*> result = head().controls();
    result.push_back(search_);
    result.push_back(subject_);
    for (QAbstractButton* part : levels_->findChildren<QAbstractButton*>()) {
        result.push_back(part);
    }
    result.insert(result.end(), {list_, showAll_, toNewest_});
    return result;
}

void ActivityPage::scrollToTop() {
    list_->clearSelection();
    list_->followAgain();
}

void ActivityPage::hideEvent(QHideEvent* event) {
    WindowPage::hideEvent(event);
    if (event->spontaneous()) {
        return;
    }
    content_.entries.reset();
    content_.entryCount = 0;
    model_->listing().setEntries(nullptr, 0);
    model_->showOtherRows();
    actions_.rest();
}

QRect ActivityPage::card() const {
    int top = body().top() + controlHeight + gap;
    if (trouble_->isVisibleTo(this)) {
        top = trouble_->geometry().bottom() + 1 + gap;
    }
    return {margin, top, std::max(width() - 2 * margin, 0), std::max(height() - margin - top, 0)};
}

void ActivityPage::arrange() {
    const int top = body().top();
    const int right = width() - margin;
    const int levelsWidth = levels_->sizeHint().width();
    const int count = count_->wantedWidth();
    const int others = subjectWidth + levelsWidth + count + 2 * controlGap + gap;
    const int search = std::clamp(right - margin - controlGap - others, leastSearch, widestSearch);
    search_->setGeometry(margin, top, search, controlHeight);
    subject_->setGeometry(margin + search + controlGap, top, subjectWidth, controlHeight);
    levels_->setGeometry(subject_->geometry().right() + 1 + controlGap, top, levelsWidth,
                         controlHeight);
    count_->setGeometry(right - count, top, count, controlHeight);
    if (trouble_->isVisibleTo(this)) {
        const int wide = std::max(right - margin, 0);
        trouble_->setGeometry(margin, top + controlHeight + gap, wide,
                              trouble_->heightForWidth(wide));
    }

    const QRect box = card();
    const auto title = [&](kit::Label* label, int from, int to) {
        label->setGeometry(box.left() + line + from, box.top(), to - from, headHeight);
    };
    title(timeTitle_, ActivityList::padding, ActivityList::subjectLeft);
    title(subjectTitle_, ActivityList::subjectLeft, ActivityList::textLeft);
    title(textTitle_, ActivityList::textLeft, box.width() - ActivityList::padding);
    const QRect rows = box.adjusted(line, headHeight + line, -line, -footHeight - line);
    list_->setGeometry(rows);
    const int empty = empty_->isVisibleTo(this)
                          ? empty_->heightForWidth(rows.width() - 2 * ActivityList::padding)
                          : 0;
    const QSize button = showAll_->sizeHint();
    const int whole = empty + (showAll_->isVisibleTo(this) ? emptyGap + button.height() : 0);
    const int emptyTop = rows.top() + (rows.height() - whole) / 2;
    empty_->setGeometry(rows.left() + ActivityList::padding, emptyTop,
                        rows.width() - 2 * ActivityList::padding, empty);
    showAll_->setGeometry(rows.center().x() - button.width() / 2, emptyTop + empty + emptyGap,
                          button.width(), button.height());

    const int footTop = box.bottom() + 1 - footHeight;
    const int newest = toNewest_->sizeHint().width();
    const int wordsLeft =
        box.left() + ActivityList::padding + (list_->follows() ? followIcon + followGap : 0);
    toNewest_->setGeometry(box.right() + 1 - ActivityList::padding + kit::Button::plainPadding -
                               newest,
                           footTop + (footHeight - controlHeight) / 2, newest, controlHeight);
    follows_->setGeometry(wordsLeft, footTop, toNewest_->x() - gap - wordsLeft, footHeight);
}

void ActivityPage::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect box = card();
    kit::drawCardGround(painter, box);
    const QColor hairline = kit::color(ColorRole::line);
    painter.fillRect(QRect(box.left(), box.top() + headHeight, box.width(), line), hairline);
    painter.fillRect(QRect(box.left(), box.bottom() - footHeight, box.width(), line), hairline);
    if (list_->follows() && list_->isVisibleTo(this)) {
        const QRectF mark(box.left() + line + ActivityList::padding,
                          box.bottom() + 1 - footHeight / 2.0 - followIcon / 2.0, followIcon,
                          followIcon);
        kit::drawIcon(painter, mark, "checkmark", kit::color(ColorRole::ink2));
    }
}

/// From the search into the rows, and back to all of them.
bool ActivityPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Down && list_->isVisible()) {
            list_->setFocus(Qt::TabFocusReason);
            return true;
        }
        if (key == Qt::Key_Escape && !search_->text().isEmpty()) {
            search_->clear();
            return true;
        }
    }
    return WindowPage::eventFilter(watched, event);
}

} // namespace vellmark
