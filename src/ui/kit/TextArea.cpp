#include "ui/kit/TextArea.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/OverlayBar.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QTextDocument>

namespace vellmark::kit {

namespace {
constexpr int padding = 8;
constexpr int verticalPadding = 6;
/// The document's own, which Qt would make 4.
constexpr int documentMargin = 0;
} // namespace

TextArea::TextArea(QWidget* parent)
    : QPlainTextEdit(parent), overlay_(new OverlayBar(this)),
      interaction_(this, FocusShape{radius::control, 0}) {
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    setFont(kit::font(style::text));
    document()->setDocumentMargin(documentMargin);
    setViewportMargins(padding, verticalPadding, padding, verticalPadding);
    viewport()->setAutoFillBackground(false);
    QPalette clear;
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

int TextArea::heightOf(int lines) {
    return QFontMetrics(kit::font(style::text)).lineSpacing() * lines + 2 * verticalPadding;
}

bool TextArea::event(QEvent* event) {
    if (event->type() == QEvent::Paint) {
        // The text is painted by the viewport, which lies inside.
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(color(ColorRole::card));
        painter.setPen(QPen(color(ColorRole::lineStrong), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5),
                                radius::control - 0.5, radius::control - 0.5);
        return true;
    }
    return QPlainTextEdit::event(event);
}

void TextArea::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    overlay_->place();
}

void TextArea::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    interaction_.showFocus();
}

void TextArea::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        event->ignore(); // the window's
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

} // namespace vellmark::kit
