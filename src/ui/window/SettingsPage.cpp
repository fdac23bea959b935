#include "ui/window/SettingsPage.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/Field.h"
#include "ui/kit/Form.h"
#include "ui/kit/Notice.h"
#include "ui/kit/PathField.h"
#include "ui/kit/Question.h"
#include "ui/kit/ReorderList.h"
#include "ui/kit/ScrollArea.h"
#include "ui/window/PageHead.h"
#include "ui/window/SettingRow.h"

#include <QDir>
#include <QFileDialog>
#include <QFocusEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

constexpr int margin = PageHead::margin;
/// The first section begins nearer to the head than a section to the one before it.
constexpr int headOverlap = 14;
/// A label and its control lie too far apart to be seen as one in a wider form.
constexpr int widestForm = 880;
constexpr int troubleBelow = 12;
constexpr int checkIconSide = 12;

QString userPath(const QString& path) {
    return path.startsWith(QStringLiteral("~/")) ? QDir::homePath() + path.mid(1) : path;
}

void browseFiles(QWidget* over, const QString& title, const QString& current,
                 std::function<void(const QString&)> chosen) {
    auto* dialog = new QFileDialog(over->window(), title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    if (!current.isEmpty()) {
        const QFileInfo file(userPath(current));
        dialog->setDirectory(file.absolutePath());
        dialog->selectFile(file.fileName());
    }
    QObject::connect(dialog, &QFileDialog::fileSelected, over, std::move(chosen));
    dialog->open();
}

} // namespace

SettingsPage::SettingsPage(const SettingsPageActions& actions, const AgentUIActions& program,
                           QWidget* parent)
    : WindowPage([] {}, parent), actions_(actions), program_(program), browse_(browseFiles),
      openSetupButton_(new kit::Button(kit::Button::Kind::normal)), trouble_(new kit::Notice(this)),
      scroller_(new kit::ScrollArea(this)), column_(new QWidget), agentList_(new kit::ReorderList),
      agentSection_(new kit::FormSection(agentList_, column_)),
      programSection_(new kit::FormSection(new kit::FormCard, column_)) {
    head().addControl(openSetupButton_);
    scroller_->setWidget(column_);
    column_->setAutoFillBackground(false);
    trouble_->hide();
    agentList_->onMove = [this](int from, int to) { moveAgent(from, to); };
    connect(openSetupButton_, &QAbstractButton::clicked, this, [this] { program_.startSetup(); });
    connect(agentSection_->headingButton(), &QAbstractButton::clicked, this,
            [this] { actions_.checkAgents(); });
}

void SettingsPage::setContent(const SettingsPageContent& content) {
    content_ = content;
    openSetupButton_->setText(qString(content.openSetup.title));
    openSetupButton_->setToolTip(qString(content.openSetup.help));
    head().setContent(content.head);
    trouble_->setLook({.words = qString(content.trouble)});
    trouble_->setVisible(!content.trouble.empty());
    updateAgents(content);
    updateSections(first_, content.firstSections);
    updatePrograms(content);
    updateSections(last_, content.lastSections);
    for (QWidget* control : controls()) {
        control->installEventFilter(this);
    }
    arrange();
}

void SettingsPage::updateAgents(const SettingsPageContent& content) {
    agentSection_->setHeading(qString(content.agentsHeading));
    agentSection_->setHint(qString(content.agentsHint));
    kit::Button* check = agentSection_->headingButton();
    check->setText(qString(content.checkAgain.title));
    check->setIconName(content.checkAgain.icon, checkIconSide);
    check->setTurning(content.isChecking);
    std::vector<AgentSettingRow*> former = std::exchange(agents_, {});
    std::vector<kit::FormRow*> rows;
    for (const AgentSettingContent& agent : content.agents) {
        const auto known = std::ranges::find(former, agent.id, &AgentSettingRow::agent);
        AgentSettingRow* row = nullptr;
        if (known != former.end()) {
            row = *known;
            former.erase(known);
        } else {
            row = new AgentSettingRow(agent.id, actions_, program_, *agentList_);
        }
        row->setContent(agent);
        agents_.push_back(row);
        rows.push_back(row);
    }
    agentList_->setRows(rows);
    for (AgentSettingRow* gone : former) {
        delete gone;
    }
}

void SettingsPage::updatePrograms(const SettingsPageContent& content) {
    programSection_->setHeading(qString(content.programsHeading));
    std::vector<Program> former = std::exchange(programs_, {});
    std::vector<kit::FormRow*> rows;
    for (const AgentProgramContent& agent : content.programs) {
        const auto known = std::ranges::find(former, agent.id, &Program::id);
        Program program;
        if (known != former.end()) {
            program = *known;
            former.erase(known);
        } else {
            program = {agent.id, new kit::FormRow, new kit::PathField, {}};
            program.row->addControl(program.field, kit::PathField::ringRoom);
            program.field->onEnter = [this, id = agent.id](const QString& path) {
                actions_.chooseProgram(id, path.toStdString());
            };
            program.field->onReset = [this, id = agent.id] { actions_.chooseProgram(id, {}); };
            program.field->onBrowse = [this, id = agent.id] { browseFor(id); };
        }
        program.field->setWords(qString(content.choosePath.title),
                                qString(content.resetPath.title));
        program.field->setFieldName(qString(agent.label));
        program.field->setPaths(qString(agent.chosenPath), qString(agent.foundPath));
        program.row->setWords(qString(agent.label), qString(agent.explanation));
        rows.push_back(program.row);
        for (SettingRow* way : updateRows(program.ways, agent.ways)) {
            rows.push_back(way);
        }
        programs_.push_back(program);
    }
    programSection_->card()->setRows(rows);
    for (const Program& gone : former) {
        delete gone.row;
        for (const SettingRow* way : gone.ways) {
            delete way;
        }
    }
}

void SettingsPage::updateSections(std::vector<Section>& sections,
                                  const std::vector<SettingsSectionContent>& contents) {
    while (sections.size() > contents.size()) {
        delete sections.back().view;
        sections.pop_back();
    }
    while (sections.size() < contents.size()) {
        sections.push_back({new kit::FormSection(new kit::FormCard, column_), {}});
        sections.back().view->show();
    }
    for (std::size_t index = 0; index < contents.size(); ++index) {
        sections[index].view->setHeading(qString(contents[index].heading));
        sections[index].view->setHint(qString(contents[index].hint));
        const std::vector<SettingRow*>& rows =
            updateRows(sections[index].rows, contents[index].rows);
        sections[index].view->card()->setRows({rows.begin(), rows.end()});
    }
}

const std::vector<SettingRow*>&
SettingsPage::updateRows(std::vector<SettingRow*>& rows,
                         const std::vector<SettingRowContent>& contents) {
    std::vector<SettingRow*> former = std::exchange(rows, {});
    for (const SettingRowContent& content : contents) {
        const auto known = std::ranges::find(former, content.name, &SettingRow::name);
        if (known != former.end()) {
            rows.push_back(*known);
            former.erase(known);
        } else {
            rows.push_back(new SettingRow(content.name, actions_,
                                          [this](const std::string& name) { press(name); }));
        }
        rows.back()->setContent(content);
    }
    for (const SettingRow* gone : former) {
        delete gone;
    }
    return rows;
}

void SettingsPage::moveAgent(int from, int to) {
    std::vector<AgentProviderID> order;
    for (const AgentSettingContent& agent : content_.agents) {
        order.push_back(agent.id);
    }
    const AgentProviderID moved = order[static_cast<std::size_t>(from)];
    order.erase(order.begin() + from);
    order.insert(order.begin() + to, moved);
    actions_.orderAgents(order);
}

void SettingsPage::press(const std::string& name) {
    if (name == settingsRow::history) {
        ask(content_.deleteQuestion, name);
    } else if (name == settingsRow::reset) {
        ask(content_.resetQuestion, name);
    } else if (name == settingsRow::statusLine) {
        ask(content_.statusLineQuestion, name);
    } else {
        actions_.press(name);
    }
}

void SettingsPage::ask(const QuestionContent& question, const std::string& name) {
    question_ =
        kit::Question::ask(this, questionLook(question), [this, name] { actions_.press(name); });
}

kit::Question* SettingsPage::question() const {
    return question_;
}

void SettingsPage::browseFor(const AgentProviderID& id) {
    const auto agent = std::ranges::find(content_.programs, id, &AgentProgramContent::id);
    if (agent == content_.programs.end()) {
        return;
    }
    const std::string& current = agent->chosenPath.empty() ? agent->foundPath : agent->chosenPath;
    browse_(this, qString(agent->label), qString(current),
            [this, id](const QString& path) { actions_.chooseProgram(id, path.toStdString()); });
}

std::vector<kit::FormSection*> SettingsPage::sections() const {
    std::vector<kit::FormSection*> all{agentSection_};
    for (const Section& section : first_) {
        all.push_back(section.view);
    }
    all.push_back(programSection_);
    for (const Section& section : last_) {
        all.push_back(section.view);
    }
    return all;
}

std::vector<QWidget*> SettingsPage::controls() const {
    std::vector<QWidget*> result = head().controls();
    result.push_back(agentSection_->headingButton());
    const auto add = [&result](const std::vector<QWidget*>& controls) {
        result.insert(result.end(), controls.begin(), controls.end());
    };
    for (const AgentSettingRow* row : agents_) {
        add(row->controls());
    }
    const auto addSections = [&](const std::vector<Section>& sections) {
        for (const Section& section : sections) {
            for (const SettingRow* row : section.rows) {
                add(row->controls());
            }
        }
    };
    addSections(first_);
    for (const Program& program : programs_) {
        add(program.field->controls());
        for (const SettingRow* way : program.ways) {
            add(way->controls());
        }
    }
    addSections(last_);
    return result;
}

void SettingsPage::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

/// A picture has nobody to ask.
void SettingsPage::pageShown() {
    if (actions_.appear) {
        actions_.appear();
    }
}

void SettingsPage::pageHidden() {
    delete question_;
}

/// The keyboard's way leads below what can be seen.
bool SettingsPage::eventFilter(QObject* watched, QEvent* event) {
    auto* control = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::FocusIn && control != nullptr && column_->isAncestorOf(control)) {
        // What a click finds is in view, and must not move under the pointer.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) {
            scroller_->ensureWidgetVisible(control, 0, margin);
        }
    }
    return WindowPage::eventFilter(watched, event);
}

void SettingsPage::arrange() {
    QRect rest = body();
    const int wide =
        std::min(std::max(width() - 2 * margin, 0), widestForm) + 2 * kit::FormSection::sideRoom;
    const int left = margin - kit::FormSection::sideRoom;
    if (!trouble_->isHidden()) {
        const int inner = wide - 2 * kit::FormSection::sideRoom;
        trouble_->setGeometry(margin, rest.top(), inner, trouble_->heightForWidth(inner));
        rest.setTop(rest.top() + trouble_->height() + troubleBelow);
    }
    // The scrolled part reaches up to where the first heading begins.
    rest.setTop(rest.top() - headOverlap);
    scroller_->setGeometry(rest);
    int top = 0;
    for (kit::FormSection* section : sections()) {
        const int height = section->heightForWidth(wide);
        section->setGeometry(left, top, wide, height);
        section->arrange();
        top += height;
    }
    column_->setFixedHeight(top + margin);
}

} // namespace vellmark
