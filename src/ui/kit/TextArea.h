#pragma once

#include "ui/kit/Interaction.h"

#include <QPlainTextEdit>

namespace vellmark::kit {

class OverlayBar;

/// Several lines to type in. Tab leads on to the next control.
class TextArea : public QPlainTextEdit {
public:
    explicit TextArea(QWidget* parent = nullptr);

    /// The height that shows so many lines.
    static int heightOf(int lines);

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    OverlayBar* overlay_;
    Interaction interaction_;
};

} // namespace vellmark::kit
