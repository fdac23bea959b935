#include "report/RedactionStream.h"
#include "support/RedactionParts.h"
#include "text/Redaction.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace vellmark {
namespace {

using tests::redactionParts;

std::optional<std::string> streamed(std::string_view text, const std::string& home,
                                    const std::function<std::size_t()>& pieceSize,
                                    std::size_t heldLimit = RedactionStream::mostHeld) {
    RedactionStream stream(home, {}, heldLimit);
    std::string result;
    while (!text.empty()) {
        const auto piece = text.substr(0, pieceSize());
        text.remove_prefix(piece.size());
        const auto certain = stream.add(piece);
        if (!certain) {
            return std::nullopt;
        }
        result += *certain;
    }
    const auto rest = stream.finish();
    return rest ? std::optional(result + *rest) : std::nullopt;
}

// Texts of what the rules care about, in any order, cut anywhere.
TEST(RedactionStream, GivesWhatTheWholeTextGives) {
    std::mt19937 random(1);
    const auto upTo = [&random](std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random);
    };
    for (const std::string home : {"/home/an\nna", "/home/anna", "\n\n"}) {
        for (int round = 0; round < 3000; ++round) {
            std::string text;
            for (std::size_t count = upTo(20); count > 0; --count) {
                text += redactionParts[upTo(std::size(redactionParts) - 1)];
            }
            ASSERT_EQ(streamed(text, home, [&] { return 1 + upTo(12); }), redacted(text, home))
                << testing::PrintToString(text);
        }
    }
}

TEST(RedactionStream, HoldsOnlyWhatASecretMaySpan) {
    RedactionStream stream("/home/anna", {});
    EXPECT_EQ(stream.add("one\ntoken:\n"), "one\n");
    EXPECT_EQ(stream.add("\n \n"), "");
    EXPECT_EQ(stream.add("abcdefghij012345\nleft"), "token <redacted>\n");
    EXPECT_EQ(stream.finish(), "left");
}

TEST(RedactionStream, EndsWhereTooMuchWouldHaveToBeHeld) {
    const std::string text = "harmless\nsecret:\n" + std::string(2000, '\n') + "abcdefghij012345\n";
    EXPECT_EQ(streamed(
                  text, "/home/anna", [] { return 64; }, 1000),
              std::nullopt);
    EXPECT_EQ(streamed(text, "/home/anna", [] { return 64; }), "harmless\nsecret <redacted>\n");
    RedactionStream stream("/home/anna", {}, 10);
    EXPECT_EQ(stream.add("token\n" + std::string(10, '\n')), std::nullopt);
    EXPECT_EQ(stream.add("abcdefghij012345"), std::nullopt) << "nor anything after it";
    EXPECT_EQ(stream.finish(), std::nullopt);
}

} // namespace
} // namespace vellmark
