#include "platform/CommandLineTool.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace vellmark::tests {
namespace {
using State = CommandLineTool::State;

class CommandLineToolTest : public testing::Test {
protected:
    TemporaryDirectory directory;
    fs::path bundle = directory / "Applications" / "Vellmark.app";
    fs::path desktop = bundle / "Contents" / "MacOS" / "Vellmark";
    fs::path program = bundle / "Contents" / "Helpers" / "vellmark";
    fs::path link = directory / "usr" / "local" / "bin" / "vellmark";
    CommandLineTool tool{program, link};

    void SetUp() override {
        writeFile(desktop, "");
        writeFile(program, "");
    }
};

TEST_F(CommandLineToolTest, IsALinkThatComesAndGoes) {
    EXPECT_EQ(tool.state(), State::off);
    EXPECT_FALSE(tool.setOn(true)) << "the folder is made, too";
    EXPECT_EQ(fs::read_symlink(link), program);
    EXPECT_EQ(tool.state(), State::on);
    EXPECT_FALSE(tool.setOn(true));
    EXPECT_FALSE(tool.setOn(false));
    EXPECT_EQ(tool.state(), State::off);
    EXPECT_FALSE(fs::is_symlink(fs::symlink_status(link)));
    EXPECT_TRUE(fs::exists(program));
}

TEST_F(CommandLineToolTest, LeavesAloneWhatIsNotItsOwn) {
    const fs::path other = directory / "other" / "Vellmark.app" / "Contents/Helpers/vellmark";
    writeFile(other, "");
    const fs::path chain = directory / "Cellar" / "vellmark";
    fs::create_directories(chain.parent_path());
    fs::create_symlink(program, chain);
    const auto isLeftAlone = [&](State state) {
        EXPECT_EQ(tool.state(), state);
        for (const bool isOn : {true, false}) {
            EXPECT_EQ(tool.setOn(isOn), std::errc::file_exists);
        }
    };
    writeFile(link, "a script of the user's");
    isLeftAlone(State::foreign);
    for (const fs::path& target : {other, directory / "gone" / "vellmark", fs::path("vellmark")}) {
        fs::remove(link);
        fs::create_symlink(target, link);
        isLeftAlone(State::foreign);
        EXPECT_EQ(fs::read_symlink(link), target);
    }
    fs::remove(link);
    fs::create_symlink(chain, link);
    isLeftAlone(State::kept);
    EXPECT_EQ(fs::read_symlink(link), chain);
}

TEST_F(CommandLineToolTest, ReplacesTheLinkOfABundleThatMoved) {
    ASSERT_FALSE(tool.setOn(true));
    const fs::path moved = directory / "home" / "Vellmark.app";
    fs::create_directories(moved.parent_path());
    fs::rename(bundle, moved);
    const CommandLineTool after(moved / "Contents" / "Helpers" / "vellmark", link);
    EXPECT_EQ(after.state(), State::leftBehind);
    EXPECT_FALSE(after.setOn(true));
    EXPECT_EQ(after.state(), State::on);
}

TEST_F(CommandLineToolTest, TellsWhereItTakesAnAdministrator) {
    EXPECT_TRUE(tool.mayChange()) << "the folder can be made";
    // Below a file there is no folder.
    const CommandLineTool nowhere(program, desktop / "bin" / "vellmark");
    EXPECT_FALSE(nowhere.mayChange());
    EXPECT_TRUE(nowhere.setOn(true));
    if (::geteuid() == 0) {
        return; // to whom no folder is forbidden
    }
    fs::create_directories(link.parent_path());
    fs::permissions(link.parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(tool.mayChange());
    EXPECT_EQ(tool.setOn(true), std::errc::permission_denied);
    EXPECT_EQ(tool.state(), State::off);
    fs::permissions(link.parent_path(), fs::perms::owner_all);
}

TEST_F(CommandLineToolTest, BelongsToABundleThatStays) {
    Machine machine;
    const auto offered = bundledCommandLineTool(machine, desktop);
    ASSERT_TRUE(offered);
    EXPECT_EQ(offered->program(), program);
    EXPECT_EQ(offered->link(), "/usr/local/bin/vellmark");
    EXPECT_EQ(terminalProgram("/usr/libexec/vellmark/vellmark-desktop"),
              "/usr/libexec/vellmark/vellmark");

    EXPECT_FALSE(bundledCommandLineTool(machine, program.parent_path() / "vellmark-desktop"));
    const fs::path passing = directory / "AppTranslocation" / "1" / "Vellmark.app";
    fs::create_directories(passing.parent_path());
    fs::copy(bundle, passing, fs::copy_options::recursive);
    EXPECT_FALSE(bundledCommandLineTool(machine, passing / "Contents" / "MacOS" / "Vellmark"));
    fs::remove(program);
    EXPECT_FALSE(bundledCommandLineTool(machine, desktop)) << "there is nothing to lead to";
    machine.root = directory.path();
    writeFile(program, "");
    EXPECT_FALSE(bundledCommandLineTool(machine, desktop)) << "a sandbox";
}

} // namespace
} // namespace vellmark::tests
