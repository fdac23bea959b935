#include "platform/Descriptor.h"
#include "platform/FileLock.h"
#include "platform/PreferencesFile.h"
#include "support/PollLoop.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vellmark {
namespace {

using ::testing::ElementsAre;
using tests::contentOf;
using tests::TemporaryDirectory;
namespace fs = std::filesystem;

class PreferencesTest : public ::testing::Test {
protected:
    std::unique_ptr<Preferences> open() const { return makePreferencesFile(file_); }
    /// Another program has the file.
    std::optional<FileLock> hold() const {
        std::error_code error;
        return FileLock::acquire(directory_ / "Vellmark/preferences.lock", FileLock::Seconds(1),
                                 error);
    }

    TemporaryDirectory directory_;
    fs::path file_ = directory_ / "Vellmark/preferences.json";
};

TEST_F(PreferencesTest, EveryKindOfValueSurvivesARestart) {
    {
        const auto preferences = open();
        preferences->setBoolean("SetupAssistantCompleted", true);
        preferences->setNumber("Scale", 1.25);
        preferences->setString("AppLanguage", "de");
        preferences->setStrings("ProviderOrder", {"claude", "codex"});
        preferences->setString("Gone", "soon");
        preferences->remove("Gone");
        EXPECT_FALSE(preferences->writeError());
    }
    const auto preferences = open();
    EXPECT_EQ(preferences->boolean("SetupAssistantCompleted"), true);
    EXPECT_EQ(preferences->number("Scale"), 1.25);
    EXPECT_EQ(preferences->string("AppLanguage"), "de");
    EXPECT_THAT(*preferences->strings("ProviderOrder"), ElementsAre("claude", "codex"));
    EXPECT_EQ(preferences->string("Gone"), std::nullopt);
    EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0600));
}

TEST_F(PreferencesTest, ValuesOfOtherTypesCountAsAbsentAndAreKept) {
    directory_.write("Vellmark/preferences.json",
                     R"({"FromTheFuture":{"a":[1,2]},"ProviderOrder":["codex",3],"Flag":1})");
    const auto preferences = open();
    EXPECT_FALSE(preferences->strings("ProviderOrder"));
    EXPECT_FALSE(preferences->boolean("Flag"));
    EXPECT_FALSE(preferences->string("FromTheFuture"));
    preferences->setBoolean("Flag", true);
    EXPECT_EQ(nlohmann::json::parse(contentOf(file_)), nlohmann::json::parse(R"(
        {"FromTheFuture":{"a":[1,2]},"ProviderOrder":["codex",3],"Flag":true})"));
}

TEST_F(PreferencesTest, DamagedFileIsKeptAsideAndTheDefaultsHold) {
    // Written again, the last one would need a stack of its depth.
    const std::string deep = "{\"a\":" + std::string(100000, '[') + std::string(100000, ']') + "}";
    for (const std::string& damage :
         std::vector<std::string>{"{\"AppLanguage\":\"de\"", "[1]", "", "\xff\xfe", deep}) {
        directory_.write("Vellmark/preferences.json", damage);
        const auto preferences = open();
        EXPECT_FALSE(preferences->string("AppLanguage"));
        EXPECT_EQ(contentOf(directory_ / "Vellmark/preferences.damaged.json"), damage);
        preferences->setString("AppLanguage", "en");
        EXPECT_EQ(open()->string("AppLanguage"), "en");
    }
}

// The terminal front end and the desktop application may both have the file open.
TEST_F(PreferencesTest, MembersOfAListAreChangedOneByOne) {
    const auto desktop = open();
    const auto terminal = open();
    desktop->setMember("DisabledProviders", "claude", true);
    terminal->setMember("DisabledProviders", "codex", true);
    terminal->setMember("DisabledProviders", "codex", true);
    EXPECT_THAT(*open()->strings("DisabledProviders"), ElementsAre("claude", "codex"));
    desktop->setMember("DisabledProviders", "claude", false);
    EXPECT_THAT(*open()->strings("DisabledProviders"), ElementsAre("codex"));
    terminal->reload();
    EXPECT_THAT(*terminal->strings("DisabledProviders"), ElementsAre("codex"));
}

constexpr int changesEach = 60;

/// What one of two programs does: values of its own, and members of a list that both change.
void changeSettings(const fs::path& file, const std::string& who) {
    const auto preferences = makePreferencesFile(file);
    for (int change = 0; change < changesEach; ++change) {
        const std::string name = who + std::to_string(change);
        preferences->setNumber(name, change);
        preferences->setMember("List", name, true);
        if (change % 3 == 0) {
            preferences->remove(name);
            preferences->setMember("List", name, false);
        }
    }
}

TEST_F(PreferencesTest, TwoProcessesLoseNoChange) {
    open()->setString("Kept", "by both");
    std::vector<pid_t> children;
    for (const char* who : {"desktop", "terminal"}) {
        children.push_back(::fork());
        ASSERT_GE(children.back(), 0);
        if (children.back() == 0) {
            changeSettings(file_, who);
            ::_exit(0);
        }
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    const auto preferences = open();
    const auto list = preferences->strings("List").value_or(std::vector<std::string>());
    for (const char* who : {"desktop", "terminal"}) {
        for (int change = 0; change < changesEach; ++change) {
            const std::string name = who + std::to_string(change);
            const bool isKept = change % 3 != 0;
            EXPECT_EQ(preferences->number(name).has_value(), isKept) << name;
            EXPECT_EQ(std::ranges::count(list, name), isKept ? 1 : 0) << name;
        }
    }
    EXPECT_EQ(preferences->string("Kept"), "by both");
    EXPECT_FALSE(fs::exists(directory_ / "Vellmark/preferences.damaged.json"));
}

// Applied after them, the older change would undo the newer ones.
TEST_F(PreferencesTest, NewChangesWaitBehindOlderOnesThatCannotBeHadNow) {
    const auto run = open();
    {
        const auto held = hold();
        ASSERT_TRUE(held);
        run->setString("AppLanguage", "de");
    }
    {
        // Somebody is just adding to what waits, for longer than anybody likes to.
        const Descriptor waiting(
            ::open((directory_ / "Vellmark/preferences.waiting").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_FALSE(FileLock::lock(waiting, FileLock::Seconds(1)));
        run->setString("AppLanguage", "en");
        EXPECT_EQ(run->string("AppLanguage"), "en");
    }
    run->setBoolean("Flag", true);
    EXPECT_EQ(open()->string("AppLanguage"), "en");
    EXPECT_FALSE(run->writeError());
}

TEST_F(PreferencesTest, TellsARunningProgramOfChanges) {
    Machine machine;
    machine.root = machine.configuration = directory_.path();
    tests::PollLoop loop;
    int changes = 0;
    const auto watch = watchPreferences(loop, machine, [&] { ++changes; });
    ASSERT_TRUE(watch);
    const auto desktop = makePreferences(machine);
    const auto terminal = makePreferences(machine);
    terminal->setString("AppLanguage", "fr");
    ASSERT_TRUE(loop.turnUntil([&] { return changes > 0; }));
    EXPECT_FALSE(desktop->string("AppLanguage"));
    desktop->reload();
    EXPECT_EQ(desktop->string("AppLanguage"), "fr");

    const int before = changes;
    directory_.write("Vellmark/other.json", "{}");
    loop.turn(std::chrono::milliseconds(200));
    EXPECT_EQ(changes, before) << "others' files are no business of ours";
    {
        const auto held = hold();
        terminal->setString("AppLanguage", "it");
    }
    ASSERT_TRUE(loop.turnUntil([&] { return changes > before; })) << "also one that waits";
    desktop->reload();
    EXPECT_EQ(desktop->string("AppLanguage"), "it");
#ifndef __APPLE__
    loop.turn(std::chrono::milliseconds(0));
    const int beforeRights = changes;
    fs::permissions(file_, fs::perms(0640));
    EXPECT_TRUE(loop.turnUntil([&] { return changes > beforeRights; })) << "it may be readable now";
#endif
}

TEST_F(PreferencesTest, WhatCannotBeWrittenHoldsForTheRunAndIsTriedAgain) {
    // A file stands where the folder has to be: works for every user, also for root.
    directory_.write("Vellmark", "in the way");
    const auto preferences = open();
    preferences->setString("AppLanguage", "en");
    preferences->setBoolean("Flag", true);
    EXPECT_TRUE(preferences->writeError());
    EXPECT_EQ(preferences->string("AppLanguage"), "en");
    EXPECT_EQ(contentOf(directory_ / "Vellmark"), "in the way");

    fs::remove(directory_ / "Vellmark");
    preferences->retry();
    EXPECT_FALSE(preferences->writeError());
    EXPECT_EQ(open()->boolean("Flag"), true);
    preferences->remove("Flag");
    EXPECT_FALSE(preferences->writeError());
    EXPECT_EQ(open()->string("AppLanguage"), "en");
    EXPECT_FALSE(open()->boolean("Flag"));
}

TEST_F(PreferencesTest, ALinkToTheFileStaysALink) {
    directory_.write("dotfiles/preferences.json", "{}");
    fs::create_directory(directory_ / "Vellmark");
    fs::create_symlink(directory_ / "dotfiles/preferences.json", file_);
    open()->setString("AppLanguage", "en");
    EXPECT_TRUE(fs::is_symlink(file_));
    EXPECT_NE(contentOf(directory_ / "dotfiles/preferences.json").find("\"en\""),
              std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory_ / "dotfiles"), {}), 1);
}

// Both programs may change a setting in the same moment, and one may be stopped then.
TEST_F(PreferencesTest, WhoCannotHaveTheLockLeavesTheChangeOnDisk) {
    open()->setString("AppLanguage", "de");
    {
        const auto held = hold();
        ASSERT_TRUE(held);
        const auto run = open();
        run->setString("AppLanguage", "en");
        run->setBoolean("Flag", true);
        run->remove("AppLanguage");
        EXPECT_FALSE(run->writeError());
        EXPECT_NE(contentOf(file_).find("\"de\""), std::string::npos) << "not written";
        EXPECT_EQ(open()->boolean("Flag"), true) << "but known to whoever starts now";
    }
    // That run is over.
    const auto next = open();
    EXPECT_FALSE(next->string("AppLanguage"));
    next->setNumber("Scale", 2);
    EXPECT_EQ(nlohmann::json::parse(contentOf(file_)),
              nlohmann::json::parse(R"({"Flag":true,"Scale":2.0})"));
    EXPECT_FALSE(fs::exists(directory_ / "Vellmark/preferences.waiting"));
}

TEST_F(PreferencesTest, WhatIsNoFileIsNeitherWaitedForNorReplaced) {
    fs::create_directories(file_.parent_path());
    ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
    const auto preferences = open();
    EXPECT_TRUE(preferences->writeError());
    preferences->setBoolean("Flag", true);
    EXPECT_TRUE(preferences->writeError());
    EXPECT_EQ(preferences->boolean("Flag"), true);
    EXPECT_TRUE(fs::is_fifo(file_));
    const auto reader = open();
    fs::remove(file_);
    reader->retry();
    EXPECT_FALSE(reader->writeError()) << "there was nothing to write";
    fs::create_symlink(directory_ / "dotfiles/preferences.json", file_);
    preferences->setBoolean("Flag", false);
    EXPECT_FALSE(preferences->writeError());
    EXPECT_TRUE(fs::is_symlink(file_)) << "a link that leads nowhere yet is followed";
    EXPECT_EQ(open()->boolean("Flag"), false);
}

} // namespace
} // namespace vellmark
