// Every pattern that meets text of other programs, on runs that make a backtracking engine slow:
// ten times the text must take at most twelve times as long.

#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace vellmark {
namespace {

struct NamedText {
    const char* name;
    const char* text;
};

constexpr std::array patterns{
    NamedText{"usedPercent", R"((\d+(?:[.,]\d+)?)%\s+(?:\d+(?:[.,]\d+)?%\s+)?used)"},
    NamedText{"trailingNote", R"(\s*\([^)]*\)\s*$)"},
    NamedText{"email", R"(Email:\s*([^\s]+))"},
    NamedText{"loginMethod", R"(Login method:\s*(.+))"},
    NamedText{"spendLine", R"(^\$[0-9.,']+ ?/ ?\$[0-9.,']+ spent)"},
    NamedText{"fiveHours", R"(\b5[\s-]*h)"},
    NamedText{"quotaWords", R"((?i)^\s*(.+?)\s+((?:weekly|daily|monthly|\d+[\s-]*hours?|\d+\s*h)\b)"
                            R"([^%\t]*?remaining)\s+(\d+(?:[.,]\d+)?)\s*%\s*(.*)$)"},
    NamedText{"quotaColumns", R"((?i)^\s*(.+?)(?:\t+|\s{2,})([^%\t]*?remaining)(?:\t+|\s+))"
                              R"((\d+(?:[.,]\d+)?)\s*%\s*(.*)$)"},
    NamedText{"authenticated", R"(authenticated successfully as\s+([^\s@]+@[^\s@]+\.[^\s@]+))"},
    NamedText{"dateAndTime", R"((\d{4}-\d{2}-\d{2})[ T](\d{2}:\d{2})(?::(\d{2}))?)"
                             R"((?:\s*([A-Za-z]{2,5}))?)"},
    NamedText{"userPath", R"(/Users/[^/\s"'«»“”)\]]+)"},
    NamedText{"namedSecret", R"((?i)(^|\W)(token|bearer|api[_-]?key|secret|password|passwort))"
                             R"((?:\s*[:=]\s*|\s+)[A-Za-z0-9._\-+/=]{16,})"},
    NamedText{"prefixedKey", R"((^|\W)(?:sk|ghp|gho|xox[bap])-[A-Za-z0-9_\-]{12,})"},
    NamedText{"address", R"([A-Za-z0-9._%+\-]+@[A-Za-z0-9.\-]+\.[A-Za-z]{2,})"},
};

constexpr std::array runs{
    NamedText{"letters", "a"},          NamedText{"digits", "1"},
    NamedText{"blanks", " "},           NamedText{"commands", "\x1b]"},
    NamedText{"controls", "\x1b[;;;;"}, NamedText{"addresses", "a@b.cc "},
    NamedText{"tokens", "token "},      NamedText{"brackets", "("},
};

// Both sizes of a pattern fit the processor's second cache: beyond it a search for a fixed
// beginning waits for memory alone.
constexpr std::int64_t patternSize = 50'000;
constexpr std::int64_t captureSize = 4'000'000;

std::string run(std::string_view piece, std::int64_t size) {
    std::string text;
    while (text.size() < static_cast<std::size_t>(size)) {
        text += piece;
    }
    return text;
}

template<typename Work>
void addBenchmark(const std::string& name, const char* piece, std::int64_t size, Work work) {
    benchmark::RegisterBenchmark(
        name.c_str(),
        [piece, work](benchmark::State& state) {
            const std::string text = run(piece, state.range(0));
            for (auto iteration : state) {
                benchmark::DoNotOptimize(work(text));
            }
            state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
        })
        ->Arg(size)
        ->Arg(10 * size)
        ->Unit(benchmark::kMicrosecond);
}

const bool isRegistered = [] {
    for (const NamedText& text : runs) {
        for (const NamedText& pattern : patterns) {
            const auto expression = std::make_shared<const Pattern>(pattern.text);
            addBenchmark(std::string("pattern/") + pattern.name + "/" + text.name, text.text,
                         patternSize, [expression](const std::string& subject) {
                             std::size_t matches = 0;
                             for (auto match = expression->search(subject); match;
                                  match = expression->search(subject, match->position +
                                                                          match->whole().size())) {
                                 ++matches;
                             }
                             return matches;
                         });
        }
    }
    for (const NamedText& text :
         {NamedText{"commands", "\x1b]"}, NamedText{"controls", "\x1b[;;;;"},
          NamedText{"colours", "\x1b[1mbold\x1b[0m\r\n"}}) {
        addBenchmark(std::string("stripANSI/") + text.name, text.text, captureSize,
                     [](const std::string& subject) { return stripANSI(subject); });
    }
    return true;
}();

} // namespace
} // namespace vellmark
