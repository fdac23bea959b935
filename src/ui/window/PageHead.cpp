#include "ui/window/PageHead.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/Label.h"

#include <algorithm>

namespace vellmark {

namespace {
constexpr int top = 24;
constexpr int gap = 12;
constexpr int subtitleGap = 2;
} // namespace

PageHead::PageHead(QWidget* parent)
    : QWidget(parent), title_(new kit::Label(kit::style::title, kit::ColorRole::ink, this)),
      subtitle_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      age_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      refresh_(new kit::Button(kit::Button::Kind::normal, this)) {
    age_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void PageHead::setTitle(const QString& title, const QString& subtitle) {
    title_->setWords(title);
    subtitle_->setWords(subtitle);
}

void PageHead::setAge(const QString& age) {
    age_->setWords(age);
    arrange();
}

void PageHead::setRefresh(const ControlContent& refresh, const std::vector<std::string>& titles,
                          bool isRefreshing) {
    QStringList widest;
    for (const std::string& title : titles) {
        widest << qString(title);
    }
    refresh_->reserveWidthFor(widest);
    refresh_->setIconName(refresh.icon);
    refresh_->setText(qString(refresh.title));
    refresh_->setToolTip(qString(refresh.help));
    refresh_->setTurning(isRefreshing);
    arrange();
}

void PageHead::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void PageHead::arrange() {
    const QSize button = refresh_->sizeHint();
    refresh_->setGeometry(width() - margin - button.width(), top, button.width(), button.height());
    const int age = age_->wantedWidth();
    age_->setGeometry(refresh_->x() - gap - age, top, age, button.height());
    const int wide = std::max(age_->x() - gap - margin, 0);
    title_->setGeometry(margin, top, wide, kit::style::title.lineHeight);
    subtitle_->setGeometry(margin, top + kit::style::title.lineHeight + subtitleGap, wide,
                           kit::style::text.lineHeight);
}

} // namespace vellmark
