#pragma once

#include "platform/Descriptor.h"
#include "platform/Machine.h"

#include <filesystem>

namespace vellmark {

/// A throw-away machine with simulated agents, for trying the program without any agent or
/// account: the real probes run the simulator there, and nothing of the user's is read or run.
///
/// Lives in a directory of its own (0700) that goes with this object. One that a killed program
/// left behind is removed by the next. End the children before the object goes.
class DemoSandbox {
public:
    /// How far the agents are set up: all of them, or as on a new machine: Codex is ready, Claude
    /// is not logged in and Antigravity not installed (what installs it is simulated as well).
    enum class Agents { ready, asOnANewMachine };

    /// Uses the simulator beside the running program. Throws std::runtime_error when there is none
    /// and std::filesystem::filesystem_error when the directory cannot be made below `temporary`.
    explicit DemoSandbox(const std::filesystem::path& temporary, Agents agents = Agents::ready);
    ~DemoSandbox();
    DemoSandbox(const DemoSandbox&) = delete;
    DemoSandbox& operator=(const DemoSandbox&) = delete;

    const Machine& machine() const { return machine_; }

private:
    void installAgents(const std::filesystem::path& simulator) const;
    void undoSetup(const std::filesystem::path& simulator) const;

    std::filesystem::path directory_;
    /// Held locked while the sandbox is in use.
    Descriptor lock_;
    Machine machine_;
};

} // namespace vellmark
