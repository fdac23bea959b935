#include "AgentNames.h"
#include "presentation/NoticeTexts.h"
#include "presentation/UsageNotices.h"
#include "support/Matchers.h"
#include "support/TemporaryDirectory.h"

#include <algorithm>
#include <random>

namespace vellmark::tests {
namespace {

constexpr Seconds minute{60};
constexpr Seconds hour{3600};
constexpr Seconds pause = 5 * minute;

/// In the order of `NoticeKind`.
constexpr const char* kindNames[] = {"usedUp", "runsOut", "critical", "back",
                                     "unread", "expires", "reset"};

/// The program on a made day: readings come when the test says so, clocks are turned by hand.
class UsageNoticesTest : public testing::Test {
protected:
    UsageNoticesTest() {
        settings_.kinds = {NoticeKind::critical, NoticeKind::runsOut, NoticeKind::usedUp,
                           NoticeKind::back,     NoticeKind::expires, NoticeKind::unread};
    }

    void pass(Seconds span) {
        now_ += span;
        continuous_ += span;
    }
    void setClock(Seconds by) { now_ += by; }
    void sleep(Seconds span) {
        pass(span);
        notices_->systemDidWake();
    }
    void restart() {
        notices_ = std::make_unique<UsageNotices>(NoticeMemory::parse(notices_->memory().text()));
        for (AgentUsageSnapshot& snapshot : state_.snapshots) {
            snapshot.source = SnapshotSource::stale;
            snapshot.error.reset();
        }
        continuous_ = Seconds(0);
    }

    /// A window of `hours` that has `left` of them to go.
    UsageWindow quota(std::string id, double used, double hours, double left) const {
        return {.id = std::move(id),
                .usedPercent = used,
                .windowDurationMinutes = hours * 60,
                .resetsAt = now_ + left * hour};
    }
    AgentUsageSnapshot& snapshot(const AgentProviderID& id) {
        const auto found = std::ranges::find(state_.snapshots, id, &AgentUsageSnapshot::id);
        if (found != state_.snapshots.end()) {
            return *found;
        }
        return state_.snapshots.emplace_back(live(id, {}));
    }
    /// Puts a reading into the state, without a look at it.
    AgentUsageSnapshot& arrive(const AgentProviderID& id, std::vector<UsageWindow> windows) {
        AgentUsageSnapshot& reading = snapshot(id);
        reading.windows = std::move(windows);
        reading.source = SnapshotSource::live;
        reading.error.reset();
        reading.updatedAt = now_;
        state_.lastSuccess[id] = now_;
        return reading;
    }
    void read(const AgentProviderID& id, std::vector<UsageWindow> windows) {
        arrive(id, std::move(windows));
        look();
    }
    void readSession(double used, double left, int times = 1) {
        for (; times > 0; --times) {
            read(claude, {quota("session", used, 5, left)});
            pass(pause);
        }
    }
    void fail(const AgentProviderID& id) {
        AgentUsageSnapshot& reading = snapshot(id);
        reading.source = SnapshotSource::stale;
        reading.error = UsageProviderError(UsageProviderError::Kind::claudeNotLoggedIn);
        reading.updatedAt = now_;
        look();
    }
    void look() {
        const NoticeChanges changes = notices_->look(
            state_, settings_,
            {now_, continuous_, isSilent_ || settings_.isQuiet(now_, TimeZone::utc())});
        closed_.insert(closed_.end(), changes.closed.begin(), changes.closed.end());
        if (!changes.post) {
            return;
        }
        lastPost_ = *changes.post;
        for (const Notice& notice : changes.post->notices) {
            told_.push_back(kindNames[static_cast<int>(notice.kind)] +
                            (" " + notice.agent.rawValue + "/" + notice.windowID));
        }
    }
    std::vector<std::string> takeTold() { return std::exchange(told_, {}); }
    std::vector<std::string> takeClosed() { return std::exchange(closed_, {}); }
    std::string words(const char* language = "en") const {
        const NoticeText text =
            noticeText(lastPost_, state_, now_, Localization(language, "en_GB", "UTC"));
        return text.title + "\n" + text.body;
    }

    Instant now_ = noon;
    Seconds continuous_{1000};
    bool isSilent_ = false;
    UsageState state_ = stateOf({});
    NoticeSettings settings_;
    std::unique_ptr<UsageNotices> notices_ = std::make_unique<UsageNotices>(NoticeMemory());
    std::vector<std::string> told_;
    std::vector<std::string> closed_;
    NoticePost lastPost_;
};

TEST_F(UsageNoticesTest, WhatWaversAtAThresholdIsToldOnceAPeriodAndDoesNotFlicker) {
    for (int period = 0; period < 2; ++period) {
        const Instant end = now_ + 5 * hour;
        // Critical and running low in turn: 15 points behind an even pace is the threshold.
        for (int reading = 0; now_ < end; ++reading) {
            const double left = (end - now_) / hour;
            const double used = 100 - left * 20 + (reading % 2 == 0 ? 16 : 14);
            read(claude, {quota("session", std::min(used, 99.0), 5, left)});
            EXPECT_THAT(closed_, IsEmpty());
            pass(pause);
            look();
        }
        EXPECT_THAT(takeTold(), ElementsAre("critical claude/session", "runsOut claude/session"));
        // Past its reset nobody knows.
        EXPECT_THAT(takeClosed(), ElementsAre("claude/session"));
    }
}

TEST_F(UsageNoticesTest, ThatItRunsOutTakesTwoReadingsInARow) {
    const auto reading = [&](double used, double left) {
        read(claude, {quota("weekly", used, 168, left)});
        pass(pause);
    };
    for (const double used : {31.0, 28.0, 31.0, 28.0, 31.0}) {
        reading(used, 120);
    }
    EXPECT_THAT(takeTold(), IsEmpty());
    reading(31, 120);
    EXPECT_THAT(takeTold(), ElementsAre("runsOut claude/weekly"));
    EXPECT_EQ(words(), "Claude · Week: runs out before its reset\n69% left · at this pace empty by "
                       "Tue 01:03 · Resets Tue 14:13");
    reading(28, 119);
    EXPECT_THAT(takeClosed(), IsEmpty()) << "one reading says little";
    reading(28, 119);
    EXPECT_THAT(takeClosed(), ElementsAre("claude/weekly"));
    reading(31, 119);
    reading(31, 119);
    EXPECT_THAT(takeTold(), IsEmpty()) << "once a period";
}

TEST_F(UsageNoticesTest, UsedUpSaysWhatStillWorksAndWhenItIsBack) {
    const auto pools = [&](double gemini, double left) {
        return std::vector{quota("pool:Gemini Models|5h", gemini, 5, left),
                           quota("pool:Gemini Models|weekly", 40, 168, 90),
                           quota("pool:Claude and GPT models|weekly", 36, 168, 90)};
    };
    for (int reading = 0; reading < 3; ++reading) {
        read(antigravity, pools(100, 2));
        pass(pause);
    }
    EXPECT_THAT(takeTold(), ElementsAre("usedUp antigravity/pool:Gemini Models|5h"));
    EXPECT_EQ(words(), "Antigravity · Gemini · 5 hours: used up\nBack 15:58\n"
                       "Still works: Claude & GPT 64% left");
    EXPECT_EQ(words("de"), "Antigravity · Gemini · 5 Std.: aufgebraucht\nWieder ab 15:58\n"
                           "Geht noch: Claude & GPT 64 % übrig");
    for (const double used : {98.0, 100.0, 97.0, 100.0}) {
        pass(minute);
        read(antigravity, pools(used, 1.9));
    }
    EXPECT_THAT(takeTold(), IsEmpty()) << "a rounding brings nothing back";
    // The reset has come, and no reading yet.
    pass(2 * hour);
    look();
    EXPECT_THAT(takeTold(), IsEmpty());
    EXPECT_THAT(takeClosed(), IsEmpty());
    read(antigravity, pools(0, 5));
    EXPECT_THAT(takeTold(), ElementsAre("back antigravity/pool:Gemini Models|5h"));
    EXPECT_EQ(lastPost_.id, "antigravity/pool:Gemini Models|5h") << "in place of the former";
    EXPECT_THAT(takeClosed(), IsEmpty());

    // One model's week leaves the others; the week of all leaves another agent.
    read(codex, {quota("weekly", 10, 168, 100)});
    for (const double week : {20.0, 20.0, 100.0}) {
        pass(pause);
        read(claude, {quota("session", 30, 5, 3), quota("weekly", week, 168, 100),
                      quota("fable-weekly", 100, 168, 100)});
        if (week < 100) {
            continue;
        }
        EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/fable-weekly", "usedUp claude/weekly"));
        EXPECT_EQ(words(), "Claude · Week: used up\nBack Mon 20:22\nStill works: Codex · Week "
                           "90% left, Antigravity · Gemini 60% left");
    }
    EXPECT_EQ(told_, std::vector<std::string>());
}

TEST_F(UsageNoticesTest, CodexIsBackWhenItSaysSo) {
    const auto codexReads = [&](double used, double left, bool isAllowed) {
        arrive(codex, {quota("session", used, 5, left)}).allowance =
            UsageAllowance{.ordinaryUsageAllowed = isAllowed};
        look();
        pass(pause);
    };
    codexReads(100, 1, false);
    codexReads(100, 1, false);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp codex/session"));
    pass(hour);
    codexReads(0, 5, false);
    codexReads(0, 5, false);
    EXPECT_THAT(takeTold(), IsEmpty()) << "full again by its figures, and it refuses";
    EXPECT_THAT(takeClosed(), IsEmpty());
    arrive(codex, {quota("session", 0, 5, 5)}).allowance = UsageAllowance{.bankedResets = 1};
    look();
    pass(pause);
    EXPECT_THAT(takeTold(), IsEmpty()) << "nothing said is no yes";
    codexReads(1, 4.9, true);
    EXPECT_THAT(takeTold(), ElementsAre("back codex/session"));

    // It may refuse for reasons that no window shows.
    codexReads(20, 4, false);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp codex/"));
    EXPECT_THAT(words(), StartsWith("Codex: used up\nCodex refuses for now"));
    codexReads(20, 4, false);
    codexReads(20, 4, true);
    EXPECT_THAT(takeTold(), ElementsAre("back codex/"));
}

TEST_F(UsageNoticesTest, AfterASleepOrAStartTheSecondReadingTells) {
    readSession(100, 2);
    EXPECT_THAT(takeTold(), IsEmpty());
    readSession(100, 1.9);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
    sleep(6 * hour);
    look();
    readSession(0, 5);
    EXPECT_THAT(takeTold(), IsEmpty());
    EXPECT_THAT(takeClosed(), ElementsAre("claude/session")) << "what no longer holds goes at once";
    readSession(1, 4.9);
    EXPECT_THAT(takeTold(), ElementsAre("back claude/session"));
    // Used up again, away over the reset, and used up once more by another machine.
    readSession(100, 4);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
    pass(9 * hour);
    restart();
    readSession(100, 3, 3);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session")) << "of another period";
}

TEST_F(UsageNoticesTest, ACommonResetIsToldWhereThatIsWanted) {
    settings_.kinds.insert(NoticeKind::reset);
    readSession(40, 0.1);
    readSession(40, 0.02);
    readSession(40, -0.05); // the service is late
    readSession(2, 4.9);
    EXPECT_THAT(takeTold(), ElementsAre("reset claude/session"));
    readSession(2, 4.85); // told to the minute: the reset wavers
    readSession(2, 4.7);
    readSession(40, -0.3); // by a server that is behind
    readSession(3, 4.6);
    EXPECT_THAT(takeTold(), IsEmpty());
    // One reading leaves the time out, and the next period is used as much.
    read(claude, {windowWithoutReset("session", 3)});
    pass(5 * hour);
    readSession(3, 4.5);
    EXPECT_THAT(takeTold(), ElementsAre("reset claude/session"));
    settings_.kinds.erase(NoticeKind::reset);
    pass(5 * hour);
    readSession(1, 5);
    settings_.kinds.insert(NoticeKind::reset);
    readSession(1, 4.9);
    EXPECT_THAT(takeTold(), IsEmpty()) << "what is switched on tells of what comes";
}

TEST_F(UsageNoticesTest, AClockThatIsSetNeitherRepeatsNorHides) {
    // The agent tells the time of day of the reset, so that it moves with the clock.
    readSession(96, 3, 2);
    EXPECT_THAT(takeTold(), ElementsAre("runsOut claude/session"));
    for (const Seconds jump : {24 * hour, -48 * hour, 24 * hour, 8760 * hour, -8760 * hour}) {
        setClock(jump);
        readSession(97, 2, 2);
        restart();
        readSession(97, 1.8, 2);
    }
    EXPECT_THAT(takeTold(), IsEmpty());
    readSession(100, 1);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
}

TEST_F(UsageNoticesTest, WhatExpiresUnusedIsToldADayBefore) {
    const Instant expiry = now_ + 30 * hour;
    const auto reading = [&] {
        arrive(codex, {quota("weekly", 10, 168, 100)}).allowance = UsageAllowance{
            .ordinaryUsageAllowed = true, .bankedResets = 2, .bankedResetExpiresAt = expiry};
        look();
        pass(hour);
    };
    reading();
    reading();
    setClock(10 * hour);
    reading();
    EXPECT_THAT(takeTold(), ElementsAre("expires codex/")) << "by the clock that holds";
    setClock(-10 * hour);
    reading();
    EXPECT_THAT(takeClosed(), ElementsAre("codex//expires"));
    for (int reading_ = 0; reading_ < 28; ++reading_) {
        if (reading_ % 5 == 0) {
            restart();
        }
        reading();
    }
    EXPECT_THAT(takeTold(), ElementsAre("expires codex/"));
    EXPECT_EQ(words(), "Codex: a banked reset expires\nUnused, it expires 19:48 · 2 in hand");
    EXPECT_THAT(takeClosed(), IsEmpty()) << "a restart knows of none; see what closes them";
}

TEST_F(UsageNoticesTest, AnAgentThatCannotBeReadForAnHourIsToldOnce) {
    const auto failFor = [&](Seconds span) {
        for (Seconds passed(0); passed < span; passed += pause) {
            fail(claude);
            pass(pause);
        }
    };
    failFor(2 * hour);
    EXPECT_THAT(takeTold(), IsEmpty()) << "one that was never read is not in use";
    restart();
    read(claude, {quota("weekly", 10, 168, 100)});
    pass(pause);
    failFor(30 * minute);
    sleep(8 * hour);
    failFor(20 * minute);
    restart();
    failFor(10 * minute);
    EXPECT_THAT(takeTold(), IsEmpty()) << "asleep nobody has tried";
    failFor(30 * minute);
    EXPECT_THAT(takeTold(), ElementsAre("unread claude/"));
    EXPECT_EQ(words(), "Claude: unreadable for an hour\n" +
                           UsageProviderError(UsageProviderError::Kind::claudeNotLoggedIn)
                               .message(Localization("en")) +
                           "\nOpen Vellmark to log in again.");
    failFor(5 * hour);
    EXPECT_THAT(takeTold(), IsEmpty());
    read(claude, {quota("weekly", 10, 168, 95)});
    EXPECT_THAT(takeClosed(), ElementsAre("claude//unread"));
    pass(pause);
    failFor(2 * hour);
    EXPECT_THAT(takeTold(), ElementsAre("unread claude/"));
}

TEST_F(UsageNoticesTest, QuietHoursPutOffWhatStillHoldsThen) {
    // 13:48 at first.
    settings_.quietHours = {*TimeOfDay::parse("14:00"), *TimeOfDay::parse("13:00")};
    const auto reading = [&](double session, double week) {
        read(claude, {quota("session", session, 5, 3), quota("weekly", week, 168, 100)});
        pass(pause);
    };
    for (int before = 0; before < 3; ++before) {
        reading(10, 30);
    }
    ASSERT_TRUE(settings_.isQuiet(now_, TimeZone::utc()));
    reading(96, 30);
    reading(10, 100);
    EXPECT_THAT(takeTold(), IsEmpty());
    pass(23 * hour);
    reading(10, 100);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/weekly"));

    for (const auto& [from, until, at, isQuiet] : {std::tuple("22:00", "07:00", "23:30", true),
                                                   {"22:00", "07:00", "06:59", true},
                                                   {"22:00", "07:00", "07:00", false},
                                                   {"12:00", "13:00", "12:00", true},
                                                   {"12:00", "13:00", "13:00", false},
                                                   {"12:00", "12:00", "12:00", false}}) {
        settings_.quietHours = {*TimeOfDay::parse(from), *TimeOfDay::parse(until)};
        const Instant midnight = TimeZone::utc().instant({.year = 2025, .month = 11, .day = 3});
        EXPECT_EQ(
            settings_.isQuiet(midnight + TimeOfDay::parse(at)->minutes * minute, TimeZone::utc()),
            isQuiet)
            << from << " " << until << " " << at;
    }
    for (const char* wrong : {"", "7:00", "24:00", "12:60", "ab:cd", "12:000", "-1:00"}) {
        EXPECT_FALSE(TimeOfDay::parse(wrong)) << wrong;
    }
}

TEST_F(UsageNoticesTest, SeveralAtOnceAreOneAndEachGoesItsOwnWay) {
    const auto readings = [&](double session, double week) {
        state_.isRefreshing = true;
        arrive(claude, {quota("session", session, 5, 4), quota("weekly", 20, 168, 100)});
        look();
        arrive(codex, {quota("weekly", week, 168, 100)}).allowance =
            UsageAllowance{.ordinaryUsageAllowed = true};
        look();
        EXPECT_THAT(told_, IsEmpty()) << "while the refresh is under way";
        state_.isRefreshing = false;
        look();
        pass(pause);
    };
    readings(90, 96);
    readings(90, 96);
    EXPECT_THAT(takeTold(), ElementsAre("runsOut claude/session", "runsOut codex/weekly"));
    EXPECT_THAT(words(), StartsWith("2 notices: Claude, Codex\nClaude · Session: runs out"));
    EXPECT_EQ(notices_->agentOf("several"), std::nullopt);

    readings(100, 96);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
    EXPECT_EQ(lastPost_.id, "claude/session");
    EXPECT_EQ(notices_->agentOf("claude/session"), claude);
    EXPECT_EQ(notices_->agentOf("several"), codex);
    readings(100, 100);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp codex/weekly"));
    EXPECT_THAT(takeClosed(), ElementsAre("several")) << "nothing is left of it";

    // Nothing more of what was muted until the next period; of that again.
    notices_->mute("claude/session");
    notices_->dismissed("claude/session");
    pass(5 * hour);
    readings(0, 100);
    EXPECT_THAT(takeTold(), ElementsAre("back claude/session"));
    notices_->mute("claude/session");
    readings(99, 100);
    readings(99, 100);
    EXPECT_THAT(takeTold(), IsEmpty());

    state_.snapshots.clear();
    look();
    EXPECT_THAT(takeClosed(), ElementsAre("codex/weekly", "claude/session"))
        << "agents that were switched off";
}

TEST_F(UsageNoticesTest, WhatAnAgentTellsBetweenItsReadingsCounts) {
    for (int reading = 0; reading < 2; ++reading) {
        read(claude, {quota("session", 60, 5, 2), quota("weekly", 20, 168, 90)});
        pass(pause);
    }
    // Its service refuses, and its sessions go on telling, several times a minute.
    const auto tell = [&](double used) {
        UsageWindow& window = snapshot(claude).windows.front();
        window.usedPercent = used;
        window.readAt = now_;
        look();
        pass(Seconds(10));
    };
    fail(claude);
    EXPECT_THAT(takeTold(), IsEmpty());
    tell(99);
    EXPECT_THAT(takeTold(), ElementsAre("critical claude/session"));
    tell(100);
    tell(100);
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
    restart();
    tell(100);
    pass(pause);
    tell(100);
    EXPECT_THAT(takeTold(), IsEmpty());

    // Three messages within a minute are not three readings.
    notices_ = std::make_unique<UsageNotices>(NoticeMemory());
    tell(96);
    tell(96);
    tell(96);
    EXPECT_THAT(takeTold(), IsEmpty());
    pass(minute);
    tell(97);
    EXPECT_EQ(takeTold().size(), 1U);
    // A window that is only kept from before tells nothing.
    EXPECT_FALSE(notices_->memory().windows.contains({claude, "weekly"}));
}

TEST_F(UsageNoticesTest, WhatNobodyShowedIsToldAgain) {
    isSilent_ = true;
    readSession(100, 3, 3);
    EXPECT_THAT(takeTold(), IsEmpty());
    isSilent_ = false;
    look();
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
    notices_->notShown("claude/session");
    look();
    EXPECT_THAT(takeTold(), ElementsAre("usedUp claude/session"));
    pass(pause);
    look();
    EXPECT_THAT(takeTold(), IsEmpty());
}

/// Weeks of two windows whose use wavers, with sleeps and restarts, against what a patient reader
/// of every single reading would have written down.
TEST_F(UsageNoticesTest, MadeWeeksTellEverythingOnceAndWithTheReadingThatSaysIt) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        std::mt19937 random(seed);
        const auto chance = [&](int oneIn) { return random() % static_cast<unsigned>(oneIn) == 0; };
        notices_ = std::make_unique<UsageNotices>(NoticeMemory());
        state_ = stateOf({});
        double used = 0;
        Instant end = now_ + 5 * hour;
        int sinceStart = 0;
        bool isUsedUpToTell = true;
        bool isBackToTell = false;
        bool wasUsedUp = false;
        int told = 0;
        for (int reading = 0; reading < 2000; ++reading) {
            pass(pause);
            if (chance(40)) {
                sleep(static_cast<double>(random() % 600) * minute);
                sinceStart = 0;
            } else if (chance(30)) {
                restart();
                sinceStart = 0;
            }
            if (now_ >= end) {
                end = now_ + 5 * hour;
                used = 0;
                isUsedUpToTell = true;
            }
            used = std::min(100.0, used + static_cast<double>(random() % 6));
            const bool isUsedUp = used >= 100;
            isBackToTell = (isBackToTell || wasUsedUp) && !isUsedUp;
            wasUsedUp = isUsedUp;
            // The reset is told to the minute, now a little early, now late.
            const Seconds waver = minute * (static_cast<int>(random() % 3) - 1);
            UsageWindow window = quota("session", used, 5, 0);
            window.resetsAt = std::max(end + waver, now_ + Seconds(1));
            read(claude, {window});
            ++sinceStart;

            std::vector<std::string> news = takeTold();
            std::erase_if(news, [](const std::string& one) {
                return one.starts_with("critical") || one.starts_with("runsOut");
            });
            std::vector<std::string> expected;
            if (sinceStart >= 2 && isUsedUp && std::exchange(isUsedUpToTell, false)) {
                expected.emplace_back("usedUp claude/session");
            }
            if (sinceStart >= 2 && std::exchange(isBackToTell, isBackToTell && sinceStart < 2)) {
                expected.emplace_back("back claude/session");
            }
            ASSERT_EQ(news, expected) << "seed " << seed << ", reading " << reading;
            told += static_cast<int>(news.size());
        }
        EXPECT_GT(told, 20);
    }
}

TEST_F(UsageNoticesTest, TheMemoryOutlivesWhateverItsFileHolds) {
    const TemporaryDirectory directory;
    const auto file = directory / "notices.json";
    std::error_code error;
    EXPECT_EQ(readNoticeMemory(file, error), NoticeMemory());
    EXPECT_FALSE(error);
    for (int reading = 0; reading < 2; ++reading) {
        read(claude, {quota("session", 100, 5, 3), quota("weekly", 12.3456789, 168, 90)});
        pass(pause);
    }
    notices_->mute("claude/session");
    fail(claude);
    pass(pause);
    fail(claude);
    ASSERT_FALSE(writeNoticeMemory(file, notices_->memory()));
    EXPECT_EQ(readNoticeMemory(file, error), notices_->memory());

    const std::string good = notices_->memory().text();
    for (std::size_t cut = 0; cut < good.size(); cut += 7) {
        (void)NoticeMemory::parse(good.substr(0, cut));
    }
    for (const char* odd :
         {"[]", "null", R"({"windows":{"a":1},"agents":[1,"x",null]})",
          R"({"windows":[{"agent":7,"window":[],"said":"critical","endsAt":"soon"}]})"}) {
        const NoticeMemory memory = NoticeMemory::parse(odd);
        EXPECT_LE(memory.windows.size(), 1U);
    }
    for (int window = 0; window < 500; ++window) {
        read(codex, {quota("limit:" + std::to_string(window) + "|primary", 5, 5, 3)});
    }
    EXPECT_LE(notices_->memory().windows.size(), 200U);
    fs::create_directory(directory / "taken.json");
    EXPECT_TRUE(writeNoticeMemory(directory / "taken.json", notices_->memory()));
}

} // namespace
} // namespace vellmark::tests
