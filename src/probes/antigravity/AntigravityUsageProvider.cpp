#include "probes/antigravity/AntigravityUsageProvider.h"

#include "model/UUID.h"
#include "platform/WholeFile.h"
#include "probes/BoundedProcess.h"
#include "probes/ChildEnvironment.h"
#include "probes/ExecutableLocator.h"
#include "probes/PrivateTemporaryFile.h"
#include "probes/antigravity/AntigravityReading.h"

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// What the log is read for stands near its beginning.
constexpr std::size_t logReadLimit = 16u << 20;

/// The log that the CLI writes, under a fresh name; deleted with this object.
class CLILog {
public:
    explicit CLILog(const fs::path& directory)
        : path_(directory / ("vellmark-agy-log-" + UUID::make().text() + ".log")) {}
    ~CLILog() {
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
    CLILog(const CLILog&) = delete;
    CLILog& operator=(const CLILog&) = delete;

    const fs::path& path() const { return path_; }

    /// Empty when the CLI has not written one.
    std::string contents() const {
        std::error_code ignored;
        return readWholeFile(path_, ignored, logReadLimit).value_or(std::string());
    }

private:
    fs::path path_;
};

ChildConfiguration usageCommand(const Machine& machine, const fs::path& executable,
                                const fs::path& log, int output) {
    ChildConfiguration configuration;
    configuration.executable = executable;
    configuration.arguments = {"-p",   "/usage",     "--output-format",
                               "json", "--log-file", log.string()};
    configuration.environment = childEnvironment(machine);
    configuration.standardOutput = ChildOutput::toDescriptor(output);
    configuration.mergesStandardError = true;
    return configuration;
}

} // namespace

bool antigravityIsLoggedIn(const Machine& machine) {
    return machine.credentials->hasGenericPassword("gemini", "antigravity");
}

AgentUsageSnapshot AntigravityUsageProvider::fetch() {
    const auto executable = locateAntigravity(machine_);
    if (!executable) {
        throw UsageProviderError::executableMissing("Antigravity CLI");
    }
    if (!antigravityIsLoggedIn(machine_)) {
        throw UsageProviderError(UsageProviderError::Kind::antigravityNotLoggedIn);
    }
    const auto capture = PrivateTemporaryFile::create(machine_.temporary, "vellmark-agy-");
    if (!capture) {
        throw UsageProviderError::antigravityReadFailed("temporary file");
    }
    const CLILog log(machine_.temporary);
    AntigravityRun run;
    try {
        const auto ended = BoundedProcess::run(
            usageCommand(machine_, *executable, log.path(), capture->descriptor()), limit_,
            killGrace_);
        run.exitStatus = ended.terminationStatus;
        run.timedOut = ended.timedOut;
    } catch (const std::system_error& error) {
        throw UsageProviderError::launchFailed("Antigravity", error.code().message());
    }
    run.output = capture->contents();
    run.log = log.contents();
    return antigravitySnapshot(run, ReferenceClock::now());
}

} // namespace vellmark
