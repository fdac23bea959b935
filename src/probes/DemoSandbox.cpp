#include "probes/DemoSandbox.h"

#include "platform/ProgramPath.h"
#include "platform/SystemError.h"

#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

constexpr const char* directoryPrefix = "vellmark-demo-";
constexpr const char* simulatorName = "vellmark-simulator";

constexpr const char* lockName = "lock";
constexpr int lockFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW;

/// Locked before it gets its name, so that another program that is tidying up never finds it free.
Descriptor makeLock(const fs::path& directory) {
    const fs::path unnamed = directory / "lock.new";
    Descriptor lock(open(unnamed.c_str(), lockFlags | O_CREAT | O_EXCL, 0600));
    flock(lock.get(), LOCK_EX | LOCK_NB);
    fs::rename(unnamed, directory / lockName);
    return lock;
}

/// Removes a sandbox, its lock last: if a child of a killed program is still writing there, the
/// directory stays, lock and all, and the next sweep finds it.
void removeSandbox(const fs::path& directory) {
    const auto isLock = [](const fs::path& path) { return path.filename() == lockName; };
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(directory, error)) {
        if (!isLock(entry.path())) {
            fs::remove_all(entry.path(), error);
        }
    }
    for (const auto& entry : fs::directory_iterator(directory, error)) {
        if (!isLock(entry.path())) {
            return;
        }
    }
    fs::remove_all(directory, error);
}

/// Not a link to somewhere else, and not somebody else's.
bool isOwnDirectory(const fs::path& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

/// A sandbox whose lock nobody holds belongs to a program that was killed. One without a lock is
/// being made at this moment.
void removeAbandoned(const fs::path& temporary) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(temporary, error)) {
        const bool isSandbox = entry.path().filename().string().starts_with(directoryPrefix);
        if (!isSandbox || !isOwnDirectory(entry.path())) {
            continue;
        }
        const Descriptor lock(open((entry.path() / lockName).c_str(), lockFlags));
        if (lock.isOpen() && flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
            removeSandbox(entry.path());
        }
    }
}

fs::path makeDirectory(const fs::path& temporary) {
    std::string path = (temporary / (std::string(directoryPrefix) + "XXXXXX")).string();
    if (mkdtemp(path.data()) == nullptr) {
        throw fs::filesystem_error("cannot create directory", path, lastSystemError());
    }
    return path;
}

fs::path findSimulator() {
    const fs::path simulator = programPath().parent_path() / simulatorName;
    if (!fs::exists(simulator)) {
        throw std::runtime_error(simulator.string() + " is missing");
    }
    return simulator;
}

} // namespace

DemoSandbox::DemoSandbox(const fs::path& temporary, Agents agents) {
    const fs::path simulator = findSimulator();
    removeAbandoned(temporary);
    directory_ = makeDirectory(temporary);
    try {
        lock_ = makeLock(directory_);
        machine_ = Machine::sandbox(directory_);
        installAgents(simulator);
        if (agents == Agents::asOnANewMachine) {
            undoSetup(simulator);
        }
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(directory_, ignored);
        throw;
    }
}

DemoSandbox::~DemoSandbox() {
    removeSandbox(directory_);
    lock_.reset();
    removeAbandoned(directory_.parent_path());
}

void DemoSandbox::installAgents(const fs::path& simulator) const {
    const fs::path programs = machine_.home / ".local/bin";
    fs::create_directories(programs);
    for (const char* name : {"claude", "codex", "agy"}) {
        fs::create_symlink(simulator, programs / name);
    }
    // What Antigravity's login leaves behind: only the item's existence is asked for.
    const fs::path credential = directory_ / "credentials/gemini/antigravity";
    fs::create_directories(credential.parent_path());
    std::ofstream(credential).put('\n');
}

void DemoSandbox::undoSetup(const fs::path& simulator) const {
    const fs::path programs = machine_.home / ".local/bin";
    fs::remove(programs / "agy");
    fs::remove_all(directory_ / "credentials");
    fs::create_directories(machine_.home / ".vellmark-simulator");
    std::ofstream(machine_.home / ".vellmark-simulator/claude") << "logged-out\n";
    fs::create_symlink(simulator, programs / "curl");
    std::ofstream(machine_.home / ".zshrc") << "path+=(~/.local/bin)\n";
}

} // namespace vellmark
