#include "probes/codex/CodexLoginCheck.h"

#include "probes/codex/CodexMessages.h"
#include "probes/codex/CodexSession.h"

namespace vellmark {

std::optional<bool> codexIsLoggedIn(const Machine& machine, const std::filesystem::path& executable,
                                    Seconds limit) {
    std::optional<bool> answer;
    try {
        CodexSession session(machine, executable, ChildSession::ErrorStream::nullDevice);
        session.converse(CodexMessages::loginCheck, limit, [&](const CodexReply& reply) {
            const bool tells = reply.id == CodexMessages::accountID && !reply.refusal;
            if (tells && !answer) {
                answer = reply.hasAccount;
            }
            return tells ? CodexSession::Patience(0) : std::nullopt;
        });
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    return answer;
}

} // namespace vellmark
