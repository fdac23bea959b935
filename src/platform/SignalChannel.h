#pragma once

#include "platform/Descriptor.h"

#include <csignal>
#include <utility>
#include <vector>

namespace vellmark {

/// Turns signals into something to read: while it exists, those named arrive on a descriptor in
/// place of their default effect. One at a time, made and destroyed on the main thread.
class SignalChannel {
public:
    /// A signal of `ending` that the caller has ignored stays ignored: what was started with nohup
    /// is to survive the end of its terminal. Throws std::system_error.
    explicit SignalChannel(const std::vector<int>& ending, const std::vector<int>& others = {});
    /// Restores the actions that it found.
    ~SignalChannel();
    SignalChannel(const SignalChannel&) = delete;
    SignalChannel& operator=(const SignalChannel&) = delete;

    /// Another one from now on; one to stop (SIGTSTP) that the caller has ignored stays ignored.
    void add(int signal);

    /// Readable when a signal has arrived.
    int descriptor() const { return readEnd_.get(); }
    /// The signals that have arrived since, in their order. Never waits.
    std::vector<int> take();

private:
    void handle(int signal);
    void handleUnlessIgnored(int signal);

    Descriptor readEnd_;
    Descriptor writeEnd_;
    std::vector<std::pair<int, struct sigaction>> savedActions_;
};

/// Makes a write to a reader that has gone away, or beyond the largest size of a file that this
/// process may make, a mere error. Call when the program starts.
void ignoreWriteSignals();

} // namespace vellmark
