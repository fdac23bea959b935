#include "AgentNames.h"
#include "presentation/ActivityListing.h"
#include "store/ActivityTexts.h"
#include "support/Matchers.h"

#include <algorithm>
#include <memory>

namespace vellmark::tests {
namespace {

using Level = ActivityEntry::Level;

/// A log that is written while it is shown.
class ActivityRows : public testing::Test {
protected:
    void add(ActivityEntry entry) {
        entry.time = time;
        entries->push_back(std::move(entry));
    }
    void begin(RefreshTrigger trigger = RefreshTrigger::timer) {
        time += Seconds(300);
        add(ActivityTexts::refreshStarted(trigger, english));
    }
    void read(const AgentProviderID& id) {
        add(ActivityTexts::agentRead(live(id, {window("session", 20, 300, 60)}), Seconds(2),
                                     english));
    }
    void fail(const std::string& reason = "no answer") {
        add(ActivityTexts::agentFailed(claude, UsageProviderError::other(reason), english));
    }
    void end(std::size_t count = 2) {
        add(ActivityTexts::refreshFinished(RefreshTrigger::timer, count, 2, Seconds(4), english));
    }
    void quiet() {
        begin();
        read(codex);
        read(claude);
        end();
    }
    /// A refresh in which one of the two agents fails.
    void failing(const std::string& reason) {
        begin();
        read(codex);
        fail(reason);
        end(1);
    }
    /// What is shown, a row each: folds in brackets, deeper rows behind blanks, errors with "!".
    std::vector<std::string> shown() {
        listing.setEntries(entries, entries->size());
        std::vector<std::string> result;
        for (const ActivityRow& row : listing.rows()) {
            const ActivityRowContent content = listing.content(row, noon);
            std::string text = content.level == Level::error ? "!" + content.text : content.text;
            if (row.kind == ActivityRow::Kind::day) {
                text = "= " + text;
            }
            result.push_back(std::string(static_cast<std::size_t>(content.depth), ' ') +
                             (content.isFold ? "[" + text + "]" : text));
        }
        return result;
    }

    std::shared_ptr<std::vector<ActivityEntry>> entries =
        std::make_shared<std::vector<ActivityEntry>>();
    Instant time = noon;
    ActivityListing listing{english};
    const std::string finished = "[Refresh finished (schedule): 2 of 2 agents read in 4.0 s]";
    const std::string finishedBut = "[Refresh finished (schedule): 1 of 2 agents read in 4.0 s]";
    const std::string today = "= Today, November 20";
};

TEST_F(ActivityRows, FoldQuietRefreshesAndKeepTheLatestApart) {
    EXPECT_TRUE(shown().empty());
    quiet();
    EXPECT_THAT(shown(), ElementsAre(today, finished));
    quiet();
    quiet();
    EXPECT_THAT(shown(), ElementsAre(today, "[2 refreshes, nothing new]", finished));
    EXPECT_EQ(listing.countText(), "12 entries");
    listing.toggle(1);
    EXPECT_THAT(shown(), ElementsAre(today, "[2 refreshes, nothing new]", " " + finished,
                                     " " + finished, finished));
    listing.toggle(3);
    EXPECT_THAT(shown(), ElementsAre(today, "[2 refreshes, nothing new]", " " + finished,
                                     " " + finished, "  Refresh started (schedule)",
                                     "  Session 80% left (2.0 s)", "  Session 80% left (2.0 s)",
                                     "  Refresh finished (schedule): 2 of 2 agents read in 4.0 s",
                                     finished));
    // The next refresh lands while the user reads: what is unfolded stays so.
    quiet();
    EXPECT_EQ(shown().size(), 10U);
    listing.toggle(1);
    EXPECT_THAT(shown(), ElementsAre(today, "[3 refreshes, nothing new]", finished));
}

TEST_F(ActivityRows, ShowWhatHappenedInsideARefreshAndBetweenThem) {
    quiet();
    failing("no answer");
    add(ActivityTexts::woke(Seconds(10), english));
    begin(RefreshTrigger::wake);
    EXPECT_THAT(shown(), ElementsAre(today, finished, finishedBut, " !no answer",
                                     "Woke from sleep, refreshing in 10 s",
                                     "[Refresh started (after sleep)]"))
        << "the last one has not ended";
    listing.toggle(2);
    EXPECT_THAT(shown()[3], " Refresh started (schedule)");
    EXPECT_THAT(shown()[5], " !no answer");
}

TEST_F(ActivityRows, AFailureThatRepeatsIsNewsOnce) {
    for (int reading = 0; reading < 4; ++reading) {
        failing("not logged in");
    }
    // An agent that rests is not read; what was said of it stays known.
    begin();
    read(codex);
    end(1);
    failing("not logged in");
    failing("another reason");
    EXPECT_THAT(shown(),
                ElementsAre(today, finishedBut, " !not logged in", "[5 refreshes, nothing new]",
                            finishedBut, " !another reason"));
    quiet();
    failing("another reason");
    EXPECT_THAT(shown().back(), " !another reason") << "it had worked meanwhile";
    listing.setFilter({.least = Level::error});
    EXPECT_EQ(shown().size(), 8U) << "none is kept from whoever looks for failures";
    EXPECT_EQ(listing.countText(), "7 of 35");
}

TEST_F(ActivityRows, FindSingleEntriesWhereverTheyAreFolded) {
    for (int index = 0; index < 3; ++index) {
        quiet();
    }
    add(ActivityTexts::agentSwitched(codex, false, english));
    const std::string reading = "Session 80% left (2.0 s)";
    listing.setFilter({.words = "  CODEX session "});
    EXPECT_THAT(shown(), ElementsAre(today, reading, reading, reading));
    EXPECT_EQ(listing.countText(), "3 of 13");
    listing.setFilter({.words = "nothing of the kind"});
    EXPECT_TRUE(shown().empty());
    listing.setFilter({.agent = codex});
    EXPECT_THAT(shown(), ElementsAre(today, "[2 refreshes, nothing new]", reading,
                                     "Settings changed: agent switched off"))
        << "one entry needs no fold";
    listing.toggle(1);
    EXPECT_EQ(shown()[3], " " + reading);
    listing.setFilter({.agent = AgentProviderID(std::string())});
    EXPECT_EQ(shown().size(), 5U) << "unfolded as before";
    EXPECT_EQ(listing.countText(), "6 of 13");
}

TEST_F(ActivityRows, StandUnderTheirDaysByTheUsersClock) {
    time = noon - Seconds(3 * 86'400);
    quiet();
    quiet();
    time = noon - Seconds(14 * 3600); // 11:48 PM
    for (int index = 0; index < 4; ++index) {
        quiet();
    }
    EXPECT_THAT(shown(), ElementsAre("= Monday, November 17", "[2 refreshes, nothing new]",
                                     "= Yesterday, November 19", "[2 refreshes, nothing new]",
                                     today, finished, finished));
}

TEST_F(ActivityRows, AreCopiedAsLinesOfTheLogEachOnce) {
    quiet();
    quiet();
    quiet();
    shown();
    listing.toggle(1);
    const std::vector<std::size_t> rows{1, 2, 3};
    const std::string text = listing.linesText(rows);
    EXPECT_EQ(std::ranges::count(text, '\n'), 8);
    EXPECT_THAT(text, HasSubstr("info codex: Session 80% left (2.0 s)\n"));
    EXPECT_THAT(text, Not(HasSubstr("\t")));
}

TEST_F(ActivityRows, SayWhatTheyAreWithoutBeingSeen) {
    begin();
    fail();
    end(1);
    shown();
    const auto said = [this](std::size_t row) {
        return listing.content(listing.rows()[row], noon).accessibilityText;
    };
    EXPECT_THAT(said(1), EndsWith("Folded"));
    EXPECT_EQ(said(2), "Error. 1:53:00 PM, Claude: no answer");
    EXPECT_EQ(said(0), "Today, November 20");
}

TEST_F(ActivityRows, KeepEntriesOfEarlierVersionsAsTheyAre) {
    add({.level = Level::info, .agent = std::nullopt, .text = "Refresh started (schedule)"});
    add({.level = Level::error, .agent = codex, .text = "no answer"});
    EXPECT_THAT(shown(), ElementsAre(today, "Refresh started (schedule)", "!no answer"));
}

} // namespace
} // namespace vellmark::tests
