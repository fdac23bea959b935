#include "ui/window/WindowPage.h"

#include "ui/kit/Button.h"
#include "ui/window/PageHead.h"

#include <algorithm>

namespace vellmark {

WindowPage::WindowPage(std::function<void()> refresh, QWidget* parent)
    : QWidget(parent), head_(new PageHead(this)) {
    connect(head_->refreshButton(), &QAbstractButton::clicked, this,
            [refresh = std::move(refresh)] { refresh(); });
}

QString WindowPage::title() const {
    return head_->title();
}

QRect WindowPage::body() const {
    return {0, PageHead::headHeight, width(), std::max(height() - PageHead::headHeight, 0)};
}

void WindowPage::resizeEvent(QResizeEvent* /*event*/) {
    head_->setGeometry(0, 0, width(), PageHead::headHeight);
    arrange();
}

} // namespace vellmark
