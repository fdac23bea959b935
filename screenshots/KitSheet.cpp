#include "screenshots/KitSheet.h"

#include "ui/ProviderLogo.h"
#include "ui/kit/Bar.h"
#include "ui/kit/Button.h"
#include "ui/kit/Choice.h"
#include "ui/kit/Field.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Form.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Icon.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/Notice.h"
#include "ui/kit/PathField.h"
#include "ui/kit/ReorderList.h"
#include "ui/kit/Segments.h"
#include "ui/kit/SidebarEntry.h"
#include "ui/kit/Tabs.h"
#include "ui/kit/Theme.h"
#include "ui/kit/Toggle.h"

#include <QCoreApplication>
#include <QHoverEvent>
#include <QPainter>

namespace vellmark {

using kit::ColorRole;

namespace {

constexpr int margin = 32;
constexpr int columns = 8;
constexpr int controlsTop = 470;

struct NamedColor {
    const char* name;
    ColorRole role;
};

constexpr NamedColor namedColors[] = {
    {"window", ColorRole::window},
    {"sidebar", ColorRole::sidebar},
    {"popover", ColorRole::popover},
    {"card", ColorRole::card},
    {"inset", ColorRole::inset},
    {"line", ColorRole::line},
    {"line-strong", ColorRole::lineStrong},
    {"track", ColorRole::track},
    {"track-on-hover", ColorRole::trackOnHover},
    {"ink", ColorRole::ink},
    {"ink-2", ColorRole::ink2},
    {"ink-3", ColorRole::ink3},
    {"attention-text", ColorRole::attentionText},
    {"critical-text", ColorRole::criticalText},
    {"primary", ColorRole::primary},
    {"on-primary", ColorRole::onPrimary},
    {"focus", ColorRole::focus},
    {"fill", ColorRole::fill},
    {"fill-hover", ColorRole::fillHover},
    {"fill-pressed", ColorRole::fillPressed},
    {"hover", ColorRole::hover},
    {"select", ColorRole::select},
    {"attention-wash", ColorRole::attentionWash},
    {"critical-wash", ColorRole::criticalWash},
    {"neutral-wash", ColorRole::neutralWash},
    {"healthy", ColorRole::healthy},
    {"attention", ColorRole::attention},
    {"critical", ColorRole::critical},
    {"refreshing", ColorRole::refreshing},
    {"none", ColorRole::none},
};

enum class Shown { rest, hover, pressed, focus, disabled };
constexpr Shown allShown[] = {Shown::rest, Shown::hover, Shown::pressed, Shown::focus,
                              Shown::disabled};

/// Puts a control into a state as events would.
void show(QAbstractButton& control, Shown state) {
    if (state == Shown::hover || state == Shown::pressed) {
        QHoverEvent enter(QEvent::HoverEnter, QPointF(4, 4), QPointF(4, 4), QPointF(-1, -1));
        QCoreApplication::sendEvent(&control, &enter);
    }
    control.setDown(state == Shown::pressed);
    control.setEnabled(state != Shown::disabled);
    if (state == Shown::focus) {
        QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
        QCoreApplication::sendEvent(&control, &focus);
    }
}

QWidget* place(QWidget* widget, int left, int middle) {
    const QSize wanted = widget->sizeHint();
    widget->setGeometry(left, middle - wanted.height() / 2, wanted.width(), wanted.height());
    return widget;
}

void addButtons(QWidget* parent, int& top) {
    struct Sample {
        kit::Button::Kind kind;
        const char* words;
        const char* icon;
    };
    constexpr Sample samples[] = {{kit::Button::Kind::normal, "Refresh", "arrow.clockwise"},
                                  {kit::Button::Kind::primary, "Continue", ""},
                                  {kit::Button::Kind::plain, "Open", "macwindow"},
                                  {kit::Button::Kind::outlined, "Log in …", ""},
                                  {kit::Button::Kind::plain, "", "arrow.clockwise"}};
    for (const Sample& sample : samples) {
        int left = margin;
        for (const Shown state : allShown) {
            auto* button = new kit::Button(sample.kind, parent);
            button->setText(QString::fromUtf8(sample.words));
            if (*sample.icon != 0) {
                button->setIconName(sample.icon, *sample.words != 0 ? 14 : 15);
            }
            place(button, left, top + 20);
            show(*button, state);
            left += 110;
        }
        top += 40;
    }
}

void addChoices(QWidget* parent, int& top) {
    auto* tabs = new kit::Tabs(parent);
    const auto logo = [](const AgentProviderID& id) { return providerLogo(id); };
    kit::TabLook overview;
    overview.words = QStringLiteral("Overview");
    overview.iconName = "square.grid.2x2";
    kit::TabLook claude;
    claude.words = QStringLiteral("Claude");
    claude.logo = logo(AgentProviderID::claude());
    claude.badge = ColorRole::attention;
    kit::TabLook codex;
    codex.words = QStringLiteral("Codex");
    codex.logo = logo(AgentProviderID::codex());
    tabs->setTabs({overview, claude, codex}, 0);
    place(tabs, margin, top + 18);
    auto* large = new kit::Segments(kit::Segments::Size::normal, parent);
    large->setChoices({QStringLiteral("24 h"), QStringLiteral("7 d"), QStringLiteral("30 d")});
    large->setCurrent(1);
    place(large, margin, top + 58);
    auto* small = new kit::Segments(kit::Segments::Size::small, parent);
    small->setChoices({QStringLiteral("24 h"), QStringLiteral("7 d")});
    small->setCurrent(0);
    place(small, margin + 160, top + 58);
    int left = margin + 260;
    for (const bool isOn : {true, false}) {
        auto* toggle = new kit::Switch(parent);
        toggle->setChecked(isOn);
        place(toggle, left, top + 58);
        auto* check = new kit::Check(parent);
        check->setChecked(isOn);
        place(check, left + 100, top + 58);
        left += 46;
    }
    auto* search = new kit::Field(parent);
    search->setIconName("magnifyingglass");
    search->setPlaceholderText(QStringLiteral("Search"));
    place(search, margin, top + 98);
    auto* field = new kit::Field(parent);
    field->setText(QStringLiteral("Codex"));
    place(field, margin + 200, top + 98);
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    QCoreApplication::sendEvent(field, &focus);
    top += 120;
}

void addHealth(QWidget* parent, int& top) {
    struct Sample {
        const char* words;
        ColorRole dot;
    };
    constexpr Sample samples[] = {{"Healthy", ColorRole::healthy},
                                  {"Running low", ColorRole::attention},
                                  {"Critical", ColorRole::critical},
                                  {"Unavailable", ColorRole::none},
                                  {"Reading …", ColorRole::refreshing}};
    int left = margin;
    for (const Sample& sample : samples) {
        auto* dot = new kit::HealthDot(parent);
        dot->setLook({QString::fromUtf8(sample.words), sample.dot, {}});
        place(dot, left, top + 14);
        left += dot->width() + 16;
    }
    auto* pill = new kit::Pill(parent);
    pill->setLook({QStringLiteral("Running low"), ColorRole::attention, {}});
    place(pill, margin, top + 46);
    auto* plan = new kit::Pill(parent);
    plan->setWords(QStringLiteral("Plus"));
    place(plan, margin + 110, top + 46);
    left = margin + 170;
    for (const int side : {16, 20, 24, 32, 44}) {
        auto* tile = new kit::LogoTile(side, parent);
        tile->setLook(providerLogo(AgentProviderID::claude()));
        place(tile, left, top + 46);
        left += side + 12;
    }
    top += 76;
}

void addBars(QWidget* parent, int& top) {
    struct Sample {
        int height;
        kit::BarLook look;
    };
    const Sample samples[] = {
        {6, {78, 29, ColorRole::healthy, false}},   {6, {29, 26, ColorRole::healthy, false}},
        {8, {16, 26, ColorRole::attention, false}}, {8, {7, 29, ColorRole::critical, false}},
        {8, {1, 60, ColorRole::critical, false}},   {8, {0, 40, ColorRole::critical, false}},
        {8, {64, {}, ColorRole::healthy, false}},   {8, {64, 50, ColorRole::healthy, true}}};
    for (const Sample& sample : samples) {
        auto* bar = new kit::Bar(sample.height, parent);
        bar->setLook(sample.look);
        bar->setGeometry(margin, top, 300, bar->sizeHint().height());
        top += 24;
    }
}

void addNotices(QWidget* parent, int& top) {
    const kit::Notice::Look looks[] = {
        {kit::Notice::Kind::neutral,
         "checkmark",
         {},
         QStringLiteral("Everything lasts until its reset."),
         {}},
        {kit::Notice::Kind::attention,
         "exclamationmark.triangle.fill",
         {},
         QStringLiteral("Claude, Week · Fable runs out 19 h before reset."),
         {}},
        {kit::Notice::Kind::critical,
         "exclamationmark.triangle.fill",
         QStringLiteral("Antigravity"),
         QStringLiteral("runs out in 16 min."),
         {}},
        {kit::Notice::Kind::neutral,
         "exclamationmark.triangle.fill",
         {},
         QStringLiteral("Not logged in to Codex, and a sentence that is so long that it needs a "
                        "second line beside the button."),
         QStringLiteral("Log in …")}};
    for (const kit::Notice::Look& look : looks) {
        auto* notice = new kit::Notice(parent);
        notice->setLook(look);
        notice->setGeometry(margin, top, 560, notice->heightForWidth(560));
        top += notice->height() + 8;
    }
}

void addEntries(QWidget* parent, int top) {
    struct Sample {
        const char* words;
        const char* icon;
        bool isChecked;
    };
    constexpr Sample samples[] = {{"Claude", "", true},
                                  {"History", "chart.xyaxis.line", false},
                                  {"Settings", "gearshape", false}};
    auto* group = new QWidget(parent);
    group->setGeometry(margin + 340, top, 224, 104);
    int y = 4;
    for (const Sample& sample : samples) {
        auto* entry = new kit::SidebarEntry(group);
        kit::SidebarEntryLook look;
        look.words = QString::fromUtf8(sample.words);
        look.iconName = sample.icon;
        if (look.iconName.empty()) {
            look.logo = providerLogo(AgentProviderID::claude());
            look.badge = ColorRole::attention;
            look.detail = QStringLiteral("16% left");
        }
        entry->setLook(look);
        entry->setChecked(sample.isChecked);
        entry->setGeometry(0, y, 224, 32);
        y += 32;
    }
}

} // namespace

KitSheet::KitSheet(QWidget* parent) : QWidget(parent) {
    resize(640, 2180);
    addControls();
    addForm();
}

void KitSheet::addForm() {
    constexpr int formTop = 1830;
    auto* list = new kit::ReorderList;
    std::vector<kit::FormRow*> agents;
    for (const AgentProviderID& id : {AgentProviderID::codex(), AgentProviderID::claude()}) {
        auto* row = new kit::FormRow;
        row->setLeastHeight(kit::FormRow::tallHeight);
        row->setLabelStyle(kit::style::strong);
        list->addHandle(row);
        auto* logo = new kit::LogoTile(24);
        logo->setLook(providerLogo(id));
        row->addLeading(logo);
        row->setWords(QString::fromStdString(id.rawValue), QStringLiteral("~/.local/bin/agent"));
        auto* toggle = new kit::Switch;
        toggle->setChecked(true);
        row->addControl(toggle);
        agents.push_back(row);
    }
    list->setRows(agents);
    auto* order = new kit::FormSection(list, this);
    order->setHeading(QStringLiteral("Rows to put in order, the second one lifted"));
    order->headingButton()->setText(QStringLiteral("Look again"));
    order->headingButton()->setIconName("arrow.clockwise", 12);
    agents.back()->setLifted(true);

    auto* card = new kit::FormCard;
    auto* choices = new kit::FormRow;
    choices->setWords(QStringLiteral("A choice that pops up"),
                      QStringLiteral("Its explanation breaks into as many lines as it needs, for "
                                     "nothing in a form is cut off."));
    auto* choice = new kit::Choice;
    choice->setChoices({QStringLiteral("System (English)"), QStringLiteral("Deutsch")});
    choice->setCurrentIndex(0);
    choices->addControl(choice);
    auto* paths = new kit::FormRow;
    paths->setWords(QStringLiteral("Path"));
    auto* path = new kit::PathField;
    path->setWords(QStringLiteral("Choose …"), QStringLiteral("Look for it again"));
    path->setPaths(QStringLiteral("~/bin/codex"), {});
    paths->addControl(path, kit::PathField::ringRoom);
    card->setRows({choices, paths});
    auto* form = new kit::FormSection(card, this);
    form->setHeading(QStringLiteral("Form"));
    form->setHint(QStringLiteral("A hint under the card."));
    const int wide = width() - 2 * margin;
    order->setGeometry(margin, formTop, wide, order->heightForWidth(wide));
    form->setGeometry(margin, formTop + order->height(), wide, form->heightForWidth(wide));
}

void KitSheet::addControls() {
    int top = controlsTop + 28;
    addButtons(this, top);
    addChoices(this, top);
    addHealth(this, top);
    addEntries(this, top);
    addBars(this, top);
    top += 12;
    addNotices(this, top);
}

void KitSheet::drawHeading(QPainter& painter, int top, const QString& words) const {
    painter.setPen(kit::color(ColorRole::ink));
    kit::drawText(painter, QRectF(margin, top, 500, 28), Qt::AlignLeft, words, kit::style::title);
}

void KitSheet::drawColors(QPainter& painter, int top) const {
    constexpr int colorsInRow = 7;
    int index = 0;
    const auto draw = [&](const std::string& name, const QColor& shown) {
        const QRectF box(margin + index % colorsInRow * 82, top + index / colorsInRow * 72, 74, 36);
        painter.setPen(kit::color(ColorRole::line));
        painter.setBrush(shown);
        painter.drawRoundedRect(box.adjusted(.5, .5, -.5, -.5), 6, 6);
        painter.setPen(kit::color(ColorRole::ink2));
        kit::drawText(painter, QRectF(box.left(), box.bottom() + 4, 80, 12), Qt::AlignLeft,
                      QString::fromStdString(name), kit::style::axis);
        kit::drawText(painter, QRectF(box.left(), box.bottom() + 16, 80, 12), Qt::AlignLeft,
                      shown.name().toUpper(), kit::style::axis);
        ++index;
    };
    for (const NamedColor& named : namedColors) {
        draw(named.name, kit::color(named.role));
    }
    const bool isDark = kit::Theme::current().isDark();
    for (const AgentProviderID& agent :
         {AgentProviderID::codex(), AgentProviderID::claude(), AgentProviderID::antigravity()}) {
        const kit::LogoLook& logo = providerLogo(agent);
        draw(agent.rawValue, isDark ? logo.accentDark : logo.accentLight);
    }
}

int KitSheet::drawType(QPainter& painter, int top) const {
    struct Sample {
        const char* words;
        const kit::TextStyle& style;
    };
    const Sample samples[] = {{"figure 28/32 semibold 0123456789", kit::style::figureLarge},
                              {"figure 24/28 semibold 1111111111", kit::style::figure},
                              {"title 22/28 bold", kit::style::title},
                              {"popover name 19/24 bold", kit::style::popoverName},
                              {"heading 15/20 semibold", kit::style::heading},
                              {"body 13/16 regular", kit::style::body},
                              {"row 12/16 medium 71 % · 88 %", kit::style::row},
                              {"small 11/14 regular", kit::style::small},
                              {"status 10.5/14 medium", kit::style::popoverStatus},
                              {"axis 10/12 regular", kit::style::axis},
                              {"mono 11.5/18: ~/.local/bin/claude", kit::style::mono}};
    painter.setPen(kit::color(ColorRole::ink));
    for (const Sample& sample : samples) {
        kit::drawText(painter, QRectF(margin, top, 600, sample.style.lineHeight), Qt::AlignLeft,
                      QString::fromUtf8(sample.words), sample.style);
        top += sample.style.lineHeight + 4;
    }
    return top;
}

void KitSheet::drawIcons(QPainter& painter, int top) const {
    int index = 0;
    for (const std::string_view name : kit::iconNames()) {
        const QRectF box(margin + index % columns * 73, top + index / columns * 44, 18, 18);
        kit::drawIcon(painter, box, name, kit::color(ColorRole::ink));
        ++index;
    }
}

void KitSheet::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), kit::color(ColorRole::window));
    drawHeading(painter, 28, QStringLiteral("Colours"));
    drawColors(painter, 68);
    drawHeading(painter, controlsTop - 12, QStringLiteral("Controls"));
    drawHeading(painter, 1300, QStringLiteral("Type and icons"));
    drawIcons(painter, drawType(painter, 1340) + 16);
    drawHeading(painter, 1796, QStringLiteral("Forms"));
}

} // namespace vellmark
