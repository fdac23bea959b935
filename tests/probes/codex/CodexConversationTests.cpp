#include "probes/codex/CodexConversation.h"
#include "support/AgentSandbox.h"

#include <gtest/gtest.h>

#include <vector>

namespace vellmark::tests {
namespace {

TEST(CodexConversation, GoesOnAsLongAsTheLastReplySays) {
    AgentSandbox sandbox({});
    // The first two come in one piece.
    sandbox.installScript("codex", R"sh(printf '{"id":1,"result":{}}\n{"id":2,"result":{}}\n'
sleep 0.3
echo '{"id":3,"result":{}}'
exec sleep 60)sh");
    std::vector<std::int64_t> replies;
    {
        CodexConversation session(sandbox.machine(), sandbox.machine().home / ".local/bin/codex",
                                  ChildSession::ErrorStream::nullDevice);
        session.converse("", Seconds(60),
                         [&](const CodexReply& reply) -> CodexConversation::Patience {
                             replies.push_back(reply.id);
                             return Seconds(reply.id == 2 ? 60 : 0);
                         });
        EXPECT_FALSE(session.isOverdue());
    }
    EXPECT_EQ(replies, (std::vector<std::int64_t>{1, 2, 3}));
    EXPECT_EQ(sandbox.survivors(), std::vector<std::string>());
}

} // namespace
} // namespace vellmark::tests
