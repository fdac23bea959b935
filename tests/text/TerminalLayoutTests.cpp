#include "text/TerminalLayout.h"
#include "text/TerminalText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>

namespace vellmark {
namespace {

std::string times(std::size_t count, std::string_view piece) {
    std::string text;
    while (count-- > 0) {
        text += piece;
    }
    return text;
}

TEST(TerminalLayout, ShowsWhatATerminalWould) {
    const std::pair<std::string, std::string> cases[] = {
        // Control characters.
        {"12%\r88%\r\nx", "88%\nx"},
        {"abc\b\bX", "aXc"},
        {"a\b\b\bX", "X"},
        {"a\rb\tc\x07", "b       c"},
        {"a\rb\vc\fd", "b\nc\nd"},
        // Relative moves; nothing is above the first line.
        {"one\r\ntwo\r\n\x1b[2A\x1b[2CX\x1b[B\x1b[DY\r\nend", "onX\ntwY\nend"},
        {"a\x1b[9A\x1b[9DX", "X"},
        {"ab\x1b[2Ec\x1b[2FX\x1b[3GY", "XbY\n\nc"},
        {"a\x1b[2Bb\x1b[2ec\x1b[0D\x1b[1ad", "a\n\n b\n\n  cd"},
        {"abc\x1b[2`X\x1b[IY\x1b[ZZ", "aXc     Z"},
        {"\x1b[3B\x1b[2AX", "\nX"},
        // A page that is taller than any screen is gone over to its top.
        {times(100, "old\r\n") + "\x1b[100A" + times(100, "new\r\n"), times(99, "new\n") + "new"},
        // Places on the screen are those of the 24 lowest rows.
        {"a\r\nb\x1b[HX\x1b[2;3HY\x1b[1dZ\x1b[;fW", "W  Z\nb Y"},
        {times(30, "l\r\n") + "\x1b[HX\x1b[99;2HY",
         times(7, "l\n") + "X\n" + times(22, "l\n") + " Y"},
        {"ab\x1b[2;5rX", "Xb"},
        {"a\x1b[SX\x1b[HY", "a\nYX"},
        {"a\x1b[2TX", " X\n\na"},
        // Erasing.
        {"abcdef\x1b[4G\x1b[K", "abc"},
        {"abcdef\x1b[3G\x1b[1K", "   def"},
        {"abcdef\x1b[3G\x1b[2KX", "  X"},
        {"abcdef\x1b[3G\x1b[?K", "ab"},
        {"a\r\nbcd\r\ne\x1b[A\x1b[J", "a\nb"},
        {"a\r\nbcd\r\ne\x1b[A\x1b[1J", "\n  d\ne"},
        {"a\r\nb\x1b[2J\x1b[HX", "X"},
        {"a\r\nb\x1b[2JX", "\n X"},
        {times(30, "l\r\n") + "\x1b[2JX", times(23, "\n") + "X"},
        {times(30, "l\r\n") + "\x1b[3Jx", times(7, "\n") + times(23, "l\n") + "x"},
        {"abcdef\x1b[2G\x1b[3X", "a   ef"},
        // Inserting and deleting.
        {"abcdef\x1b[2G\x1b[2@X", "aX bcdef"},
        {"abcdef\x1b[2G\x1b[2PX", "aXef"},
        {"abc\x1b[2G\x1b[99P", "a"},
        {"a\r\nb\r\nc\x1b[2A\x1b[2LX", "X\n\na\nb\nc"},
        {"a\r\nb\r\nc\x1b[2A\x1b[MX", "X\nc"},
        {"abc\x1b[2G\x1b[4hX\x1b[4lY", "aXYc"},
        {"ab\x1b[3b", "abbbb"},
        // Saving, restoring, indexes, reset.
        {"a\x1b[s\r\nb\x1b[uX", "aX\nb"},
        {"a\x1b"
         "7\r\nb\x1b"
         "8X",
         "aX\nb"},
        {"ab\x1b[D\x1b"
         "DX\x1b"
         "EY\x1bMZ",
         "ab\n Z\nY"},
        {"a\x1bMX", " X\na"},
        {"a\r\nb\x1b"
         "cX",
         "X"},
        // The other screen stands in the main one's place for as long as it is shown.
        {"a\x1b[?1049hb\x1b[Hc", "cb"},
        {"a\x1b[?1049hb\x1b[?1049lX", "aX"},
        {"a\x1b[?1000h\x1b[?1047hb\x1b[?25l\x1b[?1047l", "a"},
        // Wide characters have two columns, marks none.
        {"漢字\x1b[3GX", "漢X"},
        {"漢字\x1b[GX", "X 字"},
        {"漢字\x1b[2GX", " X字"},
        {"漢字\x1b[4GX", "漢 X"},
        {"漢字x\x1b[3G\x1b[1K", "    x"},
        {"x漢\x1b[3G\x1b[K", "x"},
        {"漢字x\x1b[2G\x1b[P", " 字x"},
        {"ab\x1b[2G漢", "a漢"},
        {"😀%\x1b[3G!", "😀!"},
        {"ae\u0301\u0323b\x1b[3GX", "ae\u0301\u0323X"},
        {"ae\u0301\x1b[2GX", "aX"},
        {"漢\u0301\x1b[3GX", "漢\u0301X"},
        {"\u0301\rX", "X"},
        // Sequences that are none of these, cut off or broken, leave no trace.
        {"a\x1b]0;ti\x1b[Dtle\x07"
         "b\rX",
         "Xleb"},
        {"\x1b]133;A;redraw=0\x07\x1bP1$q\x1b\\\x1b_x\x1b\\\x1b^x\u009c\x1bXx\x07"
         "a\b\x1b[>4m\x1b[<u\x1b[?u\x1b[>0q\x1b[cb",
         "b"},
        {"ab\x1b[?5D\x1b[5 D\x1b[!p\x1b(0\x1b=\x1b[?2026h\x1b[6n\rX", "Xb"},
        {"ab\x1b[1\rDX\x1b[12", "Xb"},
        {"ab\x1b[\x18X\x1b[1\x1a\x1b[1\x1b[DY", "abY"},
        {"ab\x1b[9éc\x1b[D\x7fX", "abX"},
        {"ab\u009b2DX\u0085c", "Xb\nc"},
        {"ab\x1b[;5H\x1b[38;5;12;1;2;3;4mX", "ab  X"},
        {"\xff\xe2\x82\rX", "X\uFFFD"},
        // Blanks at the ends stay unseen.
        {"a  \r\n\x1b[Ab  \r\n\r\n", "b"},
    };
    for (const auto& [output, expected] : cases) {
        EXPECT_TRUE(movesCursor(output)) << testing::PrintToString(output);
        EXPECT_EQ(laidOutText(output), expected) << testing::PrintToString(output);
    }
}

TEST(TerminalLayout, LeavesLinesAsTheyAre) {
    const std::string lines[] = {
        "",
        "a\nb\r\n\r\r\nc\r",
        "\x1b[1m4\x1b[22m2% used\x1b[0m\x1b[K\r\n\x1b]0;title\x07\x1b[?25l\x1b(Bx\x1b[0J\n",
        "a\r\x1b[0m\nb \t c\x07\x1b=\x1b[12",
        "漢字\u2028e\u0301",
    };
    for (const std::string& output : lines) {
        EXPECT_FALSE(movesCursor(output)) << testing::PrintToString(output);
        EXPECT_EQ(laidOutText(output), stripANSI(output)) << testing::PrintToString(output);
        EXPECT_EQ(drawnText(output), stripANSI(output)) << testing::PrintToString(output);
    }
}

TEST(TerminalLayout, ShowsLinesAlikeWhetherTheCursorMovesOrNot) {
    std::mt19937 random(1); // the same texts each time
    const std::string_view pieces[] = {"a",          "42% used",     " ",     "漢",
                                       "e\u0301",    "\r\n",         "\r\n",  "\x1b[1m",
                                       "\x1b[39;2m", "\x1b]0;t\x07", "\x1b[K"};
    for (int round = 0; round < 300; ++round) {
        std::string output;
        for (int count = 0; count < 40; ++count) {
            output += pieces[random() % std::size(pieces)];
        }
        const std::string before = laidOutText(output);
        ASSERT_EQ(before, stripANSI(output));
        // There and back again.
        const std::string after = laidOutText(output + "\r\nend\x1b[3A\x1b[3B!");
        auto expected = nonEmptyLines(before);
        std::erase_if(expected, [](auto line) { return trimmed(line).empty(); });
        auto lines = nonEmptyLines(after);
        ASSERT_EQ(lines.size(), expected.size() + 1) << testing::PrintToString(output);
        for (std::size_t index = 0; index < expected.size(); ++index) {
            EXPECT_EQ(trimmed(lines[index]), trimmed(expected[index]));
        }
    }
}

TEST(TerminalLayout, TellsAllThatWasDrawnInItsOrder) {
    EXPECT_EQ(drawnText("Email: a@b\r\nkeys\x1b[2K\x1b[A\x1b[2K\x1b[GOrganization: c\rnew"),
              "Email: a@b\nkeys\n Organization: c\nnew");
    EXPECT_EQ(drawnText("Plan\x1b[20GPro\x1b[4C!\b.\x1b[2J"), "Plan Pro !\n.\n");
}

TEST(TerminalLayout, IsBoundedByTheLengthOfTheOutput) {
    // One jump too far is one to the edge.
    for (const char* output : {"a\x1b[1000000000Bb", "a\x1b[1000000000Cb"}) {
        const std::string text = laidOutText(output);
        EXPECT_TRUE(text.starts_with('a') && text.ends_with('b'));
        EXPECT_LT(text.size(), 1100u);
    }
    // Wide rows and many rows are possible, but not many wide ones, nor the same ones over and
    // over.
    const std::string padding(100000, '\n');
    EXPECT_EQ(laidOutText(padding + times(20, "\x1b[99999Cx\r\n")), "");
    EXPECT_EQ(laidOutText(padding + times(200, "\r\x1b[2K\x1b[99999Cx")), "");
    EXPECT_EQ(laidOutText(padding + times(200, "\x1b[2J\x1b[99999Bx")), "");

    constexpr std::size_t size = 1u << 15;
    const std::string_view pieces[] = {
        "\x1b[1000000000Bx",
        "\x1b[1000000000Cx",
        "\x1b[1000000000Cx\x1b[1000000000Bx\r",
        "x\x1b[2J\x1b[999999B",
        "\x1b[2J\x1b[1000000000Bx",
        "\x1b[J\x1b[1000000000Bx\x1b[H",
        "\x1b[2K\x1b[1000000000Cx",
        "\x1b[1000000000b",
        "\x1b[9999@x",
        "\x1b[@",
        "\x1b[P",
        "\x1b[L",
        "\x1b[M",
        "\x1b[9999L\x1b[9999M",
        "\x1b[T",
        "\x1b[S",
        "\x1bM",
        "\x1b[1K",
        "\x1b[1J",
        "\x1b[3J\n",
        "\x1b[999X",
        "\x1b[?1049hx\x1b[?1049lx",
        "\x1b[4hx\r",
        "e\u0301\b",
        "\u0301",
        "\n\x1b[A\n",
        "\x1b[A\x1b[999D",
        "\t",
        "\x1b[",
        "\x1b]",
    };
    for (const std::string_view piece : pieces) {
        // On a wide row, a tall sheet, and both.
        for (const std::string& start :
             {std::string(size / 2, 'y') + "\r\x1b[5C", times(size / 4, "y\n") + "\x1b[999999A"}) {
            const std::string text = laidOutText(start + times(size / 2 / piece.size(), piece));
            EXPECT_LE(text.size(), size * 16) << testing::PrintToString(piece);
        }
    }
}

} // namespace
} // namespace vellmark
