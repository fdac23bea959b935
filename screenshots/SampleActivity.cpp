#include "screenshots/SampleActivity.h"

#include "screenshots/SampleStates.h"
#include "store/ActivityTexts.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vellmark::samples {

namespace {

constexpr double minute = 60;
constexpr double hour = 60 * minute;

/// Writes down what happens, from the past on.
class Record {
public:
    explicit Record(const Localization& words) : words_(words), state_(normal()) {}

    void at(double secondsFromNow) { time_ = now() + Seconds(secondsFromNow); }
    void wait(double seconds) { time_ += Seconds(seconds); }

    void add(ActivityEntry entry) {
        entry.time = time_;
        entries_.push_back(std::move(entry));
    }

    void begin(RefreshTrigger trigger) {
        trigger_ = trigger;
        begun_ = time_;
        add(ActivityTexts::refreshStarted(trigger, words_));
    }
    void read(std::size_t agent, double seconds) {
        wait(seconds);
        add(ActivityTexts::agentRead(state_.snapshots[agent], time_ - begun_, words_));
    }
    void end(std::size_t read) {
        add(ActivityTexts::refreshFinished(trigger_, read, 3, time_ - begun_, words_));
    }
    /// All agents are read, and nothing happens.
    void refresh(RefreshTrigger trigger = RefreshTrigger::timer) {
        begin(trigger);
        read(0, 2.1);
        read(2, 2.7);
        read(1, 1.6);
        end(3);
    }

    const Localization& words() const { return words_; }
    std::vector<ActivityEntry> taken() { return std::move(entries_); }

private:
    const Localization& words_;
    UsageState state_;
    std::vector<ActivityEntry> entries_;
    Instant time_{};
    Instant begun_{};
    RefreshTrigger trigger_ = RefreshTrigger::timer;
};

} // namespace

std::vector<ActivityEntry> activity(const Localization& words) {
    const AgentProviderID codex = AgentProviderID::codex();
    const AgentProviderID claude = AgentProviderID::claude();
    Record record(words);
    record.at(-17 * hour);
    for (int quiet = 0; quiet < 9; ++quiet) {
        record.refresh(quiet == 0 ? RefreshTrigger::launch : RefreshTrigger::timer);
        record.wait(5 * minute);
    }
    record.add(ActivityTexts::agentSwitched(AgentProviderID::antigravity(), true, words));
    record.refresh(RefreshTrigger::settings);

    record.at(-5 * hour);
    for (int quiet = 0; quiet < 38; ++quiet) {
        record.refresh();
        record.wait(5 * minute);
    }
    record.begin(RefreshTrigger::timer);
    record.read(0, 2.2);
    record.wait(4);
    record.add(ActivityTexts::agentFailed(
        claude,
        UsageProviderError::claudeReadFailed(
            1, "API Error: the service at the other end did not answer within thirty seconds, and "
               "the second attempt ended with the status 529 (overloaded). Please wait a moment "
               "and try again; see the service's status page for how long it may take."),
        words));
    record.read(2, 1.5);
    record.end(2);
    record.wait(5 * minute);
    record.begin(RefreshTrigger::timer);
    record.read(0, 2.2);
    record.wait(1.6);
    record.add(ActivityTexts::agentRecovered(claude, 1, words));
    record.read(1, 0);
    record.read(2, 1.5);
    record.end(3);

    record.at(-17 * minute - 10);
    record.add(ActivityTexts::woke(Seconds(10), words));
    record.wait(10);
    record.begin(RefreshTrigger::wake);
    record.read(2, 4.1);
    record.wait(16);
    record.add(ActivityTexts::agentRetried(codex, Seconds(20), words));
    record.read(1, 1);
    record.wait(30);
    record.add(
        ActivityTexts::agentFailed(codex, UsageProviderError::timeout("codex app-server"), words));
    record.end(2);
    record.wait(5 * minute);
    record.begin(RefreshTrigger::timer);
    record.wait(2.1);
    record.add(ActivityTexts::agentRecovered(codex, 2, words));
    record.read(0, 0);
    record.read(1, 1.5);
    record.read(2, 1.5);
    AgentUsageSnapshot critical = normal().snapshots[2];
    critical.windows.resize(1);
    for (ActivityEntry& entry : ActivityTexts::turnedCritical(nullptr, critical, now(), words)) {
        record.add(std::move(entry));
    }
    record.end(3);
    record.at(-4 * minute);
    record.refresh();
    record.at(-2 * minute);
    record.refresh(RefreshTrigger::manual);
    return record.taken();
}

std::vector<ActivityEntry> longActivity(std::size_t count, const Localization& words) {
    constexpr std::size_t ofRefresh = 5;
    const auto refreshes = static_cast<double>(count / ofRefresh + 1);
    Record record(words);
    record.at(-refreshes * 5 * minute);
    record.refresh();
    const auto quiet = record.taken();
    std::vector<ActivityEntry> entries;
    entries.reserve(count + ofRefresh);
    for (double refresh = 0; entries.size() < count; ++refresh) {
        for (ActivityEntry entry : quiet) {
            entry.time += Seconds(refresh * 5 * minute);
            entries.push_back(std::move(entry));
        }
        // Now and then something to tell.
        if (static_cast<int>(refresh) % 17 == 0) {
            ActivityEntry failure = ActivityTexts::agentFailed(
                AgentProviderID::codex(), UsageProviderError::timeout("codex app-server"), words);
            failure.time = entries.back().time;
            entries.insert(entries.end() - 1, std::move(failure));
        }
    }
    return entries;
}

} // namespace vellmark::samples
