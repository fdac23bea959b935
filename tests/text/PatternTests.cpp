#include "text/Pattern.h"

#include <gtest/gtest.h>

namespace vellmark {

namespace {

std::string firstMatch(const char* expression, std::string_view text) {
    const auto match = Pattern(expression).search(text);
    return match ? std::string(match->whole()) : "-";
}

} // namespace

TEST(Pattern, ClassesGoByUnicode) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {R"(a\sb)", "a\u00A0b", "a\u00A0b"},
        {R"(a\sb)", "a\vb", "a\vb"},
        {R"(\S+)", "\u2003word\u3000", "word"},
        {R"([^\s@]+)", "x\u2009y", "x"},
        {R"([\s-]+)", "5\u00A0- h", "\u00A0- "},
        {R"(\d+)", "\u0664\u0662", "\u0664\u0662"},
        {R"(\D)", "4\u0664x", "x"},
        {R"([\D]+)", "4\u0664x", "x"},
        {R"(\w+)", "-größe\u0301-", "größe\u0301"},
        {R"(.+)", "one\rtwo", "one"},
        {R"(.+)", "one\u2028two", "one"},
        {R"(a.c)", "a\nc", "-"},
        {R"([.]+)", "a..b", ".."},
        {R"(\.)", "a.b", "."},
        {R"([\]x]+)", "a]x", "]x"},
        {R"((?i)GRÖSSE)", "größe grösse", "grösse"},
        {R"(x*)", "", ""},
    };
    for (const auto& [expression, text, expected] : cases) {
        EXPECT_EQ(firstMatch(expression, text), expected) << expression;
    }
}

TEST(Pattern, GroupsPointIntoTheText) {
    const Pattern pattern(R"((\d+)%(?: (used)| (left))?)");
    const std::string text = "Ä 11% left 7% used";
    const auto first = pattern.search(text);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->position, 3U);
    EXPECT_EQ(first->group(1), "11");
    EXPECT_EQ(first->group(1).data(), text.data() + 3);
    EXPECT_FALSE(first->groups[2]);
    EXPECT_EQ(first->group(3), "left");
    EXPECT_EQ(pattern.search(text, first->position + 1)->group(1), "1");
    EXPECT_EQ(pattern.search(text, 6)->group(2), "used");
    EXPECT_FALSE(pattern.search(text, text.size() + 1));
    EXPECT_FALSE(Pattern("^7").search(text, 12));
}

TEST(Pattern, EveryMatchIsReplaced) {
    const auto replaced = [](const char* expression, std::string_view text, const char* by) {
        return Pattern(expression).replaceAll(text, by).value_or("-");
    };
    EXPECT_EQ(replaced(R"((\w+)@(\w+))", "a@b, c@d", "$2 at $1 $3 $"), "b at a $3 $, d at c $3 $");
    EXPECT_EQ(replaced("(a)|b", "ab", "<$1>"), "<a><>");
    EXPECT_EQ(replaced("x*", "äxb", "-"), "-ä--b-");
    EXPECT_EQ(replaced("b",
                       "a\xFF"
                       "b\xC3",
                       ""),
              "a\xFF\xC3");
    EXPECT_EQ(replaced("a", {}, "b"), "");
    EXPECT_EQ(replaced("(", "a", "b"), "-");
}

TEST(Pattern, IllFormedTextAndExpressionsDoNotMatch) {
    EXPECT_EQ(firstMatch("[^x]+", "\xFF\xFE"), "-");
    EXPECT_EQ(firstMatch("[^x]+", "\xFF"
                                  "ab"),
              "ab");
    for (const char* expression : {"(", "a{2000}{2000}", "\\", "(?<=a)b", "[b-a]", "\xFF"}) {
        const Pattern pattern(expression);
        EXPECT_FALSE(pattern.isValid()) << expression;
        EXPECT_FALSE(pattern.search("ab"));
        EXPECT_FALSE(pattern.matches("ab"));
        EXPECT_FALSE(pattern.replaceAll("ab", ""));
    }
}

} // namespace vellmark
