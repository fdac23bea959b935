#include "probes/claude/ClaudeSavedRun.h"

#include "probes/claude/ClaudeQuery.h"
#include "probes/claude/ClaudeScreen.h"
#include "probes/claude/ClaudeSessionInterpretation.h"

namespace vellmark {

AgentUsageSnapshot readSavedClaudeRun(const SavedRun& run) {
    if (!isClaudeQueryOutput(run.output)) {
        return interpretClaudeSession(ClaudeScreen(run.output), {run.exitStatus, run.timedOut},
                                      run.now);
    }
    const ClaudeQueryReply reply = parseClaudeQueryReply(run.output, std::nullopt);
    if (reply.kind != ClaudeQueryReply::Kind::answered) {
        throw UsageProviderError::claudeQueryFailed(reply.reason);
    }
    // Which version gave the answer is not in it: it is taken as today's.
    return claudeQuerySnapshot(reply.answer, {}, std::nullopt, run.now);
}

} // namespace vellmark
