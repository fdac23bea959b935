#include "presentation/WrappedText.h"

#include "text/Characters.h"

#include <algorithm>
#include <cstring>

namespace vellmark {
namespace {

constexpr std::size_t leastColumns = 8;
constexpr std::size_t continuationIndent = 2;

bool isContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool isASCII(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t eight = 0;
    for (; text.size() >= sizeof eight; text.remove_prefix(sizeof eight)) {
        std::memcpy(&eight, text.data(), sizeof eight);
        if ((eight & highBits) != 0) {
            return false;
        }
    }
    return std::ranges::all_of(text, [](char byte) { return static_cast<signed char>(byte) >= 0; });
}

/// What a double click takes together; letters of all scripts count.
bool isWordByte(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x80 || (value >= '0' && value <= '9') || (value >= 'A' && value <= 'Z') ||
           (value >= 'a' && value <= 'z') || value == '_';
}

/// How much of `line` fits into `room` columns, at least a character.
std::size_t fitting(std::string_view line, std::size_t room, bool lineIsASCII) {
    if (lineIsASCII) {
        return std::min(line.size(), room);
    }
    std::size_t taken = 0;
    for (std::size_t at = 0; at < line.size();) {
        std::size_t next = at;
        taken += WrappedText::columnsOf(nextCharacter(line, next));
        if (taken > room && at > 0) {
            return at;
        }
        at = next;
    }
    return line.size();
}

/// Where to break before `most`: behind the last blank, unless that leaves half a row empty.
std::size_t breakBefore(std::string_view line, std::size_t most) {
    const std::size_t blank = line.rfind(' ', most);
    if (blank == std::string_view::npos || blank < most / 2) {
        return most;
    }
    return std::min(line.find_first_not_of(' ', blank), line.size());
}

} // namespace

std::size_t WrappedText::columnsOf(char32_t character) {
    return character < 0x20 || character == 0x7F ? 1 : characterWidth(character);
}

void WrappedText::wrap(std::size_t columns) {
    columns = std::max(columns, leastColumns);
    if (columns == columns_) {
        return;
    }
    columns_ = columns;
    starts_.clear();
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = std::min(text_.find('\n', begin), text_.size());
        wrapLine(begin, end);
        if (end == text_.size()) {
            return;
        }
        begin = end + 1;
    }
}

void WrappedText::wrapLine(std::size_t begin, std::size_t end) {
    starts_.push_back({static_cast<std::uint32_t>(begin), 0});
    // No character takes more columns than bytes.
    if (end - begin <= columns_) {
        return;
    }
    const std::string_view line = text_.substr(begin, end - begin);
    const bool lineIsASCII = isASCII(line);
    const std::size_t own = std::min(line.find_first_not_of(' '), line.size());
    const std::size_t indent = std::min(own + continuationIndent, columns_ / 2);
    std::size_t at = 0;
    for (std::size_t room = columns_;; room = columns_ - indent) {
        const std::string_view rest = line.substr(at);
        const std::size_t most = fitting(rest, room, lineIsASCII);
        if (most == rest.size()) {
            return;
        }
        at += breakBefore(rest, most);
        if (at == line.size()) {
            return; // nothing but blanks
        }
        starts_.push_back(
            {static_cast<std::uint32_t>(begin + at), static_cast<std::uint32_t>(indent)});
    }
}

WrappedText::Row WrappedText::row(std::size_t index) const {
    const Start start = starts_[index];
    std::size_t end = text_.size();
    if (index + 1 < starts_.size()) {
        end = starts_[index + 1].begin;
        // Only what follows a line's end begins at the left.
        end -= starts_[index + 1].column == 0 ? 1 : 0;
    }
    return {start.begin, end, start.column};
}

std::size_t WrappedText::rowOf(std::size_t place) const {
    const auto next = std::ranges::upper_bound(
        starts_, place, {}, [](const Start& start) { return std::size_t{start.begin}; });
    return static_cast<std::size_t>(next - starts_.begin()) - 1;
}

std::size_t WrappedText::columnOf(std::size_t place) const {
    const Row shown = row(rowOf(place));
    std::size_t column = shown.column;
    for (std::size_t at = shown.begin; at < std::min(place, shown.end);) {
        column += columnsOf(nextCharacter(text_, at));
    }
    return column;
}

std::size_t WrappedText::placeAt(std::size_t index, double column) const {
    const Row shown = row(index);
    const bool isBroken = index + 1 < starts_.size() && starts_[index + 1].column > 0;
    // Behind the last character of a broken row is the row below.
    const std::size_t end = isBroken ? before(shown.end) : shown.end;
    auto left = static_cast<double>(shown.column);
    for (std::size_t at = shown.begin; at < end;) {
        std::size_t next = at;
        const auto wide = static_cast<double>(columnsOf(nextCharacter(text_, next)));
        if (column < left + wide / 2) {
            return at;
        }
        left += wide;
        at = next;
    }
    return end;
}

std::size_t WrappedText::before(std::size_t place) const {
    while (place > 0 && isContinuationByte(text_[--place])) {
    }
    return place;
}

std::size_t WrappedText::after(std::size_t place) const {
    if (place < text_.size()) {
        nextCharacter(text_, place);
    }
    return place;
}

std::size_t WrappedText::wordBegin(std::size_t place) const {
    if (place >= text_.size() || !isWordByte(text_[place])) {
        return place;
    }
    while (place > 0 && isWordByte(text_[place - 1])) {
        --place;
    }
    return place;
}

std::size_t WrappedText::wordEnd(std::size_t place) const {
    if (place >= text_.size() || !isWordByte(text_[place])) {
        return after(place);
    }
    while (place < text_.size() && isWordByte(text_[place])) {
        ++place;
    }
    return place;
}

} // namespace vellmark
