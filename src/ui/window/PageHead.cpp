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
    title_->setHeading(true);
    age_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void PageHead::setContent(const PageHeadContent& content) {
    title_->setWords(qString(content.title));
    subtitle_->setWords(qString(content.subtitle));
    age_->setWords(qString(content.age));
    QStringList widest;
    for (const std::string& title : content.refreshTitles) {
        widest << qString(title);
    }
    refresh_->reserveWidthFor(widest);
    refresh_->setIconName(content.refresh.icon);
    refresh_->setText(qString(content.refresh.title));
    refresh_->setToolTip(qString(content.refresh.help));
    refresh_->setTurning(content.isRefreshing);
    refresh_->setVisible(!content.refresh.title.empty());
    arrange();
}

QString PageHead::title() const {
    return title_->text();
}

void PageHead::addControl(QWidget* control) {
    control->setParent(this);
    control->show();
    added_.push_back(control);
    arrange();
}

void PageHead::setTitleMark(QWidget* mark) {
    mark->setParent(this);
    mark->show();
    titleMark_ = mark;
    arrange();
}

void PageHead::setTitleInset(int inset) {
    titleInset_ = inset;
    arrange();
}

std::vector<QWidget*> PageHead::controls() const {
    std::vector<QWidget*> result(added_.rbegin(), added_.rend());
    result.push_back(refresh_);
    return result;
}

void PageHead::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void PageHead::arrange() {
    int right = width() - margin;
    std::vector<QWidget*> fromRight{refresh_};
    fromRight.insert(fromRight.end(), added_.begin(), added_.end());
    for (QWidget* control : fromRight) {
        if (!control->isVisibleTo(this)) {
            continue;
        }
        const QSize size = control->sizeHint();
        control->setGeometry(right - size.width(), top, size.width(), size.height());
        right = control->x() - gap;
    }
    const int left = margin + titleInset_;
    const int subtitleTop = top + kit::style::title.lineHeight + subtitleGap;
    // The buttons end above it.
    int subtitleRight = width() - margin;

    const QSize mark = titleMark_ != nullptr ? titleMark_->sizeHint() + QSize(gap, 0) : QSize(0, 0);
    const int age = age_->wantedWidth();
    const bool fitsBeside = left + title_->wantedWidth() + mark.width() + gap <= right - age;
    if (fitsBeside) {
        age_->setGeometry(right - age, top, age, refresh_->sizeHint().height());
        right -= age + gap;
    } else {
        // Where there is little room, the title goes before it.
        age_->setGeometry(subtitleRight - age, subtitleTop, age, kit::style::text.lineHeight);
        subtitleRight -= age + gap;
    }
    const int title = std::clamp(right - left - mark.width(), 0, title_->wantedWidth());
    title_->setGeometry(left, top, title, kit::style::title.lineHeight);
    if (titleMark_ != nullptr) {
        titleMark_->setGeometry(left + title + gap,
                                top + (kit::style::title.lineHeight - mark.height()) / 2,
                                mark.width() - gap, mark.height());
    }
    subtitle_->setGeometry(left, subtitleTop, std::max(subtitleRight - left, 0),
                           kit::style::text.lineHeight);
}

} // namespace vellmark
