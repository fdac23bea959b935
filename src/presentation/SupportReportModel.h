#pragma once

#include "platform/MailComposer.h"
#include "presentation/SupportReportContent.h"
#include "report/SupportReportFacts.h"
#include "store/AgentUsageStore.h"
#include "store/MainExecutor.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// Whom the user writes to.
inline constexpr std::string_view supportAddress = "support@vellmark.example";

/// The support report while somebody looks at it: gathers the facts, makes the text of them, looks
/// for words in it, saves it and hands it to the mail program.
///
/// Main thread; whatever takes time is done elsewhere and lands here. Copying, saving and mailing
/// wait for the text of what is chosen at that moment: what was just switched off never leaves.
class SupportReportModel {
public:
    using Gather = std::function<SupportReportInput(const Machine&, const Localization&,
                                                    Instant now, const SupportReportGathering&)>;

    struct Sources {
        AgentUsageStore& store;
        const Machine& machine;
        MainExecutor& executor;
        std::function<const Localization&()> words;
        /// Runs work beside the main thread, each piece at once.
        std::function<void(std::function<void()>)> inBackground;
        /// Something of `content` is different now.
        std::function<void()> changed;
        /// Asks for a place to save to; absent when there is to be none.
        std::function<std::optional<std::filesystem::path>(const std::string& name)> askWhereTo;
        std::function<void(const std::string& text)> copy;
        std::function<void(MailDraft, MailComposer::Done)> composeMail;
        /// Shows a file among its neighbours.
        std::function<void(const std::filesystem::path&)> showFile;
        Gather gather = gatherSupportReport;
        std::function<Instant()> now = [] { return ReferenceClock::now(); };
    };

    explicit SupportReportModel(Sources sources);
    /// As `cancel`.
    ~SupportReportModel();
    SupportReportModel(const SupportReportModel&) = delete;
    SupportReportModel& operator=(const SupportReportModel&) = delete;

    bool includeEmails() const { return includeEmails_; }
    /// Null while there is none.
    const std::shared_ptr<const RedactedText>& text() const { return text_; }
    bool isBuilding() const { return isBuilding_; }
    /// Empty when there is nothing to say.
    const std::string& notice() const { return notice_; }
    std::string scopeNote() const;
    const std::shared_ptr<const SupportReportInput>& input() const { return input_; }
    /// Empty when there is none.
    const std::filesystem::path& mailDirectory() const { return mailDirectory_; }
    SupportReportContent content() const;

    /// Gathers the facts anew and makes a text of them; what is still being gathered is dropped.
    void build();
    void setIncludeEmails(bool include);
    /// Typed: the text follows when the typing pauses.
    void setWhatHappened(const std::string& words);
    void lookFor(const std::string& query);
    /// The next match, or for -1 the one before; behind the last comes the first.
    void goToMatch(int step);

    void copy();
    void save();
    void mail();
    void showFile();

    /// Nobody looks any more: frees the text. What was typed and the mail's folder stay.
    void rest();
    /// The program ends: nothing lands any more, and the mail's folder goes.
    void cancel();

private:
    /// What gathering has led to.
    struct Built;
    /// What a text is made of.
    struct Recipe {
        std::shared_ptr<const SupportReportInput> input;
        std::string whatHappened;
        bool includesEmails = false;
        Localization words;
        bool operator==(const Recipe&) const = default;
    };
    /// Runs a task on the main thread, unless this has gone or has been cancelled by then. Usable
    /// from any thread.
    using Post = std::function<void(std::function<void()>)>;
    Post post() const;

    void dropBuild();
    void landBuild(Built built);
    void tellProgress(const AgentFacts& facts);
    Recipe recipe() const;
    void render();
    void landText(const Recipe& made, std::shared_ptr<const RedactedText> text);
    void settleTyping();
    bool isCurrent() const;
    void whenCurrent(std::function<void()> deed);
    void search();
    void landMatches(const std::shared_ptr<const RedactedText>& text, const std::string& query,
                     std::shared_ptr<const ReportMatches> matches);
    void saveTo(const std::filesystem::path& file, std::shared_ptr<const RedactedText> text);
    void composeMail(const std::filesystem::path& file);
    void landMail(MailOutcome outcome, const std::filesystem::path& file);
    void tell(std::string notice, bool isTrouble, std::filesystem::path file = {});
    std::string fileName() const;

    Sources sources_;
    bool includeEmails_ = false;
    std::string typed_;
    /// What was typed before the last pause.
    std::string whatHappened_;
    bool isBuilding_ = false;
    /// Of the last build; set when nobody waits for it any more.
    std::shared_ptr<std::atomic<bool>> buildIsCancelled_;
    std::vector<ReportProgress> progress_;
    std::shared_ptr<const SupportReportInput> input_;
    std::size_t logLines_ = 0;

    std::shared_ptr<const RedactedText> text_;
    /// What `text_` was made of; absent while there is none.
    std::optional<Recipe> madeOf_;
    bool isRendering_ = false;
    std::optional<MainExecutor::Timer> typingPause_;
    /// What waits for the text of what is chosen now.
    std::vector<std::function<void()>> deeds_;

    std::string query_;
    std::shared_ptr<const ReportMatches> matches_;
    std::size_t currentMatch_ = 0;
    bool isSearching_ = false;

    std::string notice_;
    bool noticeIsTrouble_ = false;
    std::filesystem::path noticeFile_;
    /// A file is being written.
    bool isWriting_ = false;
    std::filesystem::path mailDirectory_;
    /// Null once this was cancelled; what is posted then finds nothing of it.
    std::shared_ptr<int> isAlive_ = std::make_shared<int>();
};

} // namespace vellmark
