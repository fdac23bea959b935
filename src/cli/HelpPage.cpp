#include "cli/HelpPage.h"

#include "cli/DisplayWidth.h"

#include <algorithm>

namespace vellmark {
namespace {

/// Longer lines are hard to read.
constexpr std::size_t widest = 100;
/// Longer terms have their line for themselves.
constexpr std::size_t widestTerm = 26;
/// With less room beside the terms the texts go below them.
constexpr std::size_t leastText = 30;
constexpr std::size_t textIndent = 6;

std::string paragraph(const std::string& text, std::size_t column, std::size_t width) {
    std::string lines;
    for (const std::string& line : wrapped(text, width - column)) {
        lines += std::string(column, ' ') + line + "\n";
    }
    return lines;
}

} // namespace

std::string HelpPage::text(std::size_t width) const {
    width = std::clamp<std::size_t>(width, 2 * textIndent, widest);
    std::size_t term = 0;
    for (const Section& section : sections) {
        for (const Entry& entry : section.entries) {
            if (const std::size_t size = displayWidth(entry.term); size <= widestTerm) {
                term = std::max(term, size);
            }
        }
    }
    const std::size_t beside = pageIndent + term + columnGap;
    const bool isBeside = beside + leastText <= width;
    const std::size_t column = isBeside ? beside : textIndent;

    std::string page = paragraph(summary, 0, width) + "\n" + paragraph(usage, 0, width);
    for (const Section& section : sections) {
        if (section.entries.empty()) {
            continue;
        }
        page += "\n" + section.title + "\n";
        for (const Entry& entry : section.entries) {
            const std::string text = paragraph(entry.text, column, width);
            if (isBeside && displayWidth(entry.term) <= term) {
                page += std::string(pageIndent, ' ') + padded(entry.term, term + columnGap) +
                        text.substr(column);
            } else {
                page += paragraph(entry.term, pageIndent, width) + text;
            }
        }
    }
    return detail.empty() ? page : page + "\n" + paragraph(detail, 0, width);
}

} // namespace vellmark
