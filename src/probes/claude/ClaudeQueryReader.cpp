#include "probes/claude/ClaudeQueryReader.h"

#include "model/UUID.h"
#include "probes/LaunchFailure.h"
#include "process/BoundedProcess.h"
#include "process/ChildEnvironment.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <system_error>

namespace vellmark {

namespace {

using ReplyKind = ClaudeQueryReply::Kind;

/// An answer has a few thousand bytes; older versions may send reports on the user's habits along.
constexpr std::size_t queryOutputLimit = 32u << 20;
constexpr std::size_t errorLimit = 64u << 10;

/// How the CLI refuses an option, and a request that it does not know without its options.
bool meansUnknown(std::string_view words) {
    return words.find("unknown option") != std::string_view::npos ||
           words.find("Unsupported control request") != std::string_view::npos;
}

} // namespace

ClaudeQueryReader::Result ClaudeQueryReader::ask(const std::filesystem::path& claude,
                                                 Seconds most) const {
    const std::string requestID = UUID::make().text();
    ChildConfiguration child;
    child.executable = claude;
    child.arguments = claudeQueryArguments();
    child.environment = childEnvironment(machine_);
    child.workingDirectory = workspace_;
    child.standardInput = claudeQueryRequest(requestID);
    child.standardOutput = ChildOutput::captured(queryOutputLimit);
    child.standardError = ChildOutput::captured(errorLimit);
    try {
        const BoundedProcessResult ended =
            BoundedProcess::run(child, std::min(limits_.answer, most), limits_.killGrace);
        Result result{.reply = parseClaudeQueryReply(ended.output, requestID),
                      .timedOut = ended.timedOut,
                      .words = lastCharacters(trimmed(ended.errorOutput), 300)};
        if (result.reply.kind == ReplyKind::none && meansUnknown(ended.errorOutput)) {
            result.reply.kind = ReplyKind::unsupported;
        }
        return result;
    } catch (const std::system_error& error) {
        throw UsageProviderError::launchFailed("Claude Code",
                                               launchFailureReason(error.code(), child.executable));
    }
}

} // namespace vellmark
