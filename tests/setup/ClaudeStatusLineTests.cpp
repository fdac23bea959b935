#include "setup/ClaudeStatusLine.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace vellmark {
namespace {

using nlohmann::json;
using Kind = ChangedLine::Kind;

const std::string program = "/opt/it's here/vellmark";

std::string installed(const std::string& settings) {
    return withStatusLine(settings, program).value_or("there already");
}

/// Whatever the file looks like, the rest of it stays byte for byte as it is.
TEST(ClaudeStatusLine, GoesInAndOutOfAnySettings) {
    const std::vector<std::string> all{
        "{\n  \"model\": \"opus\"\n}\n",
        "{\"model\":\"opus\",\"env\":{\"a\":[1,{\"b\":\"}\\\"\"}]}}",
        "{\n\t\"model\": \"opus\",\r\n\t\"list\": [1, 2]\n}",
        "{ \"a\": 1.5e3 , \"b\":null}\n\n",
    };
    for (const std::string& settings : all) {
        const std::string with = installed(settings);
        const json changed = json::parse(with);
        json expected = json::parse(settings);
        expected["statusLine"] = changed["statusLine"];
        EXPECT_EQ(changed, expected) << with;
        EXPECT_EQ(changed["statusLine"]["command"],
                  "'/opt/it'\\''s here/vellmark' statusline --color always");
        EXPECT_FALSE(withoutStatusLine(settings));
        EXPECT_EQ(installed(with), "there already");
        EXPECT_EQ(withoutStatusLine(with), settings);
    }
    for (const char* empty : {"", " \n", "{}"}) {
        const std::string with = installed(empty);
        EXPECT_EQ(json::parse(with).size(), 1u) << with;
        EXPECT_EQ(json::parse(*withoutStatusLine(with)), json::object());
    }
    // The first of several members.
    EXPECT_EQ(withoutStatusLine("{\"statusLine\":" +
                                json::parse(installed("{}"))["statusLine"].dump() + ", \"b\": 2}"),
              "{\"b\": 2}");
}

TEST(ClaudeStatusLine, KeepsWhatWasThere) {
    const std::string mine =
        R"x({"statusLine": {"type": "command", "command": "a 'b' \"c\" \\ $(d)", "padding": 2}})x";
    const std::string with = installed(mine);
    EXPECT_EQ(json::parse(with)["statusLine"]["padding"], 2);
    EXPECT_EQ(json::parse(*withoutStatusLine(with)), json::parse(mine));
    // A moved program is told so, and goes on running the other one.
    const std::string moved = withStatusLine(with, "/elsewhere/vellmark").value();
    EXPECT_EQ(json::parse(*withoutStatusLine(moved)), json::parse(mine));
    // The last of two members of a name counts, also one that is written in escapes.
    EXPECT_TRUE(withoutStatusLine("{\"statusLine\": null, \"status\\u004cine\": " +
                                  json::parse(with)["statusLine"].dump() + "}"));
    EXPECT_FALSE(withoutStatusLine(mine)) << "not ours";
}

TEST(ClaudeStatusLine, RefusesWhatItDoesNotUnderstand) {
    const auto kindOf = [](const std::string& settings) {
        try {
            withStatusLine(settings, program);
        } catch (const ClaudeSettingsFault& fault) {
            return fault.kind == ClaudeSettingsFault::Kind::notJSON ? "not JSON" : "unknown";
        }
        return "fine";
    };
    for (const char* text : {"[]", "{", "{\"a\":}", "{} x", "{ // c\n}"}) {
        EXPECT_STREQ(kindOf(text), "not JSON") << text;
    }
    EXPECT_STREQ(kindOf(R"({"statusLine": {"type": "static", "text": "x"}})"), "unknown");
    EXPECT_STREQ(kindOf(R"({"statusLine": null})"), "fine");
}

TEST(ClaudeStatusLine, ShowsWhatChanges) {
    EXPECT_EQ(changedLines("a\nb\nc\nd\ne\nf\n", "a\nb\nc\nx\ny\ne\nf\n"),
              (std::vector<ChangedLine>{{Kind::same, "b"},
                                        {Kind::same, "c"},
                                        {Kind::removed, "d"},
                                        {Kind::added, "x"},
                                        {Kind::added, "y"},
                                        {Kind::same, "e"},
                                        {Kind::same, "f"}}));
    EXPECT_EQ(changedLines("", "a\n"), (std::vector<ChangedLine>{{Kind::added, "a"}}));
    EXPECT_EQ(changedLines("a\na\n", "a\n").size(), 2u);
}

} // namespace
} // namespace vellmark
