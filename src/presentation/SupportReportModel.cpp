#include "presentation/SupportReportModel.h"

#include "report/MailDirectory.h"
#include "text/SystemErrorText.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// After the last key before a new text is made.
constexpr Seconds typingPause{0.4};
constexpr Seconds typingTolerance{0.1};

/// A folder that nobody has taken over is removed again.
class FreshMailDirectory {
public:
    FreshMailDirectory(const fs::path& temporary, const std::string& name, std::string_view text)
        : path_(MailDirectory::make(temporary, name, text, error_)) {}
    ~FreshMailDirectory() { MailDirectory::remove(path_); }
    FreshMailDirectory(const FreshMailDirectory&) = delete;
    FreshMailDirectory& operator=(const FreshMailDirectory&) = delete;

    std::error_code error() const { return error_; }
    fs::path take() { return std::exchange(path_, {}); }

private:
    std::error_code error_;
    fs::path path_;
};

std::size_t lineCount(const std::string& text) {
    return text.empty() ? 0 : static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
}

} // namespace

struct SupportReportModel::Built {
    std::shared_ptr<const SupportReportInput> input;
    std::size_t logLines = 0;
    /// Why there is no input.
    std::string failure;
};

SupportReportModel::SupportReportModel(Sources sources) : sources_(std::move(sources)) {}

SupportReportModel::~SupportReportModel() {
    cancel();
}

SupportReportModel::Post SupportReportModel::post() const {
    return [&executor = sources_.executor,
            alive = std::weak_ptr<int>(isAlive_)](std::function<void()> task) {
        executor.post([alive, task = std::move(task)] {
            if (alive.lock()) {
                task();
            }
        });
    };
}

SupportReportContent SupportReportModel::content() const {
    return supportReportContent({.includesEmails = includeEmails_,
                                 .whatHappened = typed_,
                                 .isBuilding = isBuilding_ || isRendering_,
                                 .progress = progress_,
                                 .input = input_,
                                 .logLines = logLines_,
                                 .text = text_,
                                 .query = query_,
                                 .matches = matches_,
                                 .currentMatch = currentMatch_,
                                 .notice = notice_,
                                 .noticeIsTrouble = noticeIsTrouble_,
                                 .noticeFile = noticeFile_},
                                sources_.words());
}

std::string SupportReportModel::scopeNote() const {
    return content().scopeNote;
}

std::string SupportReportModel::fileName() const {
    return supportReportFileName(sources_.now(), sources_.words());
}

// Building

void SupportReportModel::build() {
    if (!isAlive_) {
        return;
    }
    dropBuild();
    isBuilding_ = true;
    const auto cancelled = buildIsCancelled_ = std::make_shared<std::atomic<bool>>(false);
    progress_.clear();
    for (const ProviderRegistration& agent : providerRegistry()) {
        progress_.push_back({agent.descriptor.id, {}});
    }
    tell({}, false);
    sources_.inBackground([this, cancelled, here = post(), &store = sources_.store,
                           gather = sources_.gather, machine = sources_.machine,
                           words = sources_.words(), now = sources_.now()] {
        const SupportReportGathering gathering{
            .activity =
                [&store](Instant since, const TimeZone& zone, std::error_code& error) {
                    return store.flushedActivity(since, zone, error);
                },
            .answered =
                [this, &here, cancelled](const AgentFacts& facts) {
                    here([this, cancelled, facts] {
                        if (!*cancelled) {
                            tellProgress(facts);
                        }
                    });
                },
            .isCancelled = [&cancelled] { return cancelled->load(); }};
        Built built;
        try {
            store.flush();
            auto input = gather(machine, words, now, gathering);
            built.logLines = lineCount(input.logText);
            built.input = std::make_shared<const SupportReportInput>(std::move(input));
        } catch (const std::exception& error) {
            built.failure = error.what(); // no memory
        }
        here([this, cancelled, built] {
            if (!*cancelled) {
                landBuild(built);
            }
        });
    });
}

void SupportReportModel::dropBuild() {
    if (buildIsCancelled_) {
        *buildIsCancelled_ = true;
    }
    isBuilding_ = false;
}

void SupportReportModel::tellProgress(const AgentFacts& facts) {
    const auto agent = std::ranges::find(progress_, facts.id, &ReportProgress::id);
    if (agent != progress_.end()) {
        agent->facts = facts;
        sources_.changed();
    }
}

void SupportReportModel::landBuild(Built built) {
    isBuilding_ = false;
    if (!built.input) {
        deeds_.clear();
        tell(sources_.words().format("report.failed", {built.failure}), true);
        return;
    }
    input_ = std::move(built.input);
    logLines_ = built.logLines;
    render();
}

// The text

SupportReportModel::Recipe SupportReportModel::recipe() const {
    return {.input = input_,
            .whatHappened = whatHappened_,
            .includesEmails = includeEmails_,
            .words = sources_.words()};
}

/// One text at a time: what has changed meanwhile is seen when it lands.
void SupportReportModel::render() {
    if (!isAlive_ || !input_) {
        return;
    }
    if (!std::exchange(isRendering_, true)) {
        sources_.inBackground(
            [this, here = post(), made = recipe(), home = sources_.machine.home.string()] {
                std::shared_ptr<const RedactedText> text;
                try {
                    SupportReportInput input = *made.input;
                    input.whatHappened = made.whatHappened;
                    if (auto report = supportReport(input, home, made.includesEmails, made.words)) {
                        text = std::make_shared<const RedactedText>(std::move(*report));
                    }
                } catch (const std::exception&) {
                    text.reset(); // no memory: nothing is shown that was not redacted
                }
                here([this, made, text] { landText(made, text); });
            });
    }
    sources_.changed();
}

void SupportReportModel::landText(const Recipe& made, std::shared_ptr<const RedactedText> text) {
    isRendering_ = false;
    if (made != recipe()) {
        render();
        return;
    }
    text_ = std::move(text);
    madeOf_ = made;
    auto deeds = std::exchange(deeds_, {});
    if (!text_) {
        tell(sources_.words().text("report.notRedacted"), true);
        return;
    }
    search();
    sources_.changed();
    for (const auto& deed : deeds) {
        deed();
    }
}

void SupportReportModel::setIncludeEmails(bool include) {
    if (include != includeEmails_) {
        includeEmails_ = include;
        render();
        sources_.changed();
    }
}

void SupportReportModel::setWhatHappened(const std::string& words) {
    typed_ = words;
    if (typingPause_) {
        sources_.executor.cancel(*typingPause_);
    }
    typingPause_ = sources_.executor.postAfter(typingPause, typingTolerance,
                                               [this, alive = std::weak_ptr<int>(isAlive_)] {
                                                   if (alive.lock()) {
                                                       settleTyping();
                                                   }
                                               });
}

void SupportReportModel::settleTyping() {
    if (typingPause_) {
        sources_.executor.cancel(*typingPause_);
        typingPause_.reset();
    }
    if (typed_ != whatHappened_) {
        whatHappened_ = typed_;
        render();
    }
}

bool SupportReportModel::isCurrent() const {
    return text_ && typed_ == whatHappened_ && madeOf_ == recipe();
}

void SupportReportModel::whenCurrent(std::function<void()> deed) {
    if (isCurrent()) {
        deed();
        return;
    }
    if (isAlive_ && (isBuilding_ || input_)) {
        deeds_ = {std::move(deed)};
        settleTyping();
    }
}

// Looking for words

void SupportReportModel::lookFor(const std::string& query) {
    if (query != query_) {
        query_ = query;
        currentMatch_ = 0;
        search();
    }
}

void SupportReportModel::search() {
    if (query_.empty() || !text_) {
        matches_.reset();
        sources_.changed();
        return;
    }
    if (!std::exchange(isSearching_, true)) {
        sources_.inBackground([this, here = post(), text = text_, query = query_] {
            auto matches = std::make_shared<const ReportMatches>(findInReport(text->text, query));
            here([this, text, query, matches] { landMatches(text, query, matches); });
        });
    }
}

void SupportReportModel::landMatches(const std::shared_ptr<const RedactedText>& text,
                                     const std::string& query,
                                     std::shared_ptr<const ReportMatches> matches) {
    isSearching_ = false;
    if (text != text_ || query != query_) {
        search();
        return;
    }
    matches_ = std::move(matches);
    currentMatch_ = currentMatch_ < matches_->places.size() ? currentMatch_ : 0;
    sources_.changed();
}

void SupportReportModel::goToMatch(int step) {
    const std::size_t count = matches_ ? matches_->places.size() : 0;
    if (count > 0) {
        currentMatch_ = (currentMatch_ + (step > 0 ? 1 : count - 1)) % count;
        sources_.changed();
    }
}

// Handing it on

void SupportReportModel::copy() {
    whenCurrent([this] {
        sources_.copy(text_->text);
        tell(sources_.words().text("report.copied"), false);
    });
}

void SupportReportModel::save() {
    whenCurrent([this] {
        // The dialog runs a loop of its own, in which all of this may end.
        const auto alive = std::weak_ptr<int>(isAlive_);
        const auto text = text_;
        const auto file = sources_.askWhereTo(fileName());
        if (file && alive.lock()) {
            saveTo(*file, text);
        }
    });
}

void SupportReportModel::saveTo(const fs::path& file, std::shared_ptr<const RedactedText> text) {
    if (std::exchange(isWriting_, true)) {
        return;
    }
    tell({}, false);
    sources_.inBackground([this, here = post(), file, text = std::move(text)] {
        const std::error_code error = saveSupportReport(file, text->text);
        here([this, file, error] {
            isWriting_ = false;
            const Localization& words = sources_.words();
            if (error) {
                tell(words.format("report.notSaved", {systemErrorText(error, words)}), true);
            } else {
                tell(words.format("report.saved", {file.filename().string()}), false, file);
            }
        });
    });
}

void SupportReportModel::mail() {
    whenCurrent([this] {
        if (text_->text.empty() || std::exchange(isWriting_, true)) {
            return;
        }
        tell({}, false);
        sources_.inBackground([this, here = post(), former = std::exchange(mailDirectory_, {}),
                               temporary = sources_.machine.temporary, name = fileName(),
                               text = text_] {
            MailDirectory::remove(former);
            const auto made = std::make_shared<FreshMailDirectory>(temporary, name, text->text);
            here([this, made, name] {
                isWriting_ = false;
                mailDirectory_ = made->take();
                const Localization& words = sources_.words();
                if (made->error()) {
                    tell(words.format("report.mailFailed", {systemErrorText(made->error(), words)}),
                         true);
                } else {
                    composeMail(mailDirectory_ / name);
                }
            });
        });
    });
}

void SupportReportModel::composeMail(const fs::path& file) {
    const Localization& words = sources_.words();
    const MailDraft draft{
        .recipient = std::string(supportAddress),
        .subject = words.format("report.mail.subject", {VELLMARK_VERSION, VELLMARK_BUILD}),
        .body = words.text("report.mail.body"),
        .attachment = file};
    sources_.composeMail(draft, [this, here = post(), file](MailOutcome outcome) {
        here([this, file, outcome] { landMail(outcome, file); });
    });
}

void SupportReportModel::landMail(MailOutcome outcome, const fs::path& file) {
    // Another one has taken its place.
    if (file.parent_path() != mailDirectory_) {
        return;
    }
    const Localization& words = sources_.words();
    if (outcome == MailOutcome::opened) {
        tell(words.format("report.mailOpened", {file.filename().string()}), false, file);
    } else if (outcome == MailOutcome::unavailable) {
        tell(words.format("report.noMail", {std::string(supportAddress)}), true, file);
    }
}

void SupportReportModel::showFile() {
    if (!noticeFile_.empty()) {
        sources_.showFile(noticeFile_);
    }
}

void SupportReportModel::tell(std::string notice, bool isTrouble, fs::path file) {
    notice_ = std::move(notice);
    noticeIsTrouble_ = isTrouble;
    noticeFile_ = std::move(file);
    sources_.changed();
}

// The end

void SupportReportModel::rest() {
    dropBuild();
    deeds_.clear();
    progress_.clear();
    input_.reset();
    settleTyping();
    logLines_ = 0;
    text_.reset();
    madeOf_.reset();
    query_.clear();
    currentMatch_ = 0;
    matches_.reset();
    tell({}, false);
}

void SupportReportModel::cancel() {
    if (!isAlive_) {
        return;
    }
    dropBuild();
    deeds_.clear();
    if (typingPause_) {
        sources_.executor.cancel(*typingPause_);
        typingPause_.reset();
    }
    isAlive_.reset();
    MailDirectory::remove(std::exchange(mailDirectory_, {}));
}

} // namespace vellmark
