#include "support/ProjectDirectories.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace vellmark::tests {
namespace {

TEST(WithoutDisplay, TheProgramSaysSoAndEnds) {
    for (const std::string setting : {"-u DISPLAY", "DISPLAY=:nowhere"}) {
        const std::string command = "env -u WAYLAND_DISPLAY " + setting + " QT_QPA_PLATFORM=xcb " +
                                    builtProgram("vellmark-desktop") + " --demo --language en 2>&1";
        std::FILE* output = ::popen(command.c_str(), "r");
        ASSERT_TRUE(output);
        std::string text;
        for (int byte = std::fgetc(output); byte != EOF; byte = std::fgetc(output)) {
            text += static_cast<char>(byte);
        }
        const int status = ::pclose(output);
        EXPECT_TRUE(WIFEXITED(status)) << text;
        EXPECT_EQ(WEXITSTATUS(status), 1) << text;
        EXPECT_NE(text.find("no display"), std::string::npos) << text;
    }
}

} // namespace
} // namespace vellmark::tests
