#include "platform/SystemDirectories.h"

#include <gtest/gtest.h>

namespace vellmark {
namespace {

TEST(SystemDirectories, AbsolutePathsInTheVariablesCount) {
    const auto expect = [](const Environment& environment, const char* support,
                           const char* configuration, const char* temporary) {
        const auto directories = SystemDirectories::of("/home/ada", environment);
        EXPECT_EQ(directories.applicationSupport, support);
        EXPECT_EQ(directories.configuration, configuration);
        EXPECT_EQ(directories.temporary, temporary);
    };
    expect({}, "/home/ada/.local/share", "/home/ada/.config", "/tmp");
    expect({{"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}}, "/home/ada/.local/share",
           "/home/ada/.config", "/tmp");
    expect({{"XDG_DATA_HOME", "/data"}, {"XDG_CONFIG_HOME", "/cfg"}, {"TMPDIR", "/t"}}, "/data",
           "/cfg", "/t");
}

} // namespace
} // namespace vellmark
