#include "text/Redaction.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <string>

namespace {

using vellmark::redacted;

void redact(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        auto result = redacted(text, "/Users/anna");
        benchmark::DoNotOptimize(result);
        if (!result) {
            state.SkipWithError("the text could not be redacted");
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

std::string repeated(const std::string& line, std::int64_t size) {
    std::string text;
    while (text.size() < static_cast<std::size_t>(size)) {
        text += line;
    }
    return text;
}

// An activity log as it is written; ten megabytes are to take less than a second.
void RedactLog(benchmark::State& state) {
    redact(state, repeated("20.11.2025 14:46:05  Codex: Sitzung 78 % übrig, Woche 71 % übrig\n"
                           "20.11.2025 14:46:09  Claude: anna@example.org /Users/anna/.claude/x "
                           "token: abcdefghijklmnopqrstuvwxyz\n",
                           state.range(0)));
}
BENCHMARK(RedactLog)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

// One line of a megabyte, the worst that a rule can meet, and ten times as much.
void RedactLetters(benchmark::State& state) {
    redact(state, std::string(static_cast<std::size_t>(state.range(0)), 'a'));
}
BENCHMARK(RedactLetters)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

void RedactBlanks(benchmark::State& state) {
    redact(state, std::string(static_cast<std::size_t>(state.range(0)), ' '));
}
BENCHMARK(RedactBlanks)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

void RedactLongValue(benchmark::State& state) {
    redact(state, "token: " + std::string(static_cast<std::size_t>(state.range(0)), 'x'));
}
BENCHMARK(RedactLongValue)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

void RedactKeyWords(benchmark::State& state) {
    redact(state, repeated("token ", state.range(0)));
}
BENCHMARK(RedactKeyWords)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMillisecond);

/// "tenfold" is how much longer ten times the text takes, both measured in one run: 12 at most.
void RedactTenfold(benchmark::State& state) {
    const std::string line = "Claude: anna@example.org /Users/anna/.claude/x token: abcdefghijk\n";
    const std::string texts[] = {repeated(line, 1 << 20), repeated(line, 10 << 20)};
    std::clock_t spent[2] = {};
    for (auto _ : state) {
        for (int i = 0; i < 2; ++i) {
            const std::clock_t start = std::clock();
            benchmark::DoNotOptimize(redacted(texts[i], "/Users/anna"));
            spent[i] += std::clock() - start;
        }
    }
    state.counters["tenfold"] = static_cast<double>(spent[1]) / static_cast<double>(spent[0]);
}
BENCHMARK(RedactTenfold)->Iterations(8)->Unit(benchmark::kMillisecond);

} // namespace
