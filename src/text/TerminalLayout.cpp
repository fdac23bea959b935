#include "text/TerminalLayout.h"

#include "text/Characters.h"
#include "text/TerminalSequences.h"
#include "text/TerminalSheet.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

using Kind = TerminalEvent::Kind;

constexpr std::size_t screenHeight = 24;
constexpr std::size_t tabWidth = 8;
constexpr auto npos = std::u32string_view::npos;

/// Modes of DEC that show another screen in place of the main one.
bool switchesScreen(const TerminalEvent& event) {
    return event.marker == '?' && (event.code == 'h' || event.code == 'l') &&
           std::ranges::any_of(event.parameters, [](std::uint32_t mode) {
               return mode == 47 || mode == 1047 || mode == 1049;
           });
}

bool isErasure(const TerminalEvent& event) {
    return (event.code == 'J' || event.code == 'K') && (event.marker == 0 || event.marker == '?');
}

/// What a control sequence does to where the text stands, not to how it looks.
bool moves(const TerminalEvent& sequence) {
    constexpr std::u32string_view finals = U"@ABCDEFGHILMPSTXZ`abdefru";
    return switchesScreen(sequence) || isErasure(sequence) ||
           (sequence.marker == 0 && finals.find(sequence.code) != npos);
}

bool isLineFeed(char32_t control) {
    return control >= '\n' && control <= '\f';
}

/// Moves to the right or to a column.
bool staysInLine(const TerminalEvent& event) {
    return event.kind == Kind::controlSequence &&
           std::u32string_view(U"CGI`a").find(event.code) != npos;
}

/// Follows output for as long as it shows line after line.
class LineWriting {
public:
    /// True when `event` does something else.
    bool isLeftBy(const TerminalEvent& event) {
        switch (event.kind) {
        case Kind::character:
            hasText_ = true;
            return std::exchange(isBackAtStart_, false);
        case Kind::control:
            if (event.code == '\r') {
                isBackAtStart_ = hasText_;
            } else if (isLineFeed(event.code)) {
                *this = {};
            }
            return event.code == '\b';
        case Kind::escape:
            return event.marker == 0 && std::u32string_view(U"DEM8c").find(event.code) != npos;
        case Kind::controlSequence:
            // At the end of a line there is nothing to erase.
            return moves(event) &&
                   (isBackAtStart_ || !isErasure(event) || event.parameters[0] != 0);
        }
        return false;
    }

private:
    bool hasText_ = false;
    bool isBackAtStart_ = false;
};

class Terminal {
public:
    explicit Terminal(std::size_t bytes) : main_(bytes), alternate_(bytes) {}

    void take(const TerminalEvent& event);
    std::string text() const { return screen_->sheet.text(); }

private:
    struct Place {
        std::size_t row = 0;
        std::size_t column = 0;
    };
    struct Screen {
        explicit Screen(std::size_t bytes) : sheet(bytes) {}
        TerminalSheet sheet;
        Place cursor;
        Place saved;
        /// The row that the program calls its first.
        std::size_t top = 0;
    };

    TerminalSheet& sheet() { return screen_->sheet; }
    Place& cursor() { return screen_->cursor; }
    std::size_t top() const { return screen_->top; }

    void show(char32_t character);
    void takeControl(char32_t control);
    void takeEscape(const TerminalEvent& event);
    void takeSequence(const TerminalEvent& event);
    void moveTo(std::size_t row, std::size_t column);
    void moveToRow(std::size_t row);
    void up(std::size_t count) { cursor().row -= std::min(cursor().row, count); }
    void down(std::size_t count) { moveTo(cursor().row + count, cursor().column); }
    void right(std::size_t count) { moveTo(cursor().row, cursor().column + count); }
    void left(std::size_t count) { cursor().column -= std::min(cursor().column, count); }
    void feedLine();
    void scrollToCursor();
    void eraseDisplay(std::uint32_t what);
    void eraseLine(std::uint32_t what);
    void scroll(std::size_t count);
    void repeat(std::size_t count);
    void switchScreen(bool toAlternate);
    void clear();

    Screen main_;
    Screen alternate_;
    Screen* screen_ = &main_;
    char32_t lastShown_ = ' ';
    bool inserts_ = false;
};

void Terminal::take(const TerminalEvent& event) {
    switch (event.kind) {
    case Kind::character:
        show(event.code);
        break;
    case Kind::control:
        takeControl(event.code);
        break;
    case Kind::escape:
        takeEscape(event);
        break;
    case Kind::controlSequence:
        takeSequence(event);
        break;
    }
}

void Terminal::show(char32_t character) {
    const std::size_t width = characterWidth(character);
    const auto [row, column] = cursor();
    if (width == 0) {
        sheet().addMark(row, column, character);
        return;
    }
    if (inserts_) {
        sheet().insertBlanks(row, column, width);
    }
    sheet().put(row, column, character, width);
    scrollToCursor();
    lastShown_ = character;
    right(width);
}

void Terminal::takeControl(char32_t control) {
    if (control == '\r') {
        cursor().column = 0;
    } else if (control == '\b') {
        left(1);
    } else if (control == '\t') {
        right(tabWidth - cursor().column % tabWidth);
    } else if (isLineFeed(control)) {
        cursor().column = 0;
        feedLine();
    }
}

void Terminal::takeEscape(const TerminalEvent& event) {
    if (event.marker != 0) {
        return;
    }
    switch (event.code) {
    case 'E': // next line
        cursor().column = 0;
        [[fallthrough]];
    case 'D': // index
        feedLine();
        break;
    case 'M': // reverse index
        if (cursor().row == 0) {
            sheet().insertRows(0, 1);
        }
        up(1);
        break;
    case '7':
        screen_->saved = cursor();
        break;
    case '8':
        cursor() = screen_->saved;
        break;
    case 'c': // reset
        switchScreen(false);
        clear();
        cursor() = {};
        break;
    default:
        break;
    }
}

void Terminal::takeSequence(const TerminalEvent& event) {
    const std::uint32_t parameter = event.parameters[0];
    const std::size_t count = std::max<std::size_t>(parameter, 1);
    if (switchesScreen(event)) {
        switchScreen(event.code == 'h');
        return;
    }
    if (event.marker != 0 && !isErasure(event)) {
        return;
    }
    const auto [row, column] = cursor();
    switch (event.code) {
    case 'A':
        up(count);
        break;
    case 'B':
    case 'e':
        down(count);
        break;
    case 'C':
    case 'a':
        right(count);
        break;
    case 'D':
        left(count);
        break;
    case 'E':
        moveTo(row + count, 0);
        break;
    case 'F':
        up(count);
        cursor().column = 0;
        break;
    case 'G':
    case '`':
        moveTo(row, count - 1);
        break;
    case 'H':
    case 'f':
        moveToRow(count);
        moveTo(cursor().row, std::max<std::size_t>(event.parameters[1], 1) - 1);
        break;
    case 'd':
        moveToRow(count);
        break;
    case 'r': // scroll region: there is nothing to scroll, but the cursor goes home
        moveToRow(1);
        cursor().column = 0;
        break;
    case 'I':
        right(tabWidth * count - column % tabWidth);
        break;
    case 'Z':
        left(column == 0 ? 0 : tabWidth * (count - 1) + (column - 1) % tabWidth + 1);
        break;
    case 'J':
        eraseDisplay(parameter);
        break;
    case 'K':
        eraseLine(parameter);
        break;
    case 'X':
        sheet().erase(row, column, column + count);
        break;
    case '@':
        sheet().insertBlanks(row, column, count);
        break;
    case 'P':
        sheet().deleteCells(row, column, count);
        break;
    case 'L':
        sheet().insertRows(row, count);
        cursor().column = 0;
        break;
    case 'M':
        sheet().deleteRows(row, count);
        cursor().column = 0;
        break;
    case 'S':
        scroll(count);
        break;
    case 'T':
        sheet().insertRows(top(), std::min(count, screenHeight));
        break;
    case 'b':
        repeat(count);
        break;
    case 's':
        screen_->saved = cursor();
        break;
    case 'u':
        cursor() = screen_->saved;
        break;
    case 'h':
    case 'l':
        inserts_ = parameter == 4 ? event.code == 'h' : inserts_;
        break;
    default:
        break;
    }
}

void Terminal::moveTo(std::size_t row, std::size_t column) {
    const std::size_t last = sheet().extent() - 1;
    cursor() = {std::min(row, last), std::min(column, last)};
}

/// To a row that is counted from 1 on the screen.
void Terminal::moveToRow(std::size_t row) {
    moveTo(top() + std::min(row, screenHeight) - 1, cursor().column);
}

void Terminal::feedLine() {
    down(1);
    scrollToCursor();
}

void Terminal::scrollToCursor() {
    const std::size_t row = cursor().row;
    screen_->top = std::max(top(), row - std::min(row, screenHeight - 1));
}

void Terminal::eraseDisplay(std::uint32_t what) {
    const auto [row, column] = cursor();
    switch (what) {
    case 0:
        sheet().eraseFrom(row, column);
        sheet().eraseRowsFrom(row + 1);
        break;
    case 1:
        sheet().eraseRowsBefore(row);
        sheet().erase(row, 0, column + 1);
        break;
    case 2:
        clear();
        break;
    case 3: // what has left the screen at the top
        sheet().eraseRowsBefore(top());
        break;
    default:
        break;
    }
}

void Terminal::eraseLine(std::uint32_t what) {
    const auto [row, column] = cursor();
    switch (what) {
    case 0:
        sheet().eraseFrom(row, column);
        break;
    case 1:
        sheet().erase(row, 0, column + 1);
        break;
    case 2:
        sheet().eraseFrom(row, 0);
        break;
    default:
        break;
    }
}

/// The text moves up under the cursor; what leaves the screen stays above it.
void Terminal::scroll(std::size_t count) {
    count = std::min(count, screenHeight);
    down(count);
    screen_->top = std::min(top() + count, cursor().row);
}

void Terminal::repeat(std::size_t count) {
    constexpr std::size_t cellsWorth = 16;
    count = std::min(count, sheet().extent());
    if (sheet().spend(cellsWorth * count)) {
        for (; count > 0; --count) {
            show(lastShown_);
        }
    }
}

void Terminal::switchScreen(bool toAlternate) {
    if (toAlternate == (screen_ == &alternate_)) {
        return;
    }
    const Place place{cursor().row - std::min(cursor().row, top()), cursor().column};
    screen_ = toAlternate ? &alternate_ : &main_;
    if (toAlternate) { // it begins empty, with the cursor where it was on the other
        clear();
        cursor() = place;
    }
}

/// Clears everything, including what has scrolled off: an old page above a new one could be taken
/// for part of it. The screen begins where the sheet begins.
void Terminal::clear() {
    sheet().eraseRowsFrom(0);
    for (Place* place : {&screen_->cursor, &screen_->saved}) {
        place->row -= std::min(place->row, top());
    }
    screen_->top = 0;
}

} // namespace

bool movesCursor(std::string_view output) {
    TerminalSequences sequences(output);
    LineWriting line;
    for (TerminalEvent event; sequences.next(event);) {
        if (line.isLeftBy(event)) {
            return true;
        }
    }
    return false;
}

std::string drawnText(std::string_view output) {
    if (!movesCursor(output)) {
        return stripANSI(output);
    }
    std::string text;
    TerminalSequences sequences(output);
    LineWriting line;
    for (TerminalEvent event; sequences.next(event);) {
        if (line.isLeftBy(event)) {
            text += staysInLine(event) ? " " : text.ends_with('\n') ? "" : "\n";
        }
        if (event.kind == Kind::character) {
            appendCharacter(text, event.code);
        } else if (event.kind == Kind::control && (isLineFeed(event.code) || event.code == '\t')) {
            text.push_back(static_cast<char>(event.code));
        }
    }
    return text;
}

std::string laidOutText(std::string_view output) {
    if (!movesCursor(output)) {
        return stripANSI(output);
    }
    Terminal terminal(output.size());
    TerminalSequences sequences(output);
    for (TerminalEvent event; sequences.next(event);) {
        terminal.take(event);
    }
    return terminal.text();
}

} // namespace vellmark
