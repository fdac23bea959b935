#include "ui/LegalWindow.h"

#include "ui/Conversions.h"
#include "ui/DocumentView.h"
#include "ui/kit/Button.h"
#include "ui/kit/Label.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/Segments.h"
#include "ui/kit/Theme.h"
#include "ui/kit/WindowKeys.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

constexpr int margin = 28;
constexpr int headHeight = 60;
constexpr int footHeight = 60;
constexpr int controlHeight = 28;
constexpr int gap = 12;

/// With its parts, so that the keyboard comes to them before the buttons that are made after.
kit::Segments* makeDocuments(QWidget* window) {
    auto* documents = new kit::Segments(kit::Segments::Size::normal, window);
    documents->setChoices({QString(), QString()});
    return documents;
}

} // namespace

LegalWindow::LegalWindow(Actions actions, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)), documents_(makeDocuments(this)),
      version_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget), text_(new DocumentView(column_)),
      notice_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      close_(new kit::Button(kit::Button::Kind::normal, this)),
      accept_(new kit::Button(kit::Button::Kind::primary, this)) {
    setMinimumSize(leastSize);
    resize(firstSize);
    version_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    notice_->setMostLines(2);
    column_->setAutoFillBackground(false);
    scroller_->setWidget(column_);
    documents_->onChoose = [this](int index) {
        actions_.choose(static_cast<LegalDocument>(index));
    };
    connect(close_, &QAbstractButton::clicked, this, &QWidget::close);
    connect(accept_, &QAbstractButton::clicked, this, [this] { actions_.accept(); });
}

void LegalWindow::setContent(const LegalWindowContent& content) {
    if (content == content_) {
        return;
    }
    const bool isOther = content.text.title != content_.text.title;
    content_ = content;
    QStringList choices;
    for (const std::string& choice : content.choices) {
        choices << qString(choice);
    }
    documents_->setChoices(choices);
    documents_->setCurrent(static_cast<int>(content.document));
    version_->setWords(qString(content.version));
    text_->setBlocks(content.text.blocks);
    text_->setAccessibleName(qString(content.text.title));
    notice_->setWords(qString(content.notice));
    close_->setText(qString(content.closeTitle));
    accept_->setText(qString(content.acceptTitle));
    accept_->setVisible(!content.acceptTitle.empty());
    arrange();
    if (isOther) {
        scroller_->verticalScrollBar()->setValue(0);
    }
}

void LegalWindow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void LegalWindow::arrange() {
    const QSize choices = documents_->sizeHint();
    const int controlTop = (headHeight - controlHeight) / 2;
    documents_->setGeometry(margin, controlTop, choices.width(), choices.height());
    const int versionLeft = documents_->geometry().right() + gap;
    version_->setGeometry(versionLeft, controlTop, std::max(width() - margin - versionLeft, 0),
                          controlHeight);
    scroller_->setGeometry(0, headHeight, width(), std::max(height() - headHeight - footHeight, 0));
    const int wide = std::max(width() - 2 * margin, 1);
    text_->setGeometry(margin, margin - 8, wide, text_->heightForWidth(wide));
    column_->setFixedHeight(text_->height() + 2 * (margin - 8));

    const int footTop = height() - footHeight + (footHeight - controlHeight) / 2;
    int right = width() - margin;
    for (kit::Button* button : {accept_, close_}) {
        if (button == accept_ && content_.acceptTitle.empty()) {
            continue;
        }
        const int wanted = button->sizeHint().width();
        button->setGeometry(right - wanted, footTop, wanted, controlHeight);
        right -= wanted + 8;
    }
    const int noticeWide = std::max(right - gap - margin, 0);
    const int noticeHeight = notice_->heightForWidth(noticeWide);
    notice_->setGeometry(margin, footTop + (controlHeight - noticeHeight) / 2, noticeWide,
                         noticeHeight);
}

void LegalWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::window));
    const QColor line = kit::color(kit::ColorRole::line);
    painter.fillRect(QRect(0, headHeight - 1, width(), 1), line);
    painter.fillRect(QRect(0, height() - footHeight, width(), 1), line);
}

void LegalWindow::keyPressEvent(QKeyEvent* event) {
    if (!kit::handleWindowKey(*this, *event) && !scroller_->scrollByKey(event->key())) {
        QWidget::keyPressEvent(event);
    }
}

} // namespace vellmark
