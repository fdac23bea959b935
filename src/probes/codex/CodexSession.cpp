#include "probes/codex/CodexSession.h"

#include "probes/ChildEnvironment.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {

namespace {

constexpr Seconds longestWait{0.5};

ChildConfiguration serverConfiguration(const Machine& machine,
                                       const std::filesystem::path& executable) {
    ChildConfiguration configuration;
    configuration.executable = executable;
    configuration.arguments = {"app-server", "--listen", "stdio://"};
    configuration.environment = childEnvironment(machine);
    return configuration;
}

} // namespace

CodexSession::CodexSession(const Machine& machine, const std::filesystem::path& executable,
                           ChildSession::ErrorStream errors)
    : child_(serverConfiguration(machine, executable), errors) {}

Seconds CodexSession::timeLeft() const {
    return std::max(Seconds(deadline_ - Clock::now()), Seconds::zero());
}

bool CodexSession::converse(std::string_view messages, Seconds limit,
                            const std::function<bool(CodexReply)>& take) {
    deadline_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
    // A child that closes its input early may still have answered: its output decides.
    child_.write(messages, timeLeft());
    bool satisfied = false;
    std::string bytes;
    while (!satisfied && !isOverdue()) {
        bytes.clear();
        const auto event = child_.read(bytes, std::min(longestWait, timeLeft()));
        const bool bounded = lines_.append(bytes, [&](std::string_view line) {
            if (auto reply = parseCodexReply(line)) {
                satisfied = take(std::move(*reply)) || satisfied;
            }
        });
        if (!bounded || event == ChildSession::ReadEvent::endOfFile ||
            event == ChildSession::ReadEvent::failed) {
            break;
        }
    }
    return satisfied;
}

std::string CodexSession::errorText() {
    std::string text = child_.errorText();
    return isValidUTF8(text) ? text : std::string();
}

} // namespace vellmark
