#include "ui/setup/SetupToolCard.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Button.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Label.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Notice.h"
#include "ui/kit/Theme.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace vellmark {

namespace {

constexpr int padding = 16;
constexpr int topPadding = 14;
constexpr int logoSide = 28;
constexpr int gap = 12;
constexpr int textGap = 8;
/// Between rows of buttons.
constexpr int rowGap = 4;
constexpr int nameHeight = 16;
constexpr int detailHeight = 14;

constexpr int commandPadding = 12;
constexpr int commandVerticalPadding = 8;
constexpr int copySide = 28;
/// How long a copied command is ticked off.
constexpr int copiedMilliseconds = 1500;
constexpr int buttonHeight = 28;
constexpr int guideIconSide = 12;

void setButton(kit::Button& button, const ControlContent& content, const std::string& agent) {
    button.setText(qString(content.title));
    button.setAccessibleDescription(qString(agent));
    button.setVisible(!content.title.empty());
}

} // namespace

SetupToolCard::SetupToolCard(const AgentProviderID& id, const SetupAssistantActions& actions,
                             QWidget* parent)
    : QWidget(parent), id_(id), actions_(actions), logo_(new kit::LogoTile(logoSide, this)),
      name_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      detail_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      status_(new kit::HealthDot(this)),
      command_(new kit::Label(kit::style::mono, kit::ColorRole::ink, this)),
      copy_(new kit::Button(kit::Button::Kind::plain, this)),
      hint_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      outcome_(new kit::Notice(this)), run_(new kit::Button(kit::Button::Kind::normal, this)),
      alternative_(new kit::Button(kit::Button::Kind::plain, this)),
      leaveOut_(new kit::Button(kit::Button::Kind::plain, this)),
      guide_(new kit::Button(kit::Button::Kind::plain, this)) {
    name_->setHeading(true);
    logo_->setLook(providerLogo(id));
    command_->setMostLines(kit::anyNumberOfLines);
    hint_->setMostLines(kit::anyNumberOfLines);
    // What to do now stands at the end.
    outcome_->setMostLines(kit::anyNumberOfLines);
    copy_->setIconName("doc.on.doc");
    guide_->setTrailingIconName("arrow.up.right", guideIconSide);
    for (kit::Button* link : {alternative_, leaveOut_, guide_, copy_}) {
        link->setContentColor(kit::ColorRole::ink2);
    }
    connect(copy_, &QAbstractButton::clicked, this, [this] { tickCopy(); });
    connect(run_, &QAbstractButton::clicked, this, [this] { actions_.run(id_); });
    connect(alternative_, &QAbstractButton::clicked, this,
            [this] { actions_.takeOtherCommand(id_); });
    connect(leaveOut_, &QAbstractButton::clicked, this,
            [this] { actions_.enableAgent(id_, false); });
    connect(guide_, &QAbstractButton::clicked, this, [this] { actions_.openGuide(id_); });
}

void SetupToolCard::setContent(const SetupToolContent& content) {
    if (content == content_) {
        return;
    }
    content_ = content;
    name_->setWords(qString(content.name));
    detail_->setWords(qString(content.detail));
    status_->setLook({.words = qString(content.status), .dot = dotColor(content.dot)});
    command_->setWords(qString(content.command));
    command_->setVisible(!content.command.empty());
    copy_->setVisible(!content.command.empty());
    copy_->setAccessibleName(qString(content.copy.title));
    copy_->setAccessibleDescription(command_->text());
    copy_->setToolTip(qString(content.copy.title));
    hint_->setWords(qString(content.hint));
    hint_->setVisible(!content.hint.empty());
    outcome_->setLook({.words = qString(content.outcome)});
    outcome_->setVisible(!content.outcome.empty());
    run_->setIconName(content.run.icon);
    setButton(*run_, content.run, content.name);
    setButton(*alternative_, content.alternative, content.name);
    setButton(*leaveOut_, content.leaveOut, content.name);
    setButton(*guide_, content.guide, content.name);
    guide_->setToolTip(qString(content.guide.help));
    arrange(width(), true);
    update();
}

void SetupToolCard::tickCopy() {
    actions_.copy(content_.command);
    copy_->setIconName("checkmark");
    copy_->setAccessibleName(qString(content_.copiedTitle));
    QTimer::singleShot(copiedMilliseconds, copy_, [this] {
        copy_->setIconName("doc.on.doc");
        copy_->setAccessibleName(qString(content_.copy.title));
    });
}

std::vector<QWidget*> SetupToolCard::controls() const {
    std::vector<QWidget*> shown;
    for (QWidget* control : {copy_, run_, alternative_, leaveOut_, guide_}) {
        if (!control->isHidden()) {
            shown.push_back(control);
        }
    }
    return shown;
}

QWidget* SetupToolCard::mainControl() const {
    return !run_->isHidden() ? run_ : !copy_->isHidden() ? copy_ : nullptr;
}

int SetupToolCard::heightForWidth(int width) const {
    return arrange(width, false);
}

QRect SetupToolCard::commandBox(int width) const {
    const int wide = std::max(width - 2 * padding, 0);
    const int words = command_->heightForWidth(std::max(wide - commandPadding - copySide - 8, 1));
    return {padding, topPadding + logoSide + gap + 2, wide, words + 2 * commandVerticalPadding};
}

int SetupToolCard::arrange(int width, bool moves) const {
    const int wide = std::max(width - 2 * padding, 0);
    const int textLeft = padding + logoSide + gap;
    const int statusWidth = std::min(status_->sizeHint().width(), wide / 2);
    if (moves) {
        const int textTop = topPadding + (logoSide - nameHeight - detailHeight) / 2;
        const int textWidth = std::max(width - padding - statusWidth - gap - textLeft, 0);
        // A detail without room beside the status has the whole line, and the status the name's.
        const bool isBeside = detail_->wantedWidth() <= textWidth;
        logo_->setGeometry(padding, topPadding, logoSide, logoSide);
        name_->setGeometry(textLeft, textTop, textWidth, nameHeight);
        detail_->setGeometry(textLeft, textTop + nameHeight,
                             isBeside ? textWidth : std::max(width - padding - textLeft, 0),
                             detailHeight);
        status_->setGeometry(width - padding - statusWidth, isBeside ? topPadding : textTop,
                             statusWidth, isBeside ? logoSide : nameHeight);
    }
    int bottom = topPadding + logoSide;
    if (!command_->isHidden()) {
        const QRect box = commandBox(width);
        if (moves) {
            command_->setGeometry(box.adjusted(commandPadding, commandVerticalPadding,
                                               -copySide - 8, -commandVerticalPadding));
            copy_->setGeometry(box.right() + 1 - copySide - 3, box.top() + 3, copySide, copySide);
        }
        bottom = box.bottom() + 1;
    }
    if (!hint_->isHidden()) {
        const int height = hint_->heightForWidth(wide);
        if (moves) {
            hint_->setGeometry(padding, bottom + textGap, wide, height);
        }
        bottom += textGap + height;
    }
    if (!outcome_->isHidden()) {
        const int height = outcome_->heightForWidth(wide);
        if (moves) {
            outcome_->setGeometry(padding, bottom + textGap, wide, height);
        }
        bottom += textGap + height;
    }
    return arrangeButtons(bottom, width, moves) + topPadding;
}

/// What is done here stands at the left, what leads away at the right; below where both have no
/// room side by side.
int SetupToolCard::arrangeButtons(int top, int width, bool moves) const {
    const auto shown = [](std::vector<kit::Button*> buttons) {
        std::erase_if(buttons, [](const kit::Button* button) { return button->isHidden(); });
        return buttons;
    };
    const auto widthOf = [](const std::vector<kit::Button*>& buttons) {
        int wanted = 0;
        for (const kit::Button* button : buttons) {
            wanted += button->sizeHint().width();
        }
        return wanted;
    };
    const std::vector<kit::Button*> here = shown({run_, alternative_});
    const std::vector<kit::Button*> away = shown({leaveOut_, guide_});
    if (here.empty() && away.empty()) {
        return top;
    }
    const auto place = [&](const std::vector<kit::Button*>& buttons, int left, int y) {
        for (kit::Button* button : buttons) {
            const int wanted = button->sizeHint().width();
            if (moves) {
                button->setGeometry(left, y, wanted, buttonHeight);
            }
            left += wanted + (button == run_ ? textGap : 0);
        }
    };
    const int inner = width - 2 * padding;
    const int outer = kit::Button::plainPadding;
    const int hereWidth = widthOf(here) + (here.size() > 1 ? textGap : 0);
    const bool isBeside = hereWidth + textGap + widthOf(away) - outer <= inner;
    top += gap;
    const bool hereIsPlain = !here.empty() && here.front() != run_;
    if (here.size() > 1 && hereWidth - outer > inner) {
        place({run_}, padding, top);
        top += buttonHeight + rowGap;
        place({alternative_}, padding - outer, top);
    } else {
        place(here, padding - (hereIsPlain ? outer : 0), top);
    }
    if (isBeside) {
        place(away, width - padding + outer - widthOf(away), top);
        return top + buttonHeight;
    }
    top += here.empty() ? 0 : buttonHeight + rowGap;
    place(away, padding - outer, top);
    return top + buttonHeight;
}

void SetupToolCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange(width(), true);
}

void SetupToolCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
    if (!command_->isHidden()) {
        painter.setBrush(kit::color(kit::ColorRole::inset));
        painter.setPen(QPen(kit::color(kit::ColorRole::line), 1));
        painter.drawRoundedRect(QRectF(commandBox(width())).adjusted(0.5, 0.5, -0.5, -0.5),
                                kit::radius::control - 0.5, kit::radius::control - 0.5);
    }
}

} // namespace vellmark
