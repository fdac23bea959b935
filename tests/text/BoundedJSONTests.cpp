#include "text/BoundedJSON.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>

namespace vellmark {

TEST(BoundedJSON, BuildsWhatIsThereAndOnlyTheMembersAskedFor) {
    const std::string text =
        R"({"a":{"b":[1,{"c":"x","d":{"c":2}}],"e":[[{"a":1}]]},"f":null,"a":{"b":[3.5,true]}})";
    EXPECT_EQ(serialized(parsedJSON(text), -1), R"({"a":{"b":[3.5,true]},"f":null})");

    const std::string nested = R"({"a":{"b":[1,{"c":"x","d":{"c":2}}],"e":[[{"a":1}]]},"f":7})";
    const std::array<std::string_view, 3> names = {"a", "b", "c"};
    EXPECT_EQ(serialized(parsedJSON(nested, names), -1), R"({"a":{"b":[1,{"c":"x"}]}})");
    EXPECT_EQ(parsedJSON("[1,2]").size(), 2u);
    EXPECT_EQ(parsedJSON("\"text\""), "text");
}

TEST(BoundedJSON, RefusesWhatWouldCostMoreThanItsLength) {
    const auto refused = [](const std::string& text) {
        try {
            parsedJSON(text);
        } catch (const JSONDecodingError&) {
            return true;
        }
        return false;
    };
    std::string members = "{";
    std::string values = "[";
    for (int index = 0; index <= 1'000'000; ++index) {
        values += "0,";
        if (index <= 1000) {
            members += "\"" + std::to_string(index) + "\":0,";
        }
    }
    members.back() = '}';
    values.back() = ']';
    EXPECT_TRUE(refused(members));
    EXPECT_TRUE(refused(values));
    EXPECT_TRUE(refused(std::string(513, '[') + std::string(513, ']')));
    EXPECT_FALSE(refused(std::string(512, '[') + std::string(512, ']')));
    for (const char* text : {"", "{", "[1", "nul", "1 2", "{\"a\"}", "\xFF"}) {
        EXPECT_TRUE(refused(text)) << text;
    }
    const std::array<std::string_view, 1> names = {"rows"};
    EXPECT_EQ(serialized(parsedJSON("{\"other\":" + values + ",\"rows\":1}", names), -1),
              R"({"rows":1})");
}

} // namespace vellmark
