#pragma once

#include "text/Localization.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Label;
}

/// The small window that says what the program is and which version of it runs.
class AboutWindow final : public QWidget {
public:
    explicit AboutWindow(const Localization& words, QWidget* parent = nullptr);

    void setWords(const Localization& words);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    kit::Label* name_;
    kit::Label* version_;
    kit::Label* description_;
    kit::Label* privacy_;
};

} // namespace vellmark
