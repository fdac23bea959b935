#include "ui/window/HeadOnlyPage.h"

#include "ui/window/PageHead.h"

namespace vellmark {

HeadOnlyPage::HeadOnlyPage(QWidget* parent) : WindowPage([] {}, parent) {}

void HeadOnlyPage::setContent(const PageHeadContent& content) {
    head().setContent(content);
}

} // namespace vellmark
