#include "presentation/SupportReportModel.h"
#include "report/MailDirectory.h"
#include "support/FileSizeLimit.h"
#include "support/HandTurnedExecutor.h"
#include "support/Matchers.h"
#include "support/TemporaryDirectory.h"

#include <deque>
#include <fstream>
#include <sys/stat.h>

namespace vellmark::tests {
namespace {

std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> result;
    for (const auto& entry : fs::directory_iterator(directory)) {
        result.push_back(entry.path());
    }
    return result;
}

/// A model whose work beside the main thread is turned by hand, too.
class SupportReport : public testing::Test {
protected:
    SupportReport() {
        facts_.version = "1.0.0";
        facts_.osVersion = "macOS 26.1";
        facts_.agents = {
            {"Codex", true, "/Users/berta/bin/codex", "1.2", true, {}},
            {"Claude", true, "/Users/berta/bin/claude", std::nullopt, std::nullopt, {}}};
        facts_.logText = "read as anna@example.org\ntoken: abcdefghij0123456789";
    }

    std::unique_ptr<SupportReportModel> make() {
        return std::make_unique<SupportReportModel>(SupportReportModel::Sources{
            .store = store_,
            .machine = machine_,
            .executor = executor_,
            .words = [this]() -> const Localization& { return words_; },
            .inBackground = [this](auto work) { work_.push_back(std::move(work)); },
            .changed = [this] { ++changes_; },
            .askWhereTo = [this](const std::string& name) -> std::optional<fs::path> {
                proposed_ = name;
                return whereTo_;
            },
            .copy = [this](const std::string& text) { copied_ = text; },
            .composeMail =
                [this](MailDraft draft, MailComposer::Done done) {
                    drafts_.push_back(std::move(draft));
                    composed_ = std::move(done);
                },
            .showFile = [this](const fs::path& file) { shown_ = file; },
            .gather =
                [this](const Machine&, const Localization&, Instant,
                       const SupportReportGathering& gathering) {
                    gathering.answered({AgentProviderID::codex(), "/bin/codex", "1.2", true});
                    cancelledAtEnd_ = gathering.isCancelled();
                    return facts_;
                },
            .now = [this] { return executor_.now(); }});
    }

    /// Does one piece of what waits beside the main thread, and lets it land.
    void work(std::size_t index = 0) {
        ASSERT_LT(index, work_.size());
        const auto piece = work_[index];
        work_.erase(work_.begin() + static_cast<std::ptrdiff_t>(index));
        piece();
        executor_.turn();
    }
    void workAll() {
        while (!work_.empty()) {
            work();
        }
    }
    void build() {
        model_->build();
        workAll();
    }
    std::string text() const { return model_->text() ? model_->text()->text : "none"; }

    TemporaryDirectory directory_;
    Machine machine_ = Machine::sandbox(directory_.path());
    HandTurnedExecutor executor_;
    std::unique_ptr<Preferences> preferences_ = makePreferences(machine_);
    Localization words_{"en", "en_US", "Europe/Berlin"};
    AgentUsageStore store_{{.machine = machine_,
                            .registrations = {},
                            .words = [this] { return words_; },
                            .agents = {},
                            .way = {}},
                           executor_,
                           *preferences_};
    SupportReportInput facts_;
    std::deque<std::function<void()>> work_;
    int changes_ = 0;
    std::string proposed_;
    std::optional<fs::path> whereTo_;
    std::string copied_;
    std::vector<MailDraft> drafts_;
    MailComposer::Done composed_;
    fs::path shown_;
    bool cancelledAtEnd_ = false;
    std::unique_ptr<SupportReportModel> model_ = make();
};

TEST_F(SupportReport, TellsOfEachAgentAndThenWhatItContains) {
    model_->build();
    EXPECT_TRUE(model_->isBuilding());
    EXPECT_THAT(model_->content().progress, SizeIs(4));
    EXPECT_FALSE(model_->content().canSend);
    const auto gathering = work_.front();
    work_.pop_front();
    gathering();
    executor_.turn();
    EXPECT_FALSE(model_->isBuilding()) << "the facts are there, the text is not";
    EXPECT_EQ(model_->content().progress[0].mark, SupportReportContent::ProgressRow::Mark::done);
    workAll();
    const SupportReportContent content = model_->content();
    EXPECT_THAT(content.progress, IsEmpty());
    EXPECT_EQ(content.scopeNote,
              "Contains: version, system, 2 agents, activity of the last 30 days (2 lines) · Could "
              "not be had: version of Claude, login of Claude");
    EXPECT_EQ(content.removedTitle, "4 places removed:");
    ASSERT_THAT(content.removed, SizeIs(3));
    EXPECT_EQ(content.removed[0].words, "2 paths");
    EXPECT_EQ(content.removed[1].words, "1 address");
    EXPECT_EQ(content.removed[2].words, "1 key");
}

TEST_F(SupportReport, BuildThatWasSupersededNeverOverwritesTheNewer) {
    facts_.osVersion = "old";
    model_->build();
    model_->build();
    ASSERT_THAT(work_, SizeIs(2));
    facts_.osVersion = "new";
    work(1);
    while (work_.size() > 1) {
        work(1);
    }
    EXPECT_THAT(text(), HasSubstr("System: new"));
    facts_.osVersion = "old";
    workAll();
    EXPECT_TRUE(cancelledAtEnd_) << "and it is told so";
    EXPECT_THAT(text(), HasSubstr("System: new"));
    EXPECT_FALSE(model_->isBuilding());
}

TEST_F(SupportReport, AddressesComeAndGoWithoutGatheringAgain) {
    build();
    EXPECT_THAT(text(), AllOf(Not(HasSubstr("@example")), HasSubstr("have been removed")));
    facts_ = {};
    model_->setIncludeEmails(true);
    workAll();
    EXPECT_THAT(text(), AllOf(HasSubstr("anna@example.org"), HasSubstr("were left in")));

    // What was just switched off does not leave, however quick the click.
    model_->setIncludeEmails(false);
    model_->copy();
    EXPECT_EQ(copied_, "");
    workAll();
    EXPECT_THAT(copied_, AllOf(HasSubstr("read as …@…"), Not(HasSubstr("@example"))));
    EXPECT_EQ(model_->notice(), "Copied to the clipboard");

    // A text under way when another is asked for is not shown.
    model_->setIncludeEmails(true);
    model_->setIncludeEmails(false);
    work();
    EXPECT_THAT(text(), Not(HasSubstr("@example")));
    workAll();
    EXPECT_THAT(text(), Not(HasSubstr("@example")));
}

TEST_F(SupportReport, WhatWasTypedIsRedactedAndWaitsForAPauseOrADeed) {
    build();
    EXPECT_THAT(text(), Not(HasSubstr("What happened?")));
    model_->setWhatHappened("It crashed in /Users/berta/x");
    EXPECT_THAT(work_, IsEmpty());
    executor_.advance(Seconds(1));
    workAll();
    EXPECT_THAT(text(), HasSubstr("\n\nWhat happened?\nIt crashed in ~/x\n\nAgents\n"));
    model_->setWhatHappened("It hung");
    model_->copy();
    workAll();
    EXPECT_THAT(copied_, HasSubstr("It hung"));
    EXPECT_EQ(executor_.timerCount(), 0U);

    model_->rest();
    EXPECT_EQ(model_->text(), nullptr);
    build();
    EXPECT_THAT(text(), HasSubstr("It hung")) << "a closed window loses no words";
}

TEST_F(SupportReport, FindsWordsInTheTextOfNow) {
    build();
    model_->lookFor("CLAUDE");
    model_->lookFor("anna@");
    workAll();
    EXPECT_EQ(model_->content().searchStatus, "Not found");
    model_->setIncludeEmails(true);
    workAll();
    EXPECT_EQ(model_->content().searchStatus, "1 of 1");
    model_->lookFor(".");
    workAll();
    const auto matches = model_->content().matches;
    ASSERT_GT(matches->places.size(), 2U);
    for (const TextRange& place : matches->places) {
        EXPECT_EQ(text().substr(place.begin, place.end - place.begin), ".");
    }
    model_->goToMatch(-1);
    EXPECT_EQ(model_->content().currentMatch, matches->places.size() - 1);
    model_->goToMatch(1);
    EXPECT_EQ(model_->content().currentMatch, 0U);
    EXPECT_TRUE(findInReport(std::string(20'000, 'x'), "X").isCutOff);
}

TEST_F(SupportReport, SavesWholeOrNotAtAll) {
    build();
    model_->save();
    EXPECT_EQ(proposed_.substr(0, 25), "Vellmark-Support-Bericht-");
    EXPECT_EQ(model_->notice(), "") << "nowhere was chosen";
    whereTo_ = directory_ / "report.txt";
    model_->save();
    workAll();
    EXPECT_EQ(contentOf(*whereTo_), text());
    EXPECT_EQ(model_->notice(), "Saved: report.txt");
    model_->showFile();
    EXPECT_EQ(shown_, *whereTo_);
}

// The largest file that may be written stands in for a disk that is full in the middle of it.
TEST_F(SupportReport, SaveAndMailOnAFullDiskSaySoAndLeaveNothing) {
    facts_.logText = std::string(100'000, 'x');
    build();
    const fs::path folder = directory_ / "disk";
    fs::create_directory(folder);
    whereTo_ = folder / "report.txt";
    std::ofstream(*whereTo_) << "former";
    std::string saveNotice;
    bool isTrouble = false;
    {
        const FileSizeLimit limit(50'000);
        model_->save();
        workAll();
        saveNotice = model_->notice();
        isTrouble = model_->content().noticeIsTrouble;
        model_->mail();
        workAll();
    }
    EXPECT_THAT(saveNotice, StartsWith("Not saved: "));
    EXPECT_TRUE(isTrouble);
    EXPECT_EQ(contentOf(*whereTo_), "former");
    EXPECT_THAT(entriesOf(folder), SizeIs(1));
    EXPECT_THAT(model_->notice(), HasSubstr("attachment could not be written"));
    EXPECT_THAT(drafts_, IsEmpty()) << "no composer without the file";
    EXPECT_THAT(entriesOf(machine_.temporary), IsEmpty());
    EXPECT_EQ(model_->mailDirectory(), fs::path());
}

TEST_F(SupportReport, MailDirectoryLivesUntilTheNextMailTheEndOrTheNextStart) {
    build();
    model_->mail();
    workAll();
    ASSERT_THAT(drafts_, SizeIs(1));
    const fs::path first = model_->mailDirectory();
    EXPECT_THAT(first.filename().string(), StartsWith("vellmark-support-"));
    EXPECT_EQ(drafts_[0].attachment.parent_path(), first);
    EXPECT_EQ(contentOf(drafts_[0].attachment), text());
    EXPECT_EQ(drafts_[0].recipient, supportAddress);
    EXPECT_THAT(drafts_[0].subject, HasSubstr(VELLMARK_VERSION));
    struct stat status {};
    ASSERT_EQ(::stat(first.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    const auto composedFirst = composed_;

    model_->mail();
    workAll();
    EXPECT_FALSE(fs::exists(first));
    composedFirst(MailOutcome::opened);
    executor_.turn();
    EXPECT_EQ(model_->notice(), "") << "of a file that is gone";
    composed_(MailOutcome::opened);
    executor_.turn();
    EXPECT_THAT(model_->notice(), HasSubstr("E-mail opened"));
    EXPECT_EQ(model_->content().showFolderTitle, "Show in folder");
    model_->mail();
    workAll();
    composed_(MailOutcome::unavailable);
    executor_.turn();
    EXPECT_THAT(model_->notice(), HasSubstr("No e-mail program was found"));

    model_->rest();
    EXPECT_THAT(entriesOf(machine_.temporary), SizeIs(1)) << "still being written in";
    model_->cancel();
    EXPECT_THAT(entriesOf(machine_.temporary), IsEmpty());

    // A program that was killed left one; what only looks alike stays.
    std::error_code error;
    MailDirectory::make(machine_.temporary, "a.txt", "text", error);
    const fs::path link = machine_.temporary / "vellmark-support-link";
    fs::create_directory_symlink(directory_.path(), link);
    fs::create_directory(machine_.temporary / "others");
    MailDirectory::removeLeftBehind(machine_.temporary);
    EXPECT_THAT(entriesOf(machine_.temporary),
                UnorderedElementsAre(link, machine_.temporary / "others"));
}

TEST_F(SupportReport, NothingLandsOnceItWasCancelled) {
    build();
    model_->build();
    model_->setWhatHappened("more");
    model_->mail();
    const int before = changes_;
    const std::string shown = text();
    model_->cancel();
    model_->cancel();
    workAll();
    executor_.advance(Seconds(5));
    workAll();
    EXPECT_EQ(changes_, before);
    EXPECT_EQ(text(), shown);
    EXPECT_TRUE(cancelledAtEnd_);

    // An attachment that was under way goes, too, as what waits for a model that has gone.
    model_ = make();
    build();
    model_->mail();
    const auto writing = work_.front();
    work_.clear();
    model_.reset();
    writing();
    executor_.turn();
    EXPECT_THAT(drafts_, IsEmpty());
    EXPECT_THAT(entriesOf(machine_.temporary), IsEmpty());
}

} // namespace
} // namespace vellmark::tests
