#include "probes/codex/CodexLoginCheck.h"

#include "probes/codex/CodexConversation.h"
#include "probes/codex/CodexMessages.h"

namespace vellmark {

std::optional<bool> codexIsLoggedIn(const Machine& machine, const std::filesystem::path& executable,
                                    Seconds limit) {
    std::optional<bool> answer;
    try {
        CodexConversation session(machine, executable, ChildSession::ErrorStream::nullDevice);
        session.converse(CodexMessages::loginCheck, limit, [&](const CodexReply& reply) {
            const bool tells = reply.id == CodexMessages::accountID && !reply.refusal;
            if (tells && !answer) {
                answer = reply.hasAccount;
            }
            return tells ? CodexConversation::Patience(0) : std::nullopt;
        });
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    return answer;
}

} // namespace vellmark
