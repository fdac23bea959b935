#include "ui/window/HelpEntryView.h"

#include "ui/Conversions.h"
#include "ui/GlyphPainter.h"
#include "ui/kit/Bar.h"
#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <variant>

namespace vellmark {

namespace {

constexpr int padding = 16;
constexpr int verticalPadding = 12;
constexpr int keyRowPadding = 10;
constexpr int mostTextWidth = 620;
constexpr int textGap = 3;
constexpr int extrasGap = 8;

constexpr int dotSide = 8;
constexpr int iconSide = 14;
constexpr int glyphSide = 18;
constexpr int barWidth = 96;
constexpr int barHeight = 6;
constexpr int markGap = 14;

constexpr int commandHeight = 32;
constexpr int commandPadding = 10;
constexpr int copySide = 24;
/// How long a copied command is ticked off.
constexpr int copiedMilliseconds = 1500;

constexpr int keyHeight = 20;
constexpr int keyPadding = 7;
constexpr int keyGap = 6;

const kit::TextStyle& titleStyle(const HelpEntry& entry) {
    return entry.keys.empty() ? kit::style::strong : kit::style::body;
}

int sideOf(const HelpMark& mark) {
    if (std::holds_alternative<StatusColorRole>(mark)) {
        return dotSide;
    }
    if (std::holds_alternative<UsageBarContent>(mark)) {
        return barWidth;
    }
    if (std::holds_alternative<MenuBarGlyph>(mark)) {
        return glyphSide;
    }
    return std::holds_alternative<HelpIcon>(mark) ? iconSide : 0;
}

double keyWidth(const std::string& key) {
    return std::ceil(kit::textWidth(qString(key), kit::style::smallMedium)) + 2 * keyPadding;
}

void paintBar(QPainter& painter, QPointF origin, const UsageBarContent& bar) {
    const std::optional<double> mark =
        bar.paceMark ? std::optional(*bar.paceMark * 100) : std::nullopt;
    const kit::BarShape shape = kit::barShape(barWidth, barHeight, bar.filledShare * 100, mark,
                                              painter.device()->devicePixelRatioF());
    painter.save();
    painter.translate(origin);
    painter.setPen(Qt::NoPen);
    painter.fillPath(shape.track, kit::color(kit::ColorRole::track));
    painter.setOpacity(bar.isStale ? kit::staleOpacity : 1);
    painter.fillPath(shape.fill, kit::color(markColor(bar.health)));
    painter.setOpacity(1);
    if (shape.mark) {
        painter.fillRect(*shape.mark, kit::color(kit::ColorRole::ink));
    }
    painter.restore();
}

} // namespace

HelpEntryView::HelpEntryView(const HelpPageActions& actions, QWidget* parent)
    : QWidget(parent), actions_(actions),
      title_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      text_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)) {
    title_->setMostLines(kit::anyNumberOfLines);
    text_->setMostLines(kit::anyNumberOfLines);
}

int HelpEntryView::widthOf(const HelpMark& mark) {
    const int side = sideOf(mark);
    return side > 0 ? side + markGap : 0;
}

void HelpEntryView::setContent(const HelpEntry& entry, int markWidth, const QString& copyTitle) {
    entry_ = entry;
    markWidth_ = markWidth;
    title_->setTextStyle(titleStyle(entry));
    title_->setWords(qString(entry.title));
    QString spoken = title_->text();
    for (const std::string& key : entry.keys) {
        spoken += QStringLiteral(", ") + qString(key);
    }
    title_->setAccessibleName(spoken);
    text_->setWords(qString(entry.text));
    text_->setVisible(!entry.text.empty());
    setCommands(copyTitle);
    setButtons();
    arrange(width(), true);
    update();
}

void HelpEntryView::setCommands(const QString& copyTitle) {
    while (commands_.size() > entry_.commands.size()) {
        delete commands_.back().words;
        delete commands_.back().copy;
        commands_.pop_back();
    }
    while (commands_.size() < entry_.commands.size()) {
        auto* words = new kit::Label(kit::style::mono, kit::ColorRole::ink, this);
        auto* copy = new kit::Button(kit::Button::Kind::plain, this);
        copy->setIconName("doc.on.doc");
        connect(copy, &QAbstractButton::clicked, this, [this, words, copy] {
            actions_.copy(words->text().toStdString());
            copy->setIconName("checkmark");
            QTimer::singleShot(copiedMilliseconds, copy,
                               [copy] { copy->setIconName("doc.on.doc"); });
        });
        words->show();
        copy->show();
        commands_.push_back({words, copy});
    }
    for (std::size_t index = 0; index < commands_.size(); ++index) {
        commands_[index].words->setWords(qString(entry_.commands[index]));
        commands_[index].copy->setToolTip(copyTitle);
        commands_[index].copy->setAccessibleName(copyTitle);
        commands_[index].copy->setAccessibleDescription(commands_[index].words->text());
    }
}

void HelpEntryView::setButtons() {
    while (buttons_.size() > entry_.buttons.size()) {
        delete buttons_.back();
        buttons_.pop_back();
    }
    while (buttons_.size() < entry_.buttons.size()) {
        auto* button = new kit::Button(kit::Button::Kind::normal, this);
        const std::size_t index = buttons_.size();
        connect(button, &QAbstractButton::clicked, this,
                [this, index] { actions_.open(entry_.buttons[index].link); });
        button->show();
        buttons_.push_back(button);
    }
    for (std::size_t index = 0; index < buttons_.size(); ++index) {
        const HelpButton& content = entry_.buttons[index];
        buttons_[index]->setText(qString(content.title));
        buttons_[index]->setIconName(content.link == HelpLink::supportPage ? "arrow.up.right" : "");
    }
}

std::vector<QWidget*> HelpEntryView::controls() const {
    std::vector<QWidget*> result;
    for (const Command& command : commands_) {
        result.push_back(command.copy);
    }
    result.insert(result.end(), buttons_.begin(), buttons_.end());
    return result;
}

int HelpEntryView::heightForWidth(int width) const {
    return arrange(width, false);
}

void HelpEntryView::resizeEvent(QResizeEvent* /*event*/) {
    arrange(width(), true);
}

int HelpEntryView::arrange(int width, bool moves) const {
    const int left = padding + markWidth_;
    int right = padding;
    for (const std::string& key : entry_.keys) {
        right += static_cast<int>(keyWidth(key)) + keyGap;
    }
    const bool isKeyRow = !entry_.keys.empty();
    const int wide = std::max(std::min(width - left - right, isKeyRow ? width : mostTextWidth), 1);
    int top = isKeyRow ? keyRowPadding : verticalPadding;
    const int titleHeight = std::max(title_->heightForWidth(wide), isKeyRow ? keyHeight : 0);
    if (moves) {
        title_->setGeometry(left, top, wide, titleHeight);
    }
    top += titleHeight;
    if (!entry_.text.empty()) {
        top += textGap;
        const int textHeight = text_->heightForWidth(wide);
        if (moves) {
            text_->setGeometry(left, top, wide, textHeight);
        }
        top += textHeight;
    }
    top = arrangeExtras(left, top, wide, moves);
    return top + (isKeyRow ? keyRowPadding : verticalPadding);
}

int HelpEntryView::arrangeExtras(int left, int top, int width, bool moves) const {
    for (const Command& command : commands_) {
        top += extrasGap;
        if (moves) {
            const int words = width - 2 * commandPadding - copySide;
            command.words->setGeometry(left + commandPadding, top, std::max(words, 1),
                                       commandHeight);
            command.copy->setGeometry(left + width - copySide - 4,
                                      top + (commandHeight - copySide) / 2, copySide, copySide);
        }
        top += commandHeight;
    }
    int buttonLeft = left;
    for (kit::Button* button : buttons_) {
        const QSize size = button->sizeHint();
        if (button == buttons_.front()) {
            top += extrasGap + 2;
        } else if (buttonLeft + size.width() > left + width) {
            buttonLeft = left;
            top += size.height() + extrasGap;
        }
        if (moves) {
            button->setGeometry(buttonLeft, top, size.width(), size.height());
        }
        buttonLeft += size.width() + extrasGap;
        if (button == buttons_.back()) {
            top += size.height();
        }
    }
    return top;
}

void HelpEntryView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintMark(painter);
    paintKeys(painter);
    painter.setPen(QPen(kit::color(kit::ColorRole::line), 1));
    painter.setBrush(kit::color(kit::ColorRole::inset));
    for (const Command& command : commands_) {
        const QRectF words = command.words->geometry();
        const QRectF box(words.left() - commandPadding, words.top(),
                         command.copy->geometry().right() + 5 - words.left() + commandPadding,
                         commandHeight);
        painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), kit::radius::control,
                                kit::radius::control);
    }
}

void HelpEntryView::paintMark(QPainter& painter) const {
    // In the middle of the title's first line.
    const double middle = title_->y() + titleStyle(entry_).lineHeight / 2.0;
    const double top = middle - sideOf(entry_.mark) / 2.0;
    painter.setPen(Qt::NoPen);
    if (const auto* dot = std::get_if<StatusColorRole>(&entry_.mark)) {
        painter.setBrush(kit::color(dotColor(*dot)));
        painter.drawEllipse(QRectF(padding, top, dotSide, dotSide));
    } else if (const auto* bar = std::get_if<UsageBarContent>(&entry_.mark)) {
        paintBar(painter, {padding, std::round(middle - barHeight / 2.0)}, *bar);
    } else if (const auto* glyph = std::get_if<MenuBarGlyph>(&entry_.mark)) {
        paintGlyph(painter, {padding, top}, glyphSide, *glyph, kit::color(kit::ColorRole::ink));
    } else if (const auto* icon = std::get_if<HelpIcon>(&entry_.mark)) {
        const bool isGrey = icon->color == StatusColorRole::none;
        kit::drawIcon(painter, QRectF(padding, top, iconSide, iconSide), icon->name,
                      kit::color(isGrey ? kit::ColorRole::ink2 : dotColor(icon->color)));
    }
}

void HelpEntryView::paintKeys(QPainter& painter) const {
    double right = width() - padding;
    for (auto key = entry_.keys.rbegin(); key != entry_.keys.rend(); ++key) {
        const double wide = keyWidth(*key);
        const QRectF box(right - wide, (height() - keyHeight) / 2.0, wide, keyHeight);
        painter.setPen(Qt::NoPen);
        painter.setBrush(kit::color(kit::ColorRole::fill));
        painter.drawRoundedRect(box, kit::radius::check, kit::radius::check);
        painter.setPen(kit::color(kit::ColorRole::ink2));
        kit::drawText(painter, box, Qt::AlignHCenter, qString(*key), kit::style::smallMedium);
        right -= wide + keyGap;
    }
}

} // namespace vellmark
