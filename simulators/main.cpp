// One program that plays the agents' CLIs: called through a link named claude, codex or agy it
// behaves as that one, in the scenario that a file in the home directory names.

#include "Simulators.h"

#include <cstdio>
#include <unistd.h>

namespace {

/// A forgotten simulator ends by itself; no scenario blocks SIGALRM.
constexpr unsigned lifetimeInSeconds = 600;

} // namespace

int main(int count, char** values) {
    using namespace simulator;
    ::alarm(lifetimeInSeconds);
    const std::string name = std::filesystem::path(values[0]).filename().string();
    const Arguments arguments(values + 1, values + count);
    if (name == "claude") {
        return playClaude(Scenario::load(name), arguments);
    }
    if (name == "codex") {
        return playCodex(Scenario::load(name), arguments);
    }
    if (name == "agy") {
        return playAntigravity(Scenario::load(name), arguments);
    }
    if (name == "curl") {
        return playDownload(Scenario::load(name), arguments);
    }
    std::fprintf(stderr, "%s plays claude, codex or agy: call it through a link of that name.\n",
                 name.c_str());
    return 2;
}
