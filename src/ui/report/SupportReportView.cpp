#include "ui/report/SupportReportView.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/Field.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/TextArea.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Toggle.h"
#include "ui/kit/WindowKeys.h"
#include "ui/report/ReportProgressView.h"
#include "ui/report/ReportTextView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QShortcut>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

using kit::ColorRole;
using Kind = kit::Button::Kind;

constexpr int margin = 24;
constexpr int top = 18;
constexpr int bottom = 16;
constexpr int gap = 12;
constexpr int smallGap = 6;
constexpr int controlGap = 8;
constexpr int controlHeight = 28;
constexpr int labelHeight = 16;
constexpr int happenedLines = 3;
constexpr int widestSearch = 330;
constexpr int leastSearch = 200;
constexpr int insideSide = 20;
constexpr int insideGap = 4;
constexpr int linkHeight = 20;
constexpr int leastText = 60;
constexpr int markSide = 14;

template<typename Control>
Control* iconOnly(Control* control, const char* icon, int side) {
    control->setIconName(icon, side);
    return control;
}

} // namespace

SupportReportView::SupportReportView(Actions actions, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)),
      hint_(new kit::Label(kit::style::text, ColorRole::ink2, this)),
      happenedTitle_(new kit::Label(kit::style::row, ColorRole::ink, this)),
      happened_(new kit::TextArea(this)), includeEmails_(new kit::Check(this)),
      search_(new kit::Field(this)),
      searchStatus_(new kit::Label(kit::style::small, ColorRole::ink2, this)),
      previous_(iconOnly(new kit::Button(Kind::plain, this), "chevron.left", 10)),
      next_(iconOnly(new kit::Button(Kind::plain, this), "chevron.right", 10)),
      text_(new ReportTextView(this)), progress_(new ReportProgressView(this)),
      scopeNote_(new kit::Label(kit::style::small, ColorRole::ink2, this)),
      removedTitle_(new kit::Label(kit::style::small, ColorRole::ink2, this)),
      removed_{new kit::Button(Kind::normal, this), new kit::Button(Kind::normal, this),
               new kit::Button(Kind::normal, this)},
      notice_(new kit::Label(kit::style::text, ColorRole::ink, this)),
      showFolder_(iconOnly(new kit::Button(Kind::plain, this), "folder", 14)),
      copy_(new kit::Button(Kind::normal, this)), save_(new kit::Button(Kind::normal, this)),
      mail_(new kit::Button(Kind::primary, this)) {
    setMinimumSize(leastSize);
    resize(firstSize);
    hint_->setMostLines(3);
    scopeNote_->setMostLines(2);
    notice_->setMostLines(2);
    searchStatus_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    search_->setIconName("magnifyingglass");
    search_->installEventFilter(this);
    copy_->setIconName("doc.on.doc");
    save_->setIconName("square.and.arrow.down");
    mail_->setIconName("envelope");
    for (kit::Button* button : removed_) {
        button->setSmallText(true);
        button->installEventFilter(this);
        button->hide();
    }
    for (QWidget* part : {static_cast<QWidget*>(searchStatus_), static_cast<QWidget*>(previous_),
                          static_cast<QWidget*>(next_), static_cast<QWidget*>(progress_),
                          static_cast<QWidget*>(showFolder_)}) {
        part->hide();
    }
    connectControls();
    setShortcuts();
}

void SupportReportView::connectControls() {
    connect(happened_, &QPlainTextEdit::textChanged, this, [this] {
        content_.whatHappened = happened_->toPlainText().toStdString();
        actions_.type(content_.whatHappened);
    });
    connect(includeEmails_, &QAbstractButton::clicked, this,
            [this](bool isChecked) { actions_.setIncludeEmails(isChecked); });
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& words) {
        content_.query = words.toStdString();
        actions_.lookFor(content_.query);
        arrange();
    });
    connect(previous_, &QAbstractButton::clicked, this, [this] { actions_.goToMatch(-1); });
    connect(next_, &QAbstractButton::clicked, this, [this] { actions_.goToMatch(1); });
    for (std::size_t index = 0; index < removed_.size(); ++index) {
        connect(removed_[index], &QAbstractButton::clicked, this,
                [this, kind = removedKinds[index]] { text_->goToNext(kind); });
    }
    text_->onPoint = [this](std::optional<RemovedKind> kind) { mark(kind); };
    connect(showFolder_, &QAbstractButton::clicked, this, [this] { actions_.showFile(); });
    connect(copy_, &QAbstractButton::clicked, this, [this] { actions_.copy(); });
    connect(save_, &QAbstractButton::clicked, this, [this] { actions_.save(); });
    connect(mail_, &QAbstractButton::clicked, this, [this] { actions_.mail(); });
}

void SupportReportView::setShortcuts() {
    const auto add = [this](QKeySequence::StandardKey key, auto deed) {
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this, deed);
    };
    add(QKeySequence::Find, [this] {
        search_->setFocus(Qt::ShortcutFocusReason);
        search_->selectAll();
    });
    add(QKeySequence::FindNext, [this] { actions_.goToMatch(1); });
    add(QKeySequence::FindPrevious, [this] { actions_.goToMatch(-1); });
}

void SupportReportView::setContent(const SupportReportContent& content) {
    if (content == content_) {
        return;
    }
    content_ = content;
    setTexts();
    text_->setText(content.text);
    text_->setMatches(content.matches, content.currentMatch);
    setRemoved();
    const bool isProgressing = !content.progress.empty();
    progress_->setRows(qString(content.progressTitle), content.progress);
    progress_->setVisible(isProgressing);
    text_->setVisible(!isProgressing);
    for (kit::Button* button : {copy_, save_, mail_}) {
        button->setEnabled(content.canSend);
    }
    arrange();
    update();
}

void SupportReportView::setTexts() {
    hint_->setWords(qString(content_.hint));
    happenedTitle_->setWords(qString(content_.happenedTitle));
    happened_->setPlaceholderText(qString(content_.happenedHint));
    happened_->setAccessibleName(qString(content_.happenedTitle));
    happened_->setAccessibleDescription(qString(content_.happenedHint));
    if (happened_->toPlainText() != qString(content_.whatHappened)) {
        happened_->setPlainText(qString(content_.whatHappened));
    }
    includeEmails_->setText(qString(content_.includeEmailsTitle));
    includeEmails_->setChecked(content_.includesEmails);
    search_->setPlaceholderText(qString(content_.searchHint));
    search_->setAccessibleName(qString(content_.searchHint));
    search_->setAccessibleDescription(qString(content_.searchStatus));
    searchStatus_->setWords(qString(content_.searchStatus));
    if (search_->text() != qString(content_.query)) {
        search_->setText(qString(content_.query));
    }
    text_->setAccessibleName(qString(content_.textTitle));
    scopeNote_->setWords(qString(content_.scopeNote));
    notice_->setWords(qString(content_.notice));
    for (const auto& [button, title] :
         {std::pair(previous_, &content_.previousTitle), std::pair(next_, &content_.nextTitle),
          std::pair(showFolder_, &content_.showFolderTitle)}) {
        button->setAccessibleName(qString(*title));
        button->setToolTip(qString(*title));
    }
    showFolder_->setVisible(!content_.showFolderTitle.empty());
    copy_->setText(qString(content_.copyTitle));
    save_->setText(qString(content_.saveTitle));
    mail_->setText(qString(content_.mailTitle));
}

void SupportReportView::setRemoved() {
    removedTitle_->setWords(qString(content_.removedTitle));
    for (std::size_t index = 0; index < removed_.size(); ++index) {
        const auto part = std::ranges::find(content_.removed, removedKinds[index],
                                            &SupportReportContent::Removed::kind);
        const bool isThere = part != content_.removed.end();
        removed_[index]->setVisible(isThere);
        if (isThere) {
            removed_[index]->setText(qString(part->words));
            removed_[index]->setToolTip(qString(content_.removedHelp));
            removed_[index]->setAccessibleDescription(qString(content_.removedHelp));
        }
    }
}

void SupportReportView::setMenuWords(const QString& copy, const QString& selectAll) {
    text_->setMenuWords(copy, selectAll);
}

/// In the text and in the sentence that counts them.
void SupportReportView::mark(std::optional<RemovedKind> kind) {
    text_->setMarked(kind);
    for (std::size_t index = 0; index < removed_.size(); ++index) {
        removed_[index]->setDown(kind == removedKinds[index]);
    }
}

bool SupportReportView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            actions_.goToMatch(key->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
            return true;
        }
        if (key->key() == Qt::Key_Escape && !search_->text().isEmpty()) {
            search_->clear();
            return true;
        }
    }
    const auto part = std::ranges::find(removed_, watched);
    if (part != removed_.end()) {
        const RemovedKind kind = removedKinds[static_cast<std::size_t>(part - removed_.begin())];
        if (event->type() == QEvent::Enter || event->type() == QEvent::FocusIn) {
            text_->setMarked(kind);
        } else if (event->type() == QEvent::Leave || event->type() == QEvent::FocusOut) {
            text_->setMarked(std::nullopt);
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SupportReportView::keyPressEvent(QKeyEvent* event) {
    if (!kit::handleWindowKey(*this, *event)) {
        QWidget::keyPressEvent(event);
    }
}

void SupportReportView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void SupportReportView::arrange() {
    const int wide = std::max(width() - 2 * margin, 1);
    int y = top;
    const auto place = [&](QWidget* part, int height, int below) {
        part->setGeometry(margin, y, wide, height);
        y += height + below;
    };
    place(hint_, hint_->heightForWidth(wide), gap);
    place(happenedTitle_, labelHeight, smallGap);
    place(happened_, kit::TextArea::heightOf(happenedLines), gap);

    const int check = includeEmails_->sizeHint().width();
    includeEmails_->setGeometry(margin, y, std::min(check, wide), controlHeight);
    const int room = std::max(wide - check - gap, leastSearch);
    const int field = std::min(room, widestSearch);
    arrangeSearch({width() - margin - field, y, field, controlHeight});
    y += controlHeight + controlGap;

    const int notes = arrangeNotes(arrangeFoot(height() - bottom) - gap);
    const QRect box(margin, y, wide, std::max(notes - controlGap - y, leastText));
    text_->setGeometry(box);
    progress_->setGeometry(box);
}

/// Inside the field, at its end: how much was found and the ways through it.
void SupportReportView::arrangeSearch(const QRect& field) {
    search_->setGeometry(field);
    const bool hasFound = content_.matches && !content_.matches->places.empty();
    const bool isLooking = !search_->text().isEmpty();
    int right = field.right() + 1 - insideGap;
    for (kit::Button* button : {next_, previous_}) {
        button->setVisible(isLooking && hasFound);
        if (isLooking && hasFound) {
            right -= insideSide;
            button->setGeometry(right, field.top() + (controlHeight - insideSide) / 2, insideSide,
                                insideSide);
        }
    }
    const int words = searchStatus_->wantedWidth();
    searchStatus_->setVisible(isLooking);
    searchStatus_->setGeometry(right - insideGap - words, field.top(), words, controlHeight);
    searchStatus_->raise();
    search_->setRoomAtEnd(isLooking ? field.right() - searchStatus_->x() + insideGap : 0);
}

/// Returns where it begins.
int SupportReportView::arrangeFoot(int end) {
    int y = end - controlHeight;
    int right = width() - margin;
    for (kit::Button* button : {mail_, save_, copy_}) {
        const int wanted = button->sizeHint().width();
        button->setGeometry(right - wanted, y, wanted, controlHeight);
        right -= wanted + controlGap;
    }
    noticeMark_ = QRect();
    const bool hasFile = !content_.showFolderTitle.empty();
    const int around = markSide + controlGap + (hasFile ? controlHeight + insideGap : 0);
    if (!content_.notice.empty()) {
        // Beside the buttons where two lines have room for it, else above them.
        const int room = std::max(right - margin - around, 1);
        if (kit::wrappedText(notice_->text(), notice_->textStyle(), room).size() > 2) {
            right = width() - margin;
            y -= controlHeight + insideGap;
        }
        noticeMark_ = QRect(margin, y + (controlHeight - markSide) / 2, markSide, markSide);
    }
    const int left = margin + markSide + controlGap;
    const int words = std::min(notice_->wantedWidth(), std::max(right - margin - around, 0));
    const int high = notice_->heightForWidth(words);
    notice_->setGeometry(left, y + (controlHeight - high) / 2, words, high);
    showFolder_->setGeometry(left + words + insideGap, y, controlHeight, controlHeight);
    return y;
}

/// What the report holds and what was removed from it. Returns where that begins.
int SupportReportView::arrangeNotes(int end) {
    const int wide = std::max(width() - 2 * margin, 1);
    const int linkTop = end - linkHeight;
    int left = margin;
    const int title = std::min(removedTitle_->wantedWidth(), wide);
    removedTitle_->setGeometry(left, linkTop, title, linkHeight);
    left += title + insideGap;
    for (kit::Button* button : removed_) {
        const int wanted = button->sizeHint().width();
        button->setGeometry(left, linkTop, wanted, linkHeight);
        left += button->isVisibleTo(this) ? wanted + insideGap : 0;
    }
    const int scope = std::max(scopeNote_->heightForWidth(wide), kit::style::small.lineHeight);
    const int scopeTop = linkTop - insideGap - scope;
    scopeNote_->setGeometry(margin, scopeTop, wide, scope);
    return scopeTop;
}

void SupportReportView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(ColorRole::window));
    if (!noticeMark_.isNull()) {
        kit::drawIcon(painter, noticeMark_,
                      content_.noticeIsTrouble ? "exclamationmark.triangle.fill" : "checkmark",
                      kit::color(content_.noticeIsTrouble ? ColorRole::ink2 : ColorRole::ink));
    }
}

} // namespace vellmark
