#include "platform/InstanceIdentifier.h"
#include "platform/Machine.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vellmark {
namespace {

using tests::TemporaryDirectory;

/// Sets a variable of this process for one test; an absent value removes it.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            old_ = old;
        }
        value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    ~ScopedVariable() { old_ ? ::setenv(name_, old_->c_str(), 1) : ::unsetenv(name_); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* name_;
    std::optional<std::string> old_;
};

TEST(Machine, HomeIsTheVariableOrElseTheUsersEntry) {
    {
        const ScopedVariable home("HOME", "/somewhere/else");
        EXPECT_EQ(Machine::current().home, "/somewhere/else");
        EXPECT_EQ(Machine::current().environment.at("HOME"), "/somewhere/else");
    }
    for (const char* useless : {static_cast<const char*>(nullptr), "", "relative/home"}) {
        const ScopedVariable home("HOME", useless);
        EXPECT_TRUE(Machine::current().home.is_absolute());
        EXPECT_NE(Machine::current().home, "relative/home");
    }
}

TEST(Machine, SandboxIsCompleteAndLeadsNowhereElse) {
    const TemporaryDirectory directory;
    const ScopedVariable dataHome("XDG_DATA_HOME", "/outside");
    const ScopedVariable codexHome("CODEX_HOME", "/outside");
    const ScopedVariable claudeHome("CLAUDE_CONFIG_DIR", "/outside");
    const Machine machine = Machine::sandbox(directory / "box");

    const auto inside = [&](const std::filesystem::path& path) {
        return path.string().starts_with((directory / "box").string()) &&
               std::filesystem::is_directory(path);
    };
    for (const auto& path : {machine.home, machine.root, machine.applicationSupport,
                             machine.configuration, machine.temporary}) {
        EXPECT_TRUE(inside(path)) << path;
    }
    EXPECT_EQ(machine.environment.at("HOME"), machine.home);
    EXPECT_EQ(machine.environment.at("TMPDIR"), machine.temporary);
    for (const auto& [name, value] : machine.environment) {
        EXPECT_EQ(value.find("/outside"), std::string::npos) << name;
    }
    EXPECT_EQ(machine.resolved("~/.local/bin/agy"), machine.home / ".local/bin/agy");
    EXPECT_EQ(machine.resolved("/usr/local/bin/agy"), machine.root / "usr/local/bin/agy");

    EXPECT_EQ(machine.credentials->hasGenericPassword("gemini", "antigravity"), false);
    directory.write("box/credentials/gemini/antigravity", "");
    EXPECT_EQ(machine.credentials->hasGenericPassword("gemini", "antigravity"), true);
}

TEST(Machine, EverySandboxIsAnInstanceOfItsOwn) {
    const TemporaryDirectory directory;
    std::filesystem::create_directories(directory / "a");
    const auto identifierOf = [](const std::filesystem::path& path) {
        return instanceIdentifier(Machine::sandbox(path));
    };
    const std::string identifier = identifierOf(directory / "a");
    EXPECT_EQ(identifierOf(directory / "b/../a"), identifier);
    EXPECT_NE(identifierOf(directory / "b"), identifier);
    // A name that a message bus takes.
    EXPECT_EQ(identifier.find_first_not_of("abcdefghijklmnopqrstuvwxyzSV.0123456789"),
              std::string::npos);
    EXPECT_EQ(instanceIdentifier(Machine::current()), "app.vellmark.Vellmark");
}

} // namespace
} // namespace vellmark
