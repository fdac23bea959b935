#include "platform/SignalChannel.h"
#include "support/Matchers.h"

#include <csignal>

namespace vellmark::tests {
namespace {

void (*handlerOf(int signal))(int) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

TEST(SignalChannel, TellsSignalsInTheirOrderAndRestoresTheirEffect) {
    {
        SignalChannel channel({SIGTERM, SIGHUP}, {SIGWINCH});
        ::raise(SIGWINCH);
        ::raise(SIGHUP);
        ::raise(SIGTERM);
        EXPECT_THAT(channel.take(), ElementsAre(SIGWINCH, SIGHUP, SIGTERM));
        EXPECT_THAT(channel.take(), IsEmpty());
    }
    for (const int signal : {SIGTERM, SIGHUP, SIGWINCH}) {
        EXPECT_EQ(handlerOf(signal), SIG_DFL) << signal;
    }
}

TEST(SignalChannel, LeavesIgnoredWhatTheCallerIgnores) {
    ::signal(SIGHUP, SIG_IGN);
    {
        SignalChannel channel({SIGTERM, SIGHUP});
        ::raise(SIGHUP);
        EXPECT_THAT(channel.take(), IsEmpty());
    }
    EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    ::signal(SIGHUP, SIG_DFL);
}

} // namespace
} // namespace vellmark::tests
