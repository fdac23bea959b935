#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/SettingsPageContent.h"
#include "ui/window/WindowPage.h"

#include <QPointer>

#include <functional>
#include <string>
#include <vector>

namespace vellmark {

namespace kit {
class Button;
class FormCard;
class FormRow;
class FormSection;
class Notice;
class PathField;
class Question;
class ReorderList;
class ScrollArea;
} // namespace kit
class AgentSettingRow;
class SettingRow;

/// The main window's settings: agents and their order, what the program does and shows, the agents'
/// programs, the program's data. Every change is told at once; what is shown is what holds.
class SettingsPage : public WindowPage {
public:
    /// `program` leads to what is left to install or to log in to. Both must outlive the page.
    SettingsPage(const SettingsPageActions& actions, const AgentUIActions& program,
                 QWidget* parent);

    void setContent(const SettingsPageContent& content);
    std::vector<QWidget*> controls() const override;
    void scrollToTop() override;
    void pageShown() override;
    void pageHidden() override;

    /// Asks for a file, at first beside the one at `current`; calls back with its path, or never.
    using Browse = std::function<void(QWidget* over, const QString& title, const QString& current,
                                      std::function<void(const QString& path)> chosen)>;
    /// The system's own dialog; a test puts another in its place.
    void setBrowse(Browse browse) { browse_ = std::move(browse); }
    /// The question that waits for an answer; null when none does.
    kit::Question* question() const;

protected:
    void arrange() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Section {
        kit::FormSection* view;
        std::vector<SettingRow*> rows;
    };
    struct Program {
        AgentProviderID id;
        kit::FormRow* row = nullptr;
        kit::PathField* field = nullptr;
        std::vector<SettingRow*> ways;
    };

    void updateAgents(const SettingsPageContent& content);
    void updatePrograms(const SettingsPageContent& content);
    void updateSections(std::vector<Section>& sections,
                        const std::vector<SettingsSectionContent>& contents);
    /// The rows of `contents` in place of those there were.
    const std::vector<SettingRow*>& updateRows(std::vector<SettingRow*>& rows,
                                               const std::vector<SettingRowContent>& contents);
    void moveAgent(int from, int to);
    void press(const std::string& name);
    void ask(const QuestionContent& question, const std::string& name);
    void browseFor(const AgentProviderID& id);
    std::vector<kit::FormSection*> sections() const;

    const SettingsPageActions& actions_;
    const AgentUIActions& program_;
    Browse browse_;
    SettingsPageContent content_;
    kit::Button* openSetupButton_;
    kit::Notice* trouble_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    kit::ReorderList* agentList_;
    kit::FormSection* agentSection_;
    std::vector<AgentSettingRow*> agents_;
    std::vector<Section> first_;
    kit::FormSection* programSection_;
    std::vector<Program> programs_;
    std::vector<Section> last_;
    QPointer<kit::Question> question_;
};

} // namespace vellmark
