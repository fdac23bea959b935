#include "probes/antigravity/AntigravityUsageProvider.h"

#include "platform/PrivateDirectory.h"
#include "platform/RegularFile.h"
#include "probes/AgentWorkspace.h"
#include "probes/ExecutableLocator.h"
#include "probes/LaunchFailure.h"
#include "probes/ToolVersion.h"
#include "probes/VersionNumber.h"
#include "probes/antigravity/AntigravityLoginCheck.h"
#include "probes/antigravity/AntigravityReading.h"
#include "process/BoundedProcess.h"
#include "process/ChildEnvironment.h"
#include "process/PrivateTemporaryDirectory.h"
#include "process/PrivateTemporaryFile.h"

#include <system_error>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// The first version that answers without a model.
constexpr VersionNumber firstFreeOfCharge{{1, 1, 11}};

/// The answer has some kilobytes; a child that prints more than this is stopped.
constexpr std::size_t capturedLimit = 32u << 20;
/// The part of the log that matters is near its beginning.
constexpr std::size_t logReadLimit = 16u << 20;

/// `fallback` where the workspace cannot be made.
fs::path workspace(const Machine& machine, const fs::path& fallback) {
    const fs::path directory = agentWorkspace(machine, "Antigravity");
    return makePrivateDirectory(directory) ? fallback : directory;
}

ChildConfiguration usageCommand(const Machine& machine, const fs::path& executable,
                                const fs::path& log, int output) {
    ChildConfiguration configuration;
    configuration.executable = executable;
    configuration.arguments = {"-p",   "/usage",     "--output-format",
                               "json", "--log-file", log.string()};
    configuration.environment = childEnvironment(machine);
    configuration.workingDirectory = workspace(machine, log.parent_path());
    configuration.standardOutput = ChildOutput::recorded(output, capturedLimit);
    configuration.mergesStandardError = true;
    return configuration;
}

} // namespace

AgentUsageSnapshot AntigravityUsageProvider::fetch() {
    return read(locate());
}

AgentUsageSnapshot AntigravityUsageProvider::fetchAutomatically() {
    const ExecutableIdentity executable = locate();
    const std::string told = version(executable);
    if (experience(executable).readingCosts) {
        throw UsageProviderError::antigravityReadingCosts(told);
    }
    return read(executable);
}

ReadingPace AntigravityUsageProvider::pace() const {
    const auto path = locateAntigravity(machine_);
    return {.automatic = !path || !experience(ExecutableIdentity::of(*path)).readingCosts};
}

ExecutableIdentity AntigravityUsageProvider::locate() const {
    const auto path = locateAntigravity(machine_);
    if (!path) {
        throw UsageProviderError::executableMissing("Antigravity CLI");
    }
    if (antigravityIsLoggedIn(machine_) == false) {
        throw UsageProviderError(UsageProviderError::Kind::antigravityNotLoggedIn);
    }
    return ExecutableIdentity::of(*path);
}

AgentUsageSnapshot AntigravityUsageProvider::read(const ExecutableIdentity& executable) {
    const auto capture = PrivateTemporaryFile::create(machine_.temporary);
    const auto directory = PrivateTemporaryDirectory::create(machine_.temporary, "vellmark-agy-");
    if (!capture || !directory) {
        throw UsageProviderError::antigravityReadFailed("temporary file");
    }
    const fs::path log = directory->path() / "agy.log";
    AntigravityRun run;
    try {
        const auto ended =
            BoundedProcess::run(usageCommand(machine_, executable.path, log, capture->descriptor()),
                                limit_, killGrace_);
        run.exitStatus = ended.terminationStatus;
        run.timedOut = ended.timedOut;
        run.outputCapped = ended.outputCapped;
    } catch (const std::system_error& error) {
        throw UsageProviderError::launchFailed("Antigravity",
                                               launchFailureReason(error.code(), executable.path));
    }
    if (!capture->hasRoom()) {
        throw UsageProviderError::antigravityReadFailed(
            "temporary file: " + std::make_error_code(std::errc::no_space_on_device).message());
    }
    run.output = AntigravityOutput::read(capture->contents(), TimeZone::system());
    if (run.output.tookTurn) {
        learn(executable, [](Experience& known) { known.readingCosts = true; });
        run.version = version(executable);
    }
    std::error_code noLog;
    run.log = readRegularFile(log, noLog, logReadLimit).value_or(std::string());
    return antigravitySnapshot(run, ReferenceClock::now());
}

std::string AntigravityUsageProvider::version(const ExecutableIdentity& executable) {
    if (const auto known = experience(executable).version) {
        return *known;
    }
    const auto told = VersionNumber::parse(toolVersion(machine_, executable.path).value_or(""));
    const std::string text = told ? told->text() : "?";
    learn(executable, [&](Experience& known) {
        known.version = text;
        known.readingCosts = known.readingCosts || (told && *told < firstFreeOfCharge);
    });
    return text;
}

AntigravityUsageProvider::Experience
AntigravityUsageProvider::experience(const ExecutableIdentity& executable) const {
    const std::lock_guard hold(lock_);
    return experience_.executable == executable ? experience_ : Experience{};
}

template<typename Change>
void AntigravityUsageProvider::learn(const ExecutableIdentity& executable, Change change) {
    const std::lock_guard hold(lock_);
    if (experience_.executable != executable) {
        experience_ = Experience();
        experience_.executable = executable;
    }
    change(experience_);
}

} // namespace vellmark
