// What the store costs: reading a long history, appending to it, and one
// refresh without its children.

#include "model/UsageJSON.h"
#include "store/AgentUsageStore.h"
#include "store/UsageHistory.h"
#include "store/UsageHistoryFile.h"
#include "store/UsageHistoryRecorder.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unistd.h>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

constexpr int sampleCount = 200'000;
constexpr double start = 786'000'000.123456;

/// A directory that is removed at the end of the benchmark.
class Scratch {
public:
    Scratch() {
        std::string name = (fs::temp_directory_path() / "vellmark-bench-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

UsageHistorySample sampleAt(int index) {
    static const std::vector<std::pair<std::string, std::string>> keys = {
        {"codex", "session"},
        {"codex", "weekly"},
        {"claude", "session"},
        {"claude", "weekly"},
        {"claude", "fable-weekly"},
        {"antigravity", "pool:gemini|session"},
        {"antigravity", "pool:gemini|weekly"},
        {"antigravity", "pool:claude-gpt|weekly"}};
    const auto& [provider, window] = keys[static_cast<std::size_t>(index) % keys.size()];
    UsageHistorySample sample;
    sample.id = UUID::make();
    sample.provider = AgentProviderID(provider);
    sample.windowID = window;
    // Seventeen digits, as a clock gives them: the slower way through the reader.
    sample.capturedAt = Instant(Seconds(start + index * 37.123456789));
    sample.usedPercent = std::fmod(index * 0.37, 100.0);
    sample.resetsAt = sample.capturedAt + Seconds(5000);
    return sample;
}

fs::path writeHistory(const fs::path& directory, int samples) {
    const fs::path made = directory / "usage-history.json";
    std::ofstream stream(made, std::ios::binary);
    for (int index = 0; index < samples; ++index) {
        stream << (index == 0 ? "[\n" : ",\n") << serialized(toJSON(sampleAt(index)), -1);
    }
    stream << "\n]\n";
    return made;
}

/// 200,000 samples, about 33 MB, written once.
const fs::path& longHistory() {
    static const Scratch scratch;
    static const fs::path file = writeHistory(scratch.path(), sampleCount);
    return file;
}

void loadHistory(benchmark::State& state) {
    const Scratch scratch;
    const auto samples = static_cast<int>(state.range(0));
    const fs::path file =
        samples == sampleCount ? longHistory() : writeHistory(scratch.path(), samples);
    std::shared_ptr<UsageHistory> history;
    for (auto _ : state) {
        history = std::make_shared<UsageHistory>();
        UsageHistoryFile reader(file);
        HistorySeries series;
        reader.catchUp(nullptr,
                       {.restart = [] {},
                        .sample =
                            [&](const StoredHistorySample& sample) {
                                series.add(sample.provider, sample.windowID,
                                           HistoryPoint(Instant(Seconds(sample.capturedAt)),
                                                        sample.usedPercent,
                                                        Instant(Seconds(*sample.resetsAt))));
                            }});
        history->replace(std::move(series));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(fs::file_size(file)) *
                            static_cast<std::int64_t>(state.iterations()));
    state.counters["samples"] = static_cast<double>(history->sampleCount());
    state.counters["bytes/sample"] =
        static_cast<double>(history->bytesHeld()) / static_cast<double>(history->sampleCount());
}
BENCHMARK(loadHistory)->Arg(sampleCount)->Arg(10 * sampleCount)->Unit(benchmark::kMillisecond);

/// With the daily thinning.
void firstStartOfTheDay(benchmark::State& state) {
    const Scratch scratch;
    const fs::path file = scratch.path() / "usage-history.json";
    const Instant end = sampleAt(sampleCount).capturedAt;
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove(scratch.path() / "usage-history.lock");
        fs::copy_file(longHistory(), file, fs::copy_options::overwrite_existing);
        for (const int daysBefore : {2, 1}) {
            UsageHistoryRecorder(file, std::make_shared<UsageHistory>())
                .load(end - Seconds(86'400.0 * daysBefore));
        }
        UsageHistoryRecorder recorder(file, std::make_shared<UsageHistory>());
        state.ResumeTiming();
        recorder.load(end);
    }
}
BENCHMARK(firstStartOfTheDay)->Unit(benchmark::kMillisecond);

/// Two courses, one after the other in the file.
void orderSamples(benchmark::State& state) {
    for (auto _ : state) {
        HistorySeries series;
        for (int index = 0; index < sampleCount; ++index) {
            const int place = index % 2 * (sampleCount / 2) + index / 2;
            series.add("codex", "session",
                       HistoryPoint(Instant(Seconds(start + place)), 0, std::nullopt));
        }
        benchmark::DoNotOptimize(series.of({AgentProviderID("codex"), "session"}).size());
    }
}
BENCHMARK(orderSamples)->Unit(benchmark::kMillisecond)->Iterations(3);

/// With the sync where `state.range(0)` is 1.
void appendSample(benchmark::State& state) {
    const Scratch scratch;
    fs::copy_file(longHistory(), scratch.path() / "usage-history.json");
    UsageHistoryFile file(scratch.path() / "usage-history.json");
    const UsageHistoryFile::Listener silent{.restart = [] {},
                                            .sample = [](const StoredHistorySample&) {}};
    std::error_code error;
    file.catchUp(nullptr, silent);
    int index = sampleCount;
    for (auto _ : state) {
        const auto held = file.lock(error);
        file.catchUp(&*held, silent);
        const UsageHistorySample sample = sampleAt(index++);
        if (file.append(*held, {&sample, 1})) {
            state.SkipWithError("append failed");
            break;
        }
        if (state.range(0) == 1) {
            file.sync();
        }
    }
}
BENCHMARK(appendSample)->ArgName("sync")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// Runs what is posted; nothing more is needed here.
class PlainExecutor : public MainExecutor {
public:
    void post(Task task) override {
        const std::lock_guard hold(lock_);
        tasks_.push_back(std::move(task));
    }
    Timer postAfter(Seconds, Seconds, Task) override { return 0; }
    void cancel(Timer) override {}
    bool turn() {
        std::unique_lock hold(lock_);
        if (tasks_.empty()) {
            return false;
        }
        const Task task = std::move(tasks_.front());
        tasks_.pop_front();
        hold.unlock();
        task();
        return true;
    }

private:
    std::mutex lock_;
    std::deque<Task> tasks_;
};

class InstantProvider : public AgentUsageProvider {
public:
    InstantProvider(AgentProviderID id, int& readings) : id_(std::move(id)), readings_(readings) {}
    AgentProviderID id() const override { return id_; }
    AgentUsageSnapshot fetch() override {
        const Instant now = ReferenceClock::now();
        AgentUsageSnapshot snapshot;
        snapshot.id = id_;
        for (const char* window : {"session", "weekly", "fable-weekly"}) {
            snapshot.windows.push_back(
                {window, std::fmod(readings_ * 0.5, 100.0), 300, now + Seconds(3000)});
        }
        snapshot.updatedAt = now;
        return snapshot;
    }

private:
    AgentProviderID id_;
    int& readings_;
};

class NoPreferences : public Preferences {
public:
    std::optional<bool> boolean(std::string_view) const override { return {}; }
    std::optional<double> number(std::string_view) const override { return {}; }
    std::optional<std::string> string(std::string_view) const override { return {}; }
    std::optional<std::vector<std::string>> strings(std::string_view) const override { return {}; }
    void setBoolean(std::string_view, bool) override {}
    void setNumber(std::string_view, double) override {}
    void setString(std::string_view, std::string) override {}
    void setStrings(std::string_view, std::vector<std::string>) override {}
    void setMember(std::string_view, std::string_view, bool) override {}
    void remove(std::string_view) override {}
    void reload() override {}
    std::optional<std::error_code> writeError() const override { return {}; }
    void retry() override {}
};

double processSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The processor time of all threads, from the request until everything is on disk; three agents
/// with three windows each on top of the long history. Nothing here starts a child.
void refreshWithoutChildren(benchmark::State& state) {
    const Scratch scratch;
    Machine machine;
    machine.applicationSupport = scratch.path();
    fs::create_directories(machine.supportDirectory());
    fs::copy_file(longHistory(), machine.usageHistoryFile());
    int readings = 0;
    AgentUsageStore::Configuration configuration;
    configuration.machine = machine;
    for (const char* name : {"codex", "claude", "antigravity"}) {
        ProviderDescriptor descriptor;
        descriptor.id = AgentProviderID(name);
        configuration.registrations.push_back(
            {descriptor,
             [name, &readings](const Machine&,
                               const ReadingOptions&) -> std::unique_ptr<AgentUsageProvider> {
                 return std::make_unique<InstantProvider>(AgentProviderID(name), readings);
             }});
    }
    configuration.words = [] { return Localization("en", "en_US", "UTC"); };
    PlainExecutor executor;
    NoPreferences preferences;
    AgentUsageStore store(std::move(configuration), executor, preferences);
    store.flush();
    for (auto _ : state) {
        const double before = processSeconds();
        ++readings;
        store.refresh(RefreshTrigger::manual);
        while (store.state().isRefreshing) {
            if (!executor.turn()) {
                ::usleep(100);
            }
        }
        store.flush();
        while (executor.turn()) {
        }
        state.SetIterationTime(processSeconds() - before);
    }
}
BENCHMARK(refreshWithoutChildren)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(100);

} // namespace
} // namespace vellmark
