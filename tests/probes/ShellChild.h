#pragma once

#include "probes/ChildConfiguration.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <utility>

namespace vellmark::tests {

/// A child that runs a line of shell.
inline ChildConfiguration shellChild(std::string script) {
    ChildConfiguration configuration;
    configuration.executable = "/bin/sh";
    configuration.arguments = {"-c", std::move(script)};
    configuration.environment = {{"PATH", "/usr/bin:/bin"}};
    return configuration;
}

/// Shell that writes its process number to `file` and lives on, deaf to SIGTERM.
inline std::string deafShell(const std::filesystem::path& file) {
    return "trap '' TERM; echo $$ > " + file.string() + ".new; mv " + file.string() + ".new " +
           file.string() + "; while :; do sleep 0.05; done";
}

/// Shell with a child that is deaf to SIGTERM and writes its number to "pid" in `directory`, while
/// the shell itself waits and obeys.
inline std::string parentOfDeafChild(const TemporaryDirectory& directory) {
    const auto program = directory.write("deaf", deafShell(directory / "pid"));
    return "sh " + program.string() + " >/dev/null 2>&1 & wait";
}

/// The process number that a script has written, once it has.
inline pid_t awaitedPid(const std::filesystem::path& file) {
    if (!becomesTrue([&] { return !contentOf(file).empty(); }))
        return -1;
    return static_cast<pid_t>(std::stoi(contentOf(file)));
}

} // namespace vellmark::tests
