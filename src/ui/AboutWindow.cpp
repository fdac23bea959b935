#include "ui/AboutWindow.h"

#include "ui/Conversions.h"
#include "ui/GlyphPainter.h"
#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Theme.h"
#include "ui/kit/WindowKeys.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <utility>

namespace vellmark {
namespace {

constexpr QSize windowSize(360, 340);
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

AboutWindow::AboutWindow(AboutPageActions actions, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)),
      terms_(new kit::Button(kit::Button::Kind::plain, this)),
      privacyNotice_(new kit::Button(kit::Button::Kind::plain, this)) {
    setFixedSize(windowSize);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(margin, glyphTop + static_cast<int>(glyphSide) + 16, margin, 20);
    column->setSpacing(4);
    name_ = addLabel(*column, kit::style::title, kit::ColorRole::ink);
    version_ = addLabel(*column, kit::style::text, kit::ColorRole::ink2);
    column->addSpacing(8);
    description_ = addLabel(*column, kit::style::text, kit::ColorRole::ink);
    privacy_ = addLabel(*column, kit::style::small, kit::ColorRole::ink2);
    column->addStretch();
    auto* links = new QHBoxLayout;
    links->setSpacing(4);
    links->addStretch();
    links->addWidget(terms_);
    links->addWidget(privacyNotice_);
    links->addStretch();
    column->addLayout(links);
    connect(terms_, &QAbstractButton::clicked, this, [this] { actions_.open(AboutLink::terms); });
    connect(privacyNotice_, &QAbstractButton::clicked, this,
            [this] { actions_.open(AboutLink::privacy); });
}

void AboutWindow::setContent(const AboutPageContent& content) {
    name_->setWords(qString(content.name));
    version_->setWords(qString(content.version));
    description_->setWords(qString(content.description));
    privacy_->setWords(qString(content.privacy));
    for (const AboutLinkContent& link : content.links) {
        if (link.link == AboutLink::terms) {
            terms_->setText(qString(link.title));
        } else if (link.link == AboutLink::privacy) {
            privacyNotice_->setText(qString(link.title));
        }
    }
}

void AboutWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::window));
    paintGlyph(painter, {(width() - glyphSide) / 2, glyphTop}, glyphSide, emblem,
               kit::color(kit::ColorRole::ink));
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
    if (!kit::handleWindowKey(*this, *event)) {
        QWidget::keyPressEvent(event);
    }
}

} // namespace vellmark
