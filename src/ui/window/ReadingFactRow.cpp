#include "ui/window/ReadingFactRow.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/Label.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int labelGap = 16;
constexpr int detailGap = 5;
constexpr int copyGap = 4;
constexpr int copyIcon = 13;
/// Long enough to be seen, too short to be in the way of a second time.
constexpr int saysCopiedFor = 1500;
} // namespace

ReadingFactRow::ReadingFactRow(QWidget* parent)
    : QWidget(parent), label_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      value_(new kit::Label(kit::style::text, kit::ColorRole::ink, this)),
      detail_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      copy_(new kit::Button(kit::Button::Kind::plain, this)) {
    copied_.setSingleShot(true);
    copied_.setInterval(saysCopiedFor);
    connect(&copied_, &QTimer::timeout, this, [this] { showWhatCopyDoes(); });
    connect(copy_, &QAbstractButton::clicked, this, [this] { copy(); });
}

void ReadingFactRow::setContent(const ReadingFactContent& content) {
    content_ = content;
    label_->setWords(qString(content.label));
    value_->setTextStyle(content.isPath ? kit::style::mono : kit::style::text);
    detail_->setWords(qString(content.detail));
    copy_->setVisible(!content.copied.empty());
    if (!copied_.isActive()) {
        showWhatCopyDoes();
    }
    arrange();
}

int ReadingFactRow::wantedLabelWidth() const {
    return label_->wantedWidth();
}

void ReadingFactRow::setLabelWidth(int width) {
    labelWidth_ = width;
    arrange();
}

void ReadingFactRow::copy() {
    QGuiApplication::clipboard()->setText(qString(content_.copied));
    copy_->setIconName("checkmark", copyIcon);
    copy_->setAccessibleName(qString(content_.copy.help));
    copy_->setToolTip(qString(content_.copy.help));
    copied_.start();
}

void ReadingFactRow::showWhatCopyDoes() {
    copy_->setIconName(content_.copy.icon, copyIcon);
    copy_->setAccessibleName(qString(content_.copy.title));
    copy_->setToolTip(qString(content_.copy.title));
}

void ReadingFactRow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void ReadingFactRow::arrange() {
    label_->setGeometry(0, 0, labelWidth_, height());
    const int left = labelWidth_ + labelGap;
    int room = std::max(width() - left, 0);
    if (!content_.copied.empty()) {
        room = std::max(room - height() - copyGap, 0);
    }
    QString words = qString(content_.value);
    if (content_.isPath) {
        // Where a path leads stands at its end, where it begins at its start.
        words = QFontMetrics(kit::font(kit::style::mono)).elidedText(words, Qt::ElideMiddle, room);
    }
    value_->setWords(words);
    value_->setAccessibleName(qString(content_.value));
    value_->setToolTip(words != qString(content_.value) ? qString(content_.value) : QString());
    const int value = std::min(value_->wantedWidth(), room);
    value_->setGeometry(left, 0, value, height());
    detail_->setGeometry(left + value + detailGap, 0, std::max(room - value - detailGap, 0),
                         height());
    copy_->setGeometry(left + value + copyGap, 0, height(), height());
}

} // namespace vellmark
