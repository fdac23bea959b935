#include "probes/codex/CodexConversation.h"

#include "probes/AgentWorkspace.h"
#include "process/ChildEnvironment.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {

namespace {

constexpr Seconds longestWait{0.5};

std::chrono::steady_clock::time_point after(Seconds span) {
    using Clock = std::chrono::steady_clock;
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(span);
}

ChildConfiguration serverConfiguration(const Machine& machine,
                                       const std::filesystem::path& executable) {
    ChildConfiguration configuration;
    configuration.executable = executable;
    configuration.arguments = {"app-server", "--listen", "stdio://"};
    configuration.environment = childEnvironment(machine);
    configuration.workingDirectory = madeAgentWorkspace(machine, "Codex");
    return configuration;
}

} // namespace

CodexConversation::CodexConversation(const Machine& machine,
                                     const std::filesystem::path& executable,
                                     ChildSession::ErrorStream errors)
    : child_(serverConfiguration(machine, executable), errors) {}

void CodexConversation::converse(std::string_view messages, Seconds limit,
                                 const std::function<Patience(CodexReply)>& take) {
    deadline_ = after(limit);
    Clock::time_point end = deadline_;
    const auto timeLeft = [&end] { return std::max(Seconds(end - Clock::now()), Seconds(0)); };
    // A child that closes its input early may still have answered: its output decides.
    child_.write(messages, timeLeft());
    std::string bytes;
    while (Clock::now() < end) {
        bytes.clear();
        const auto event = child_.read(bytes, std::min(longestWait, timeLeft()));
        const bool bounded = lines_.append(bytes, [&](std::string_view line) {
            auto reply = parseCodexReply(line);
            if (const Patience patience = reply ? take(std::move(*reply)) : std::nullopt) {
                end = std::min(deadline_, after(*patience));
            }
        });
        if (!bounded || event == ChildSession::ReadEvent::endOfFile ||
            event == ChildSession::ReadEvent::failed) {
            break;
        }
    }
}

std::string CodexConversation::errorText() {
    std::string text = child_.errorText();
    return isValidUTF8(text) ? text : std::string();
}

} // namespace vellmark
