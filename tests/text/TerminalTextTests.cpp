#include "text/TerminalText.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

namespace vellmark {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TerminalText, SequencesAreRemovedInOrder) {
    const std::pair<std::string, std::string> cases[] = {
        {"4\x1b[1m2\x1b[0m% used", "42% used"},
        {"\x1b[?2004h\x1b[38;5;12;1mx\x1b[2 q", "x"},
        {"\x1b]0;title\x07text", "text"},
        {"\x1b]0;title\x1b\\text", "text"},
        {"\x1b(B\x1b)0text", "text"},
        // A command reaches to the next bell, over the end of another and over lines.
        {"\x1b]0;a\x1b\\b\nc\x07"
         "d",
         "d"},
        {"\x1b]0;a\x1b\\b\x1b\\c", "c"},
        {"\x1b]8;;unended", "\x1b]8;;unended"},
        {"\x1b[12", "\x1b[12"},
        {"\x1b[12\x1b[0mx", "\x1b[12x"},
        // What one pattern leaves behind, a later one may complete.
        {"\x1b\x1b]a\x07[0mx", "x"},
        {"\x1b\x1b[0m]a\x07x", "\x1b]a\x07x"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(stripANSI(text), expected) << testing::PrintToString(text);
    }
}

TEST(TerminalText, ALongRunOfOpenCommandsIsNoTrouble) {
    std::string run;
    while (run.size() < 10000000) {
        run += "\x1b]";
    }
    EXPECT_EQ(stripANSI(run), run);
    EXPECT_EQ(stripANSI(run + "\x07"), "");
}

TEST(TerminalText, LinesEndAtEveryKindOfBreak) {
    EXPECT_THAT(nonEmptyLines("a\nb\r\nc\rd\ve\ff\u0085g\u2028h\u2029i\n\n"),
                ElementsAre("a", "b", "c", "d", "e", "f", "g", "h", "i"));
    EXPECT_THAT(nonEmptyLines(" \n"), ElementsAre(" "));
    EXPECT_THAT(nonEmptyLines("\xE2\x80\na\xC2"), ElementsAre("\xE2\x80", "a\xC2"));
    EXPECT_THAT(nonEmptyLines("\r\n\n"), IsEmpty());
    EXPECT_THAT(nonEmptyLines({}), IsEmpty());
}

TEST(TerminalText, WhiteSpaceIsTrimmed) {
    EXPECT_EQ(trimmed("\u00A0\t a b\u3000\r\n"), "a b");
    EXPECT_EQ(trimmed(" \u2003 "), "");
    EXPECT_EQ(trimmed("\xA0 a\x85"), "\xA0 a\x85");
}

TEST(TerminalText, IllFormedTextIsFoundAndRepaired) {
    for (const char* good : {"", "abc", "ä€😀", "\u07FF\u0800\uFFFF\U0010FFFF"}) {
        EXPECT_TRUE(isValidUTF8(good));
        EXPECT_EQ(repairedUTF8(good), good);
    }
    const std::pair<const char*, const char*> cases[] = {
        {"a\xFFz", "a\uFFFDz"},     {"\xC0\xAF", "\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD"}, {"\xF4\x90\x80\x80", "\uFFFD"},
        {"\xE2\x82", "\uFFFD"},     {"\xE2\x82z\x82", "\uFFFDz\uFFFD"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_FALSE(isValidUTF8(text));
        EXPECT_EQ(repairedUTF8(text), expected);
        EXPECT_TRUE(isValidUTF8(repairedUTF8(text)));
    }
}

TEST(TerminalText, CharactersAreWhatTheUserSees) {
    const std::string family = "👨‍👩‍👧";
    const std::string text = "ae\u0301" + family + "\r\nz";
    EXPECT_EQ(firstCharacters(text, 2), "ae\u0301");
    EXPECT_EQ(firstCharacters(text, 3), "ae\u0301" + family);
    EXPECT_EQ(firstCharacters(text, 99), text);
    EXPECT_EQ(lastCharacters(text, 2), "\r\nz");
    EXPECT_EQ(lastCharacters(text, 3), family + "\r\nz");
    EXPECT_EQ(lastCharacters(text, 5), text);
    EXPECT_EQ(firstCharacters("plain", 3), "pla");
    EXPECT_EQ(firstCharacters("\xFF\xFE\xFD", 2), "\xFF\xFE");
    EXPECT_EQ(firstCharacters(std::string(20000000, '\xCC'), 300).size(), 300U);
}

TEST(TerminalText, OneLineIsSafeToPrint) {
    EXPECT_EQ(singleLine("a\r\nb\tc\nd"), "a b c d");
    EXPECT_EQ(singleLine("\x1b[31mred\x1b[0m\x07\b\x7F"), "red");
    EXPECT_EQ(singleLine("\x1b[31"), "[31");
    EXPECT_EQ(singleLine("a\u202Eb\u2066c\u009B"
                         "1m"),
              "abc1m");
    EXPECT_EQ(singleLine("a\xFF"), "a\uFFFD");
}

} // namespace vellmark
