// What the bounds around a child cost: the launch against the system's bare one, and how late the
// end of a child and the end of its time are noticed.

#include "process/BoundedProcess.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

namespace vellmark {
namespace {

using Clock = std::chrono::steady_clock;

constexpr Seconds longLimit{60};

ChildConfiguration childFor(const char* program) {
    ChildConfiguration child;
    child.executable = program;
    child.environment = {{"PATH", "/usr/bin:/bin"}};
    return child;
}

void bareLaunch(benchmark::State& state) {
    char program[] = "/bin/true";
    char path[] = "PATH=/usr/bin:/bin";
    char* arguments[] = {program, nullptr};
    char* environment[] = {path, nullptr};
    for (auto _ : state) {
        pid_t child = 0;
        posix_spawn(&child, program, nullptr, nullptr, arguments, environment);
        int status = 0;
        ::waitpid(child, &status, 0);
        benchmark::DoNotOptimize(status);
    }
}
BENCHMARK(bareLaunch)->Name("Process/bareSpawn")->UseRealTime()->MinTime(2);

void boundedRun(benchmark::State& state) {
    const ChildConfiguration child = childFor("/bin/true");
    for (auto _ : state) {
        benchmark::DoNotOptimize(BoundedProcess::run(child, longLimit, Seconds(1)));
    }
}
BENCHMARK(boundedRun)->Name("Process/boundedRun")->UseRealTime()->MinTime(2);

void capturingRun(benchmark::State& state) {
    ChildConfiguration child = childFor("/bin/true");
    child.standardOutput = ChildOutput::captured(1 << 20);
    child.standardError = ChildOutput::captured(1 << 20);
    for (auto _ : state) {
        benchmark::DoNotOptimize(BoundedProcess::run(child, longLimit, Seconds(1)));
    }
}
BENCHMARK(capturingRun)->Name("Process/capturingRun")->UseRealTime()->MinTime(2);

/// From the signal that kills a child until the run returns: the child's dying included.
void endSeen(benchmark::State& state) {
    ChildConfiguration child = childFor("/bin/sleep");
    child.arguments = {"60"};
    for (auto _ : state) {
        std::atomic<Clock::time_point> killed{};
        std::thread killer([&killed] {
            while (RunningChildren::snapshot().empty()) {
                std::this_thread::yield();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            killed = Clock::now();
            ::kill(RunningChildren::snapshot().front(), SIGKILL);
        });
        BoundedProcess::run(child, longLimit, Seconds(1));
        const Seconds late = Clock::now() - killed.load();
        killer.join();
        state.SetIterationTime(late.count());
    }
}
BENCHMARK(endSeen)->Name("Process/killUntilReturn")->UseManualTime()->Iterations(200);

/// From the end of the time a child has until it has ended of the soft stop.
void softStopLate(benchmark::State& state) {
    ChildConfiguration child = childFor("/bin/sleep");
    child.arguments = {"60"};
    const Seconds limit{0.02};
    Seconds latest{};
    for (auto _ : state) {
        const auto result = BoundedProcess::run(child, limit, Seconds(1));
        const Seconds late = result.elapsed - result.launch - limit;
        latest = std::max(latest, late);
        state.SetIterationTime(std::max(late.count(), 0.0));
    }
    state.counters["worst_ms"] = latest.count() * 1000;
}
BENCHMARK(softStopLate)->Name("Process/softStopLateness")->UseManualTime()->Iterations(200);

} // namespace
} // namespace vellmark
