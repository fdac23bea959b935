#include "platform/linux/AutostartEntry.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <string>

namespace vellmark::tests {
namespace {

class AutostartEntryTest : public testing::Test {
protected:
    std::unique_ptr<LoginItem> entry(const fs::path& program = "/opt/vellmark-desktop") {
        return makeAutostartEntry(directory_ / "autostart", program);
    }

    TemporaryDirectory directory_;
    fs::path file_ = directory_ / "autostart/app.vellmark.Vellmark.desktop";
};

TEST_F(AutostartEntryTest, SaysWhatTheFileSays) {
    const auto item = entry();
    EXPECT_EQ(item->state(), LoginItem::State::off);
    EXPECT_EQ(item->registeredProgram(), std::nullopt);
    EXPECT_EQ(item->setEnabled(true), "");
    EXPECT_EQ(item->state(), LoginItem::State::on);
    EXPECT_EQ(item->registeredProgram(), "/opt/vellmark-desktop");

    // What a desktop's own settings make of it.
    const std::string ours = contentOf(file_);
    for (const char* change : {"Hidden=true\n", "X-GNOME-Autostart-enabled = false\n"}) {
        directory_.write("autostart/app.vellmark.Vellmark.desktop",
                         "[Desktop Entry]\n" + std::string(change) +
                             ours.substr(ours.find('\n') + 1));
        EXPECT_EQ(item->state(), LoginItem::State::off) << change;
        EXPECT_EQ(item->setEnabled(true), "");
        EXPECT_EQ(item->state(), LoginItem::State::on) << change;
    }
    directory_.write("autostart/app.vellmark.Vellmark.desktop",
                     "# a note\n" + ours + "\n[Another Group]\nHidden=true\n");
    EXPECT_EQ(item->state(), LoginItem::State::on) << "another group is about something else";
    EXPECT_EQ(item->setEnabled(false), "");
    EXPECT_FALSE(fs::exists(file_));
    EXPECT_EQ(item->setEnabled(false), "") << "it is so already";

    directory_.write("autostart/app.vellmark.Vellmark.desktop", "");
    EXPECT_EQ(item->state(), LoginItem::State::off);
}

TEST_F(AutostartEntryTest, AnyPathIsOneArgument) {
    const auto exec = [&](const fs::path& program) {
        EXPECT_EQ(entry(program)->setEnabled(true), "");
        EXPECT_EQ(entry()->registeredProgram(), program);
        const std::string content = contentOf(file_);
        const auto start = content.find("\nExec=") + 6;
        return content.substr(start, content.find('\n', start) - start);
    };
    EXPECT_EQ(exec("/opt/My Programs/vellmark-desktop"), R"("/opt/My Programs/vellmark-desktop")");
    // Escaped for the command line, and again for the file.
    EXPECT_EQ(exec(R"(/a "b" $c `d` \e 100%)"), R"("/a \\"b\\" \\$c \\`d\\` \\\\e 100%%")");
}

TEST_F(AutostartEntryTest, ARefusalIsTold) {
    directory_.write("autostart", "in the way");
    EXPECT_NE(entry()->setEnabled(true), "");
    EXPECT_EQ(entry()->state(), LoginItem::State::off);
}

TEST_F(AutostartEntryTest, NoSandboxHasOne) {
    EXPECT_EQ(makeLoginItem(Machine::sandbox(directory_.path())), nullptr);
}

} // namespace
} // namespace vellmark::tests
