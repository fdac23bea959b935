#include "ui/AboutWindow.h"

#include "ui/Conversions.h"
#include "ui/GlyphPainter.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace vellmark {
namespace {

constexpr QSize windowSize(360, 300);
constexpr int margin = 28;
constexpr int glyphTop = 32;
constexpr double glyphSide = 72;

kit::Label* addLabel(QVBoxLayout& column, const kit::TextStyle& style, kit::ColorRole color) {
    auto* label = new kit::Label(style, color);
    label->setAlignment(Qt::AlignHCenter);
    label->setMostLines(kit::anyNumberOfLines);
    column.addWidget(label);
    return label;
}

} // namespace

AboutWindow::AboutWindow(const Localization& words, QWidget* parent) : QWidget(parent) {
    setFixedSize(windowSize);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, glyphTop + static_cast<int>(glyphSide) + 16, margin, margin);
    column->setSpacing(4);
    name_ = addLabel(*column, kit::style::title, kit::ColorRole::ink);
    version_ = addLabel(*column, kit::style::text, kit::ColorRole::ink2);
    column->addSpacing(8);
    description_ = addLabel(*column, kit::style::text, kit::ColorRole::ink);
    privacy_ = addLabel(*column, kit::style::small, kit::ColorRole::ink2);
    column->addStretch();
    setWords(words);
}

void AboutWindow::setWords(const Localization& words) {
    name_->setWords(qString(words.text("app.name")));
    version_->setWords(qString(words.format("about.version", {std::string(VELLMARK_VERSION)})));
    description_->setWords(qString(words.text("about.description")));
    privacy_->setWords(qString(words.text("about.privacy")));
}

void AboutWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::window));
    paintGlyph(painter, {(width() - glyphSide) / 2, glyphTop}, glyphSide, emblem,
               kit::color(kit::ColorRole::ink));
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace vellmark
