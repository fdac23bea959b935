#include "Output.h"
#include "Simulators.h"

#include <fstream>
#include <map>
#include <unistd.h>

namespace simulator {
namespace {

namespace fs = std::filesystem;

/// The agent whose vendor has its installer at `url`.
std::string agentAt(const std::string& url) {
    const std::map<std::string, std::string> vendors{
        {"claude.ai", "claude"}, {"chatgpt.com", "codex"}, {"antigravity.google", "agy"}};
    for (const auto& [host, agent] : vendors) {
        if (url.find("//" + host + "/") != std::string::npos) {
            return agent;
        }
    }
    return {};
}

/// An installer that puts this simulator where the vendor's would put its CLI.
std::string installerOf(const std::string& agent, const fs::path& simulator) {
    return "#!/bin/sh\n"
           "echo 'Installing " +
           agent +
           " into ~/.local/bin (simulated)'\n"
           "mkdir -p \"$HOME/.local/bin\"\n"
           "ln -sf '" +
           simulator.string() + "' \"$HOME/.local/bin/" + agent + "\"\n";
}

} // namespace

int playDownload(const Scenario& scenario, const Arguments& arguments) {
    const Output errors(STDERR_FILENO, scenario);
    std::string url;
    std::string file;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        if (arguments[index] == "-o" && index + 1 < arguments.size()) {
            file = arguments[++index];
        } else if (!arguments[index].starts_with("-")) {
            url = arguments[index];
        }
    }
    const std::string agent = agentAt(url);
    if (scenario.is({"offline"}) || agent.empty()) {
        errors.write("curl: (6) Could not resolve host\n");
        return 6;
    }
    pause(scenario.delay());
    std::ofstream installer(file);
    const auto home = scenario.directory().parent_path();
    installer << installerOf(agent, fs::canonical(home / ".local/bin/curl"));
    return installer.flush() ? 0 : 23;
}

} // namespace simulator
