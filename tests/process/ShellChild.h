#pragma once

#include "process/ChildConfiguration.h"
#include "support/ProcessCensus.h"
#include "support/TemporaryDirectory.h"

#include <filesystem>
#include <stdexcept>
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

/// Shell that obeys, over two of which nothing leads to it but its group and its past: a shell that
/// is deaf to SIGTERM and writes "pid" in `directory`, and one in a session of its own that writes
/// "daemon". Neither is its direct child.
inline std::string parentOfGroupAndDaemon(const TemporaryDirectory& directory) {
    const auto deaf = directory.write("deaf", deafShell(directory / "pid"));
    const auto daemon = directory.write("away", deafShell(directory / "daemon"));
    return "( (sh " + deaf.string() + " &) ; (setsid sh " + daemon.string() +
           " &) ) >/dev/null 2>&1; sleep 30 & wait";
}

/// The process number that a script has written, once it has. Throws when it does not: a number
/// that stands for nothing must not get into kill(2).
inline pid_t awaitedPid(const std::filesystem::path& file) {
    if (!becomesTrue([&] { return !contentOf(file).empty(); })) {
        throw std::runtime_error("no process number in " + file.string());
    }
    return static_cast<pid_t>(std::stoi(contentOf(file)));
}

} // namespace vellmark::tests
