#pragma once

#include "app/WindowController.h"
#include "presentation/LanguageManager.h"
#include "presentation/SupportReportModel.h"
#include "presentation/WorkThreads.h"

#include <QPointer>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vellmark {

class SupportReportView;

/// The window of the support report with its model: the facts are gathered when it opens, and the
/// text goes when it closes. Main thread.
class SupportReportWindowController {
public:
    struct Sources {
        AgentUsageStore& store;
        const Machine& machine;
        MainExecutor& executor;
        Preferences& preferences;
        LanguageManager& language;
        WindowPresenceController& presence;
        /// Gives a fresh window the menu that all windows have.
        std::function<void(QWidget&)> attachMenu;
    };
    explicit SupportReportWindowController(Sources sources);
    ~SupportReportWindowController();

    void show();
    /// Another language: title, texts and report follow.
    void retell();
    /// The program ends.
    void cancel() { model_.cancel(); }
    SupportReportModel& model() { return model_; }

private:
    SupportReportModel::Sources modelSources();
    std::unique_ptr<QWidget> makeView();
    void visibilityChanged();
    void update();
    std::optional<std::filesystem::path> askWhereTo(const std::string& name) const;

    Sources sources_;
    /// Ends, and waits for what is under way, before anything that is worked with.
    std::unique_ptr<MailComposer> composer_;
    SupportReportModel model_;
    WindowController window_;
    /// Inside `window_`, and there while it is.
    QPointer<SupportReportView> view_;
    WorkThreads threads_;
};

} // namespace vellmark
