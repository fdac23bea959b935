#pragma once

#include "presentation/AboutPageActions.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// The small window that says what the program is and which version of it runs.
class AboutWindow final : public QWidget {
public:
    explicit AboutWindow(AboutPageActions actions, QWidget* parent = nullptr);

    void setContent(const AboutPageContent& content);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    AboutPageActions actions_;
    kit::Label* name_;
    kit::Label* version_;
    kit::Label* description_;
    kit::Label* privacy_;
    /// What opens in the program itself.
    kit::Button* terms_;
    kit::Button* privacyNotice_;
};

} // namespace vellmark
