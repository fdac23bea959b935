#include "cli/DisplayWidth.h"

#include "text/Characters.h"

#include <algorithm>

namespace vellmark {
namespace {

/// The longest start of `text` that takes at most `width` columns.
std::string_view prefixOfWidth(std::string_view text, std::size_t width) {
    std::size_t end = 0;
    std::size_t used = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        used += characterWidth(nextCharacter(text, offset));
        if (used > width) {
            break;
        }
        end = offset;
    }
    return text.substr(0, end);
}

std::string_view nextWord(std::string_view& rest) {
    const std::size_t start = std::min(rest.find_first_not_of(' '), rest.size());
    const std::size_t end = std::min(rest.find(' ', start), rest.size());
    const std::string_view word = rest.substr(start, end - start);
    rest.remove_prefix(end);
    return word;
}

} // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        width += characterWidth(nextCharacter(text, offset));
    }
    return width;
}

std::string cutToWidth(std::string_view text, std::size_t width, std::string_view ellipsis) {
    if (displayWidth(text) <= width) {
        return std::string(text);
    }
    if (width == 0) {
        return {};
    }
    return std::string(prefixOfWidth(text, width - 1)).append(ellipsis);
}

std::string padded(std::string_view text, std::size_t width, Alignment alignment) {
    const std::size_t used = displayWidth(text);
    const std::string blanks(width - std::min(used, width), ' ');
    return alignment == Alignment::left ? std::string(text) + blanks : blanks + std::string(text);
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
    width = std::max<std::size_t>(width, 2);
    std::vector<std::string> lines(1);
    while (!text.empty()) {
        std::string_view word = nextWord(text);
        if (word.empty()) {
            break;
        }
        if (!lines.back().empty()) {
            if (displayWidth(lines.back()) + 1 + displayWidth(word) <= width) {
                lines.back().append(" ").append(word);
                continue;
            }
            lines.emplace_back();
        }
        while (displayWidth(word) > width) {
            const std::string_view part = prefixOfWidth(word, width);
            lines.back() = part;
            lines.emplace_back();
            word.remove_prefix(part.size());
        }
        lines.back() = word;
    }
    if (lines.size() > 1 && lines.back().empty()) {
        lines.pop_back();
    }
    return lines;
}

} // namespace vellmark
