// The Claude parser on the captures of long sessions: a page that is redrawn 200 times makes about
// 1 MB. Time must grow with the capture and no faster, whatever it consists of.

#include "probes/claude/ClaudeDiagnostics.h"
#include "probes/claude/ClaudeSessionInterpretation.h"
#include "text/TerminalLayout.h"

#include <benchmark/benchmark.h>

#include <string>

namespace vellmark {
namespace {

constexpr std::size_t megabyte = 1u << 20;

/// One drawing of the usage page, padded with colour codes to about 5 KB.
std::string drawing() {
    std::string page =
        "\033[2J\033[H\033[1mSettings:\033[22m  Status  Config  \033[7mUsage\033[27m\r\n";
    for (const std::string heading :
         {"Current session", "Current week (all models)", "Current week (Fable)"}) {
        page += "\033[1m" + heading + "\033[22m\r\n";
        for (int cell = 0; cell < 50; ++cell) {
            page += "\033[38;5;75m█\033[39m";
        }
        page += "  5\033[1m4% used\033[22m\r\nResets Nov 24 at 9:30am (Europe/Zurich)\r\n\r\n";
    }
    page += "What's contributing to your limits usage?\r\n";
    for (int line = 0; line < 40; ++line) {
        page += "\033[2m" + std::to_string(line) +
                "% of the last 24 h came from long sessions\033[22m\r\n";
    }
    return page + "Usage credits\r\n$3.20 / $20.00 spent\r\nEsc to cancel\r\n";
}

std::string redraws(std::size_t size) {
    const std::string page = drawing();
    std::string capture = "Login method: Max 20x Account\r\nEmail: name@example.org\r\n";
    while (capture.size() < size) {
        capture += page;
    }
    return capture + "\r\nVELLMARK_TIMING 76 137 1959 3080\r\n";
}

/// A page that the CLI goes over with the cursor, from its first figure on.
std::string overdrawings(std::size_t size) {
    std::string capture = "Login method: Claude Max account\r\nEmail: name@example.org\r\n";
    const auto draw = [&capture](int used) {
        for (const std::string heading :
             {"Current session", "Current week (all models)", "Current week (Fable)"}) {
            const std::string percent = std::to_string(used) + "% ";
            capture += heading + "\r\n" + percent + percent +
                       "used\r\nResets Nov 26, 7:25pm (Europe/Zurich)\r\n";
        }
        capture += "←/→ to switch · Esc to close\033[29G\033[10A";
    };
    draw(0);
    for (int used = 0; capture.size() < size; used = (used + 1) % 100) {
        capture += "\033[10B\033[2K";
        for (int line = 0; line < 9; ++line) {
            capture += "\033[1A\033[2K";
        }
        capture += "\033[G";
        draw(used);
    }
    return capture + "\nVELLMARK_TIMING 76 137 1959 3080\r\n";
}

/// `piece` over and over, with a window at the end.
std::string runs(std::string_view piece, std::size_t size) {
    std::string capture;
    while (capture.size() < size) {
        capture += piece;
    }
    return capture + "\r\nCurrent session\r\n54% used\r\n";
}

void interpret(benchmark::State& state, const std::string& capture) {
    const Instant now{Seconds(785000000)};
    for (auto iteration : state) {
        const ClaudeScreen screen(capture);
        try {
            benchmark::DoNotOptimize(interpretClaudeSession(screen, {20, false}, now));
        } catch (const UsageProviderError& error) {
            benchmark::DoNotOptimize(error.kind());
        }
        benchmark::DoNotOptimize(redactedClaudeScreen(screen.text(), "/home/someone"));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(capture.size()) * state.iterations());
}

void claudeRedraws(benchmark::State& state) {
    interpret(state, redraws(static_cast<std::size_t>(state.range(0)) * megabyte));
}
BENCHMARK(claudeRedraws)->ArgName("MB")->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

void claudeOverdrawings(benchmark::State& state) {
    interpret(state, overdrawings(static_cast<std::size_t>(state.range(0)) * megabyte));
}
BENCHMARK(claudeOverdrawings)->ArgName("MB")->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

void terminalLayout(benchmark::State& state, const std::string& piece) {
    // Before it half of the bytes make a tall sheet of wide rows.
    std::string output;
    const auto size = static_cast<std::size_t>(state.range(0)) * megabyte;
    while (output.size() < size / 2) {
        output += std::string(200, 'y') + "\r\n";
    }
    output += "\033[1000A";
    while (output.size() < size) {
        output += piece;
    }
    for (auto iteration : state) {
        benchmark::DoNotOptimize(laidOutText(output));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(output.size()) * state.iterations());
}
BENCHMARK_CAPTURE(terminalLayout, letters, "letters\r\n")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminalLayout, jumps, "\033[1000000000Cx\033[1000000000Bx\r")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminalLayout, insertions, "\033[L\033[@")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminalLayout, repetitions, "\033[1000000000b")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(terminalLayout, erasures, "\033[2J\033[1000000000Bx")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);

void claudeRuns(benchmark::State& state, const std::string& piece) {
    interpret(state, runs(piece, static_cast<std::size_t>(state.range(0)) * megabyte));
}
BENCHMARK_CAPTURE(claudeRuns, letter, "a")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(claudeRuns, blanks, " ")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(claudeRuns, commands, "\033]")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(claudeRuns, digits, "1")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(claudeRuns, lines, "\n")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(claudeRuns, errors, "Esc to retry ")
    ->ArgName("MB")
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vellmark
