#include "process/BackgroundReaper.h"
#include "process/ChildSession.h"
#include "process/RunningChildren.h"
#include "process/ShellChild.h"
#include "support/Matchers.h"

#include <chrono>
#include <signal.h>
#include <string>
#include <system_error>

namespace vellmark::tests {
namespace {

using ErrorStream = ChildSession::ErrorStream;
using ReadEvent = ChildSession::ReadEvent;

constexpr Seconds enough{20};

/// What comes until the child's end, which comes at last.
std::string readAll(ChildSession& session) {
    std::string text;
    ReadEvent event = ReadEvent::data;
    while (event == ReadEvent::data) {
        event = session.read(text, enough);
    }
    EXPECT_EQ(event, ReadEvent::endOfFile);
    return text;
}

TEST(ChildSession, AnswersComeBack) {
    ChildSession session(shellChild("read line; echo \"got $line\"; read line; echo \"$line!\""),
                         ErrorStream::nullDevice);
    EXPECT_THAT(RunningChildren::snapshot(), ElementsAre(session.processIdentifier()));
    std::string text;
    EXPECT_TRUE(session.write("one\n", enough));
    EXPECT_EQ(session.read(text, enough), ReadEvent::data);
    EXPECT_EQ(text, "got one\n");
    EXPECT_TRUE(session.write("two\n", enough));
    EXPECT_EQ(readAll(session), "two!\n");
}

TEST(ChildSession, SilenceIsIdle) {
    ChildSession session(shellChild("exec sleep 30"), ErrorStream::pipe);
    std::string text;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(session.read(text, Seconds(0.1)), ReadEvent::idle);
    EXPECT_GE(Seconds(std::chrono::steady_clock::now() - start), Seconds(0.1));
    EXPECT_EQ(session.read(text, Seconds(-1)), ReadEvent::idle);
    EXPECT_EQ(text, "");
}

TEST(ChildSession, WritingToAChildThatHasGoneRaisesNothing) {
    ::signal(SIGPIPE, SIG_DFL);
    ChildSession session(shellChild("exit 0"), ErrorStream::nullDevice);
    EXPECT_EQ(readAll(session), "");
    EXPECT_FALSE(session.write(std::string(1 << 20, 'x'), enough));
    sigset_t pending;
    ::sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST(ChildSession, WritingToAChildThatDoesNotReadEndsAtTheLimit) {
    ChildSession session(shellChild("exec sleep 30"), ErrorStream::nullDevice);
    EXPECT_FALSE(session.write(std::string(1 << 20, 'x'), Seconds(0.1)));
}

TEST(ChildSession, AChattyErrorStreamBlocksNobodyAndItsEndIsKept) {
    ChildSession session(shellChild("dd if=/dev/zero bs=1000000 count=3 >&2 2>/dev/null; "
                                    "echo the reason >&2; echo done"),
                         ErrorStream::pipe);
    EXPECT_EQ(readAll(session), "done\n");
    const std::string errors = session.errorText();
    EXPECT_EQ(errors.size(), 64u * 1024);
    EXPECT_TRUE(errors.ends_with("the reason\n"));
}

TEST(ChildSession, AnErrorStreamWithoutEndHoldsNobodyUp) {
    ChildSession session(shellChild("for writer in 1 2 3 4; do "
                                    "dd if=/dev/zero bs=65536 >&2 2>/dev/null & done; wait"),
                         ErrorStream::pipe);
    std::string text;
    const auto start = std::chrono::steady_clock::now();
    while (Seconds(std::chrono::steady_clock::now() - start) < Seconds(1)) {
        EXPECT_EQ(session.read(text, Seconds(0.2)), ReadEvent::idle);
    }
    EXPECT_EQ(session.errorText().size(), 64u * 1024);
    EXPECT_LT(Seconds(std::chrono::steady_clock::now() - start), enough);
}

TEST(ChildSession, TheEndOfAnErrorTextBeginsWithAWholeCharacter) {
    ChildSession session(
        shellChild("yes ä | tr -d '\\n' | head -c 100000 >&2; echo the reason >&2"),
        ErrorStream::pipe);
    EXPECT_EQ(readAll(session), "");
    const std::string errors = session.errorText();
    EXPECT_EQ(errors.size(), 64u * 1024 - 1);
    EXPECT_TRUE(errors.starts_with("ä"));
    EXPECT_TRUE(errors.ends_with("the reason\n"));
}

TEST(ChildSession, AGrandchildThatHoldsTheOutputDoesNotHoldTheEnd) {
    const TemporaryDirectory directory;
    ChildSession session(
        shellChild("sleep 30 & echo $! > " + (directory / "pid").string() + "; echo last"),
        ErrorStream::pipe);
    EXPECT_EQ(readAll(session), "last\n");
    ::kill(awaitedPid(directory / "pid"), SIGKILL);
}

TEST(ChildSession, ALaunchThatFailsThrowsAndLeavesNothing) {
    const auto descriptors = openDescriptorCount();
    ChildConfiguration child;
    child.executable = "/nowhere/at/all";
    EXPECT_THROW(ChildSession(child, ErrorStream::pipe), std::system_error);
    // An earlier session's may still be on their way out.
    EXPECT_LE(openDescriptorCount(), descriptors);
    EXPECT_THAT(RunningChildren::snapshot(), IsEmpty());
}

TEST(ChildSession, TheEndOfASessionWaitsForNobody) {
    const auto start = std::chrono::steady_clock::now();
    pid_t deaf = 0;
    {
        ChildSession session(shellChild("trap '' TERM; echo ready; while :; do sleep 0.02; done"),
                             ErrorStream::nullDevice);
        deaf = session.processIdentifier();
        std::string text;
        EXPECT_EQ(session.read(text, enough), ReadEvent::data);
    }
    const Seconds taken = std::chrono::steady_clock::now() - start;
    EXPECT_THAT(RunningChildren::snapshot(), IsEmpty());
    EXPECT_TRUE(isProcessAlive(deaf)) << "after " << taken.count() << " s";
    EXPECT_TRUE(becomesTrue([deaf] { return !isProcessAlive(deaf); })) << "killed after 3 s";
    EXPECT_TRUE(becomesTrue([] { return BackgroundReaper::snapshot().empty(); }));
}

TEST(ChildSession, ManySessionsHoldOnToNothing) {
    { ChildSession first(shellChild("cat"), ErrorStream::pipe); }
    const auto isCollected = [] { return BackgroundReaper::snapshot().empty(); };
    ASSERT_TRUE(becomesTrue(isCollected));
    const auto descriptors = openDescriptorCount();
    const auto threads = threadCount();
    for (int count = 0; count < 100; ++count) {
        ChildSession session(shellChild(count % 2 == 0 ? "exit 0" : "cat"), ErrorStream::pipe);
        session.write("text\n", enough);
    }
    EXPECT_TRUE(becomesTrue(isCollected));
    EXPECT_EQ(livingChildCount(), 0u);
    EXPECT_FALSE(hasZombieChild());
    // A child's own child that was told to stop is remembered until the grace is over.
    EXPECT_TRUE(becomesTrue([=] { return openDescriptorCount() <= descriptors; }));
    EXPECT_EQ(threadCount(), threads);
}

} // namespace
} // namespace vellmark::tests
