#include "process/ChildSession.h"

#include "platform/ChildPipes.h"
#include "process/BackgroundReaper.h"
#include "process/LaunchedChild.h"
#include "process/OutputCapture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <utility>

namespace vellmark {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t errorTextLimit = 64 * 1024;
/// A pipe holds 1 MB at most, so further reads in a row would only find what was written meanwhile.
constexpr int mostDrains = 16;

/// Rounded up, so that a wait never ends before its time; bounded for `poll`.
int pollTimeout(Clock::duration left) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(milliseconds, 0, 60'000));
}

Clock::time_point after(Seconds wait) {
    const Seconds bounded = std::clamp(wait, Seconds::zero(), Seconds(1e9));
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(bounded);
}

} // namespace

struct ChildSession::State {
    State(const ChildConfiguration& configuration, ErrorStream errors)
        : input(makePipe()), output(makePipe()) {
        ChildStreams streams{input.readEnd.get(), output.writeEnd.get(), -1};
        if (errors == ErrorStream::pipe) {
            error.emplace(errorTextLimit, OutputCapture::Part::end);
            streams.error = error->childEnd();
        }
        if (configuration.mergesStandardError) {
            streams.error = streams.output;
        }
        child.emplace(configuration, streams);
        input.readEnd.reset();
        output.writeEnd.reset();
        if (error) {
            error->closeChildEnd();
        }
        ::fcntl(input.writeEnd.get(), F_SETFL, O_NONBLOCK);
        ::fcntl(output.readEnd.get(), F_SETFL, O_NONBLOCK);
    }

    ~State() {
        input.writeEnd.reset();
        if (child) {
            BackgroundReaper::adopt(std::move(*child));
        }
    }

    int errorDescriptor() const { return error ? error->descriptor() : -1; }

    /// Reads what is on the error pipe now. Returns even if the child never stops writing.
    void drainErrors() {
        for (int count = 0; count < mostDrains && error && error->drain(); ++count) {
        }
    }

    Pipe input;
    Pipe output;
    std::optional<OutputCapture> error;
    std::optional<LaunchedChild> child;
    /// When the end of the child was first seen.
    std::optional<Clock::time_point> ended;
};

ChildSession::ChildSession(const ChildConfiguration& configuration, ErrorStream errors)
    : state_(std::make_unique<State>(configuration, errors)) {}

ChildSession::~ChildSession() = default;

bool ChildSession::write(std::string_view bytes, Seconds limit) {
    const auto deadline = after(limit);
    const int input = state_->input.writeEnd.get();
    while (!bytes.empty()) {
        const ssize_t written = writeWithoutSignal(input, bytes);
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            continue;
        }
        if (errno == EINTR) {
            continue;
        }
        if (errno != EAGAIN || Clock::now() >= deadline) {
            return false;
        }
        std::array<pollfd, 2> events{pollfd{input, POLLOUT, 0},
                                     pollfd{state_->errorDescriptor(), POLLIN, 0}};
        ::poll(events.data(), events.size(), pollTimeout(deadline - Clock::now()));
        state_->drainErrors();
    }
    return true;
}

ChildSession::ReadEvent ChildSession::read(std::string& buffer, Seconds wait) {
    const auto deadline = after(wait);
    State& state = *state_;
    std::array<char, 65536> chunk;
    for (;;) {
        const ssize_t count = ::read(state.output.readEnd.get(), chunk.data(), chunk.size());
        if (count > 0) {
            buffer.append(chunk.data(), static_cast<std::size_t>(count));
            return ReadEvent::data;
        }
        if (count == 0) {
            return ReadEvent::endOfFile;
        }
        if (errno == EINTR) {
            continue;
        }
        if (errno != EAGAIN) {
            return ReadEvent::failed;
        }
        const auto now = Clock::now();
        if (state.ended && now >= *state.ended + readingAfterEnd) {
            return ReadEvent::endOfFile;
        }
        if (now >= deadline) {
            return ReadEvent::idle;
        }
        const auto until =
            state.ended ? std::min(deadline, *state.ended + readingAfterEnd) : deadline;
        std::array<pollfd, 3> events{
            pollfd{state.output.readEnd.get(), POLLIN, 0},
            pollfd{state.errorDescriptor(), POLLIN, 0},
            pollfd{state.ended ? -1 : state.child->endDescriptor(), POLLIN, 0}};
        if (::poll(events.data(), events.size(), pollTimeout(until - now)) < 0 && errno != EINTR) {
            return ReadEvent::failed;
        }
        state.drainErrors();
        if (events[2].revents != 0) {
            state.ended = Clock::now();
        }
    }
}

std::string ChildSession::errorText() {
    state_->drainErrors();
    return state_->error ? state_->error->text() : std::string();
}

pid_t ChildSession::processIdentifier() const {
    return state_->child->pid();
}

} // namespace vellmark
