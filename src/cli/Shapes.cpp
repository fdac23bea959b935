#include "cli/Shapes.h"

#include "text/TerminalText.h"

#include <utility>

namespace vellmark {
namespace {

constexpr Shapes blockShapes{.dot = "●",
                             .fill = "█",
                             .eighths = {"▏", "▎", "▍", "▌", "▋", "▊", "▉"},
                             .track = "░",
                             .mark = "┃",
                             .levels = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"},
                             .ellipsis = "…",
                             .above = "↑",
                             .below = "↓",
                             .isPlain = false};

constexpr Shapes plainShapes{.dot = "*",
                             .fill = "#",
                             .eighths = {},
                             .track = "-",
                             .mark = "|",
                             .levels = {"_", ".", ":", "-", "=", "+", "*", "#"},
                             .ellipsis = "~",
                             .above = "^",
                             .below = "v",
                             .isPlain = true};

constexpr std::array<std::pair<std::string_view, std::string_view>, 16> plainMarks{{
    {"…", "..."},
    {"·", "-"},
    {"–", "-"},
    {"—", "-"},
    {"●", "*"},
    {"↑", "^"},
    {"↓", "v"},
    {"„", "\""},
    {"“", "\""},
    {"”", "\""},
    {"«", "\""},
    {"»", "\""},
    {"‘", "'"},
    {"’", "'"},
    {"\u00A0", " "},
    {"\u202F", " "},
}};

/// The first of the variables that is set decides, by POSIX.
std::string characterLocale(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (const auto found = environment.find(name);
            found != environment.end() && !found->second.empty()) {
            return lowercased(found->second);
        }
    }
    return {};
}

} // namespace

const Shapes& shapesFor(const Environment& environment) {
    const std::string locale = characterLocale(environment);
    const bool isUTF8 =
        locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
    return isUTF8 ? blockShapes : plainShapes;
}

std::string inPlainShapes(std::string_view text) {
    std::string result(text);
    for (const auto& [mark, plain] : plainMarks) {
        result = replacedText(result, mark, plain);
    }
    return result;
}

} // namespace vellmark
