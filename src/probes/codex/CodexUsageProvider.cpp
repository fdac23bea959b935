#include "probes/codex/CodexUsageProvider.h"

#include "probes/ExecutableLocator.h"
#include "probes/LaunchFailure.h"
#include "probes/codex/CodexConversation.h"
#include "probes/codex/CodexMessages.h"

#include <memory>

namespace vellmark {

namespace {

std::unique_ptr<CodexConversation> launch(const Machine& machine) {
    const auto executable = locateCodex(machine);
    if (!executable) {
        throw UsageProviderError::executableMissing("Codex CLI");
    }
    try {
        return std::make_unique<CodexConversation>(machine, *executable,
                                                   ChildSession::ErrorStream::pipe);
    } catch (const std::filesystem::filesystem_error& error) {
        throw UsageProviderError::launchFailed("Codex", machine.abbreviated(error.path1()) + ": " +
                                                            error.code().message());
    } catch (const std::system_error& error) {
        throw UsageProviderError::launchFailed("Codex",
                                               launchFailureReason(error.code(), *executable));
    }
}

} // namespace

AgentUsageSnapshot CodexUsageProvider::fetch() {
    const auto session = launch(machine_);
    CodexReading reading(patience_);
    session->converse(CodexMessages::usage, limit_,
                      [&](CodexReply reply) { return reading.take(std::move(reply)); });
    if (reading.isAnswered()) {
        return reading.snapshot(ReferenceClock::now(), machine_.home.string());
    }
    if (session->isOverdue()) {
        throw UsageProviderError::timeout("Codex");
    }
    throw UsageProviderError::codexReadFailed(session->errorText());
}

} // namespace vellmark
