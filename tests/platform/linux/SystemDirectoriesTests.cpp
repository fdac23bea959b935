#include "platform/SystemDirectories.h"

#include <gtest/gtest.h>

namespace vellmark {
namespace {

TEST(SystemDirectories, AbsolutePathsInTheVariablesCount) {
    const auto plain = SystemDirectories::of("/home/ada", {});
    EXPECT_EQ(plain.applicationSupport, "/home/ada/.local/share");
    EXPECT_EQ(plain.configuration, "/home/ada/.config");
    EXPECT_EQ(plain.temporary, "/tmp");

    const auto chosen = SystemDirectories::of(
        "/home/ada", {{"XDG_DATA_HOME", "/data"}, {"XDG_CONFIG_HOME", "/cfg"}, {"TMPDIR", "/t"}});
    EXPECT_EQ(chosen.applicationSupport, "/data");
    EXPECT_EQ(chosen.configuration, "/cfg");
    EXPECT_EQ(chosen.temporary, "/t");

    const auto useless =
        SystemDirectories::of("/home/ada", {{"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}});
    EXPECT_EQ(useless.applicationSupport, "/home/ada/.local/share");
    EXPECT_EQ(useless.configuration, "/home/ada/.config");
}

} // namespace
} // namespace vellmark
