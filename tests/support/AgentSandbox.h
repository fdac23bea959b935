#pragma once

#include "platform/Machine.h"
#include "support/ProcessCensus.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace vellmark::tests {

/// A machine of its own in a temporary directory, with simulated agents where the real ones would
/// be installed, and their scenarios.
class AgentSandbox {
public:
    /// Installs `agents` ("claude", "codex", "agy").
    explicit AgentSandbox(std::initializer_list<std::string> agents = {"claude", "codex", "agy"})
        : machine_(Machine::sandbox(directory_.path())) {
        for (const std::string& agent : agents) {
            install(agent, builtProgram("vellmark-simulator"));
        }
        signInToAntigravity();
    }

    /// May be changed before it is handed to a provider.
    Machine& machine() { return machine_; }
    const Machine& machine() const { return machine_; }
    /// What a program is told to use it.
    const std::filesystem::path& path() const { return directory_.path(); }

    /// `program` becomes the agent's CLI.
    void install(const std::string& agent, const std::filesystem::path& program) {
        const std::filesystem::path link = machine_.home / ".local/bin" / agent;
        std::filesystem::create_directories(link.parent_path());
        std::filesystem::remove(link);
        std::filesystem::create_symlink(program, link);
    }

    /// `script` is run by /bin/sh as the agent's CLI.
    void installScript(const std::string& agent, const std::string& script) {
        install(agent, directory_.writeExecutable("scripts/" + agent, "#!/bin/sh\n" + script));
    }

    /// The agent's CLI is a file that may be executed and is no program.
    void installNoProgram(const std::string& agent, const std::string& contents = "no program") {
        install(agent, directory_.writeExecutable("scripts/" + agent, contents));
    }
    void uninstall(const std::string& agent) {
        std::filesystem::remove(machine_.home / ".local/bin" / agent);
    }

    /// `scenario` is a name, and "key=value" lines after it.
    void play(const std::string& agent, const std::string& scenario) {
        directory_.write("home/.vellmark-simulator/" + agent, scenario + "\n");
    }

    void signInToAntigravity() { directory_.write(credential, "not read"); }
    void signOutOfAntigravity() { std::filesystem::remove(directory_ / credential); }

    /// The command lines of processes that were started in this sandbox and still live, once those
    /// that are about to end have had time to.
    std::vector<std::string> survivors() const {
        std::vector<std::string> living;
        becomesTrue([&] { return (living = inhabitants()).empty(); });
        return living;
    }

    bool leftTemporaryFiles() const { return !std::filesystem::is_empty(machine_.temporary); }

private:
    /// Everything that was started here has this home in its environment, also once its parent has
    /// gone and nothing else leads to it.
    std::vector<std::string> inhabitants() const {
        const std::string home = '\0' + ("HOME=" + machine_.home.string()) + '\0';
        std::vector<std::string> commandLines;
        std::error_code ignored;
        for (const auto& process : std::filesystem::directory_iterator("/proc", ignored)) {
            const std::string environment = '\0' + contentOf(process.path() / "environ");
            if (environment.find(home) != std::string::npos) {
                std::string line = contentOf(process.path() / "cmdline");
                std::replace(line.begin(), line.end(), '\0', ' ');
                commandLines.push_back(line);
            }
        }
        return commandLines;
    }

    static constexpr const char* credential = "credentials/gemini/antigravity";

    TemporaryDirectory directory_;
    Machine machine_;
};

} // namespace vellmark::tests
