#pragma once

#include "ui/window/WindowPage.h"

namespace vellmark {

/// A page that has nothing but its head.
class HeadOnlyPage : public WindowPage {
public:
    explicit HeadOnlyPage(QWidget* parent);
    void setContent(const PageHeadContent& content);
    std::vector<QWidget*> controls() const override { return {}; }

protected:
    void arrange() override {}
};

} // namespace vellmark
