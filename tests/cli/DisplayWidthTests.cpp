#include "cli/DisplayWidth.h"

#include <gmock/gmock.h>

#include <utility>

namespace vellmark {
namespace {

using testing::ElementsAre;

TEST(DisplayWidth, CountsColumnsNotBytes) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"", 0},
        {"Übrig", 5},
        {"日本語", 6},
        {"e\xCC\x81", 1}, // letter and combining accent
        {"a\xE2\x80\x8D"
         "b",
         2},                     // zero-width joiner
        {"\xF0\x9F\x98\x80", 2}, // emoji
        {"a\xFF"
         "b",
         3}, // ill-formed: shown as a replacement character
    };
    for (const auto& [text, width] : cases) {
        EXPECT_EQ(displayWidth(text), width) << text;
    }
}

TEST(DisplayWidth, CutsWithoutSplittingACharacter) {
    EXPECT_EQ(cutToWidth("Antigravity", 11), "Antigravity");
    EXPECT_EQ(cutToWidth("Antigravity", 5), "Anti…");
    EXPECT_EQ(cutToWidth("日本語", 4), "日…");
    EXPECT_EQ(cutToWidth("日本語", 1), "…");
    EXPECT_EQ(cutToWidth("日本語", 0), "");
}

TEST(DisplayWidth, WrapsAtBlanksAndInsideLongWords) {
    EXPECT_THAT(wrapped("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("/a/very/long/path end", 8), ElementsAre("/a/very/", "long/pat", "h end"));
    EXPECT_THAT(wrapped("", 8), ElementsAre(""));
    // A width that nothing fits into must end all the same.
    EXPECT_THAT(wrapped("日本", 0), ElementsAre("日", "本"));
}

} // namespace
} // namespace vellmark
