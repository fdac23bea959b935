// What the terminal program itself costs: how long it is there for an answer that needs no child,
// and how long after its slowest child it ends.

#include "platform/Machine.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

const fs::path programs = VELLMARK_BINARY_DIRECTORY;

void runVellmark(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), (programs / "vellmark").string());
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    }
    pid_t child = 0;
    int status = 0;
    char* environment[] = {nullptr};
    if (posix_spawn(&child, pointers.front(), &actions, nullptr, pointers.data(), environment) ==
        0) {
        ::waitpid(child, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
}

/// A home in which Antigravity alone is installed, as a script that leaves the time of its end.
class Sandbox {
public:
    Sandbox() {
        std::string name = (fs::temp_directory_path() / "vellmark-bench-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
        const Machine machine = Machine::sandbox(path_);
        const fs::path bin = machine.home / ".local/bin";
        fs::create_directories(bin / "simulator");
        fs::create_symlink(programs / "vellmark-simulator", bin / "simulator/agy");
        std::ofstream(bin / "agy") << "#!/bin/bash\n\"$HOME/.local/bin/simulator/agy\" \"$@\"\n"
                                   << "status=$?\necho $EPOCHREALTIME >\"$HOME/ended\"\n"
                                   << "exit $status\n";
        fs::permissions(bin / "agy", fs::perms::owner_all);
        const fs::path credential = path_ / "credentials/gemini/antigravity";
        fs::create_directories(credential.parent_path());
        std::ofstream(credential).put('\n');
    }
    ~Sandbox() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    void run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--sandbox", path_.string()});
        runVellmark(std::move(arguments));
    }
    /// In seconds since 1970.
    double childEnded() const {
        double time = 0;
        std::ifstream(Machine::sandbox(path_).home / "ended") >> time;
        return time;
    }

private:
    fs::path path_;
};

/// Under 5 ms.
void version(benchmark::State& state) {
    for (auto _ : state) {
        runVellmark({"--version"});
    }
}
BENCHMARK(version)->Name("Program/version")->UseRealTime()->Unit(benchmark::kMillisecond);

/// Under 20 ms.
void cachedStatus(benchmark::State& state) {
    const Sandbox sandbox;
    sandbox.run({"usage"});
    for (auto _ : state) {
        sandbox.run({"status", "--cached"});
    }
}
BENCHMARK(cachedStatus)->Name("Program/statusCached")->UseRealTime()->Unit(benchmark::kMillisecond);

/// 5 ms at most, with the end of the shell that tells the time.
void endAfterTheChild(benchmark::State& state) {
    const Sandbox sandbox;
    for (auto _ : state) {
        sandbox.run({"usage"});
        const std::chrono::duration<double> now =
            std::chrono::system_clock::now().time_since_epoch();
        state.SetIterationTime(now.count() - sandbox.childEnded());
    }
}
BENCHMARK(endAfterTheChild)
    ->Name("Program/endAfterTheSlowestChild")
    ->UseManualTime()
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vellmark
