#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace vellmark {

/// A message for the user to look at, change and send.
struct MailDraft {
    std::string recipient;
    std::string subject;
    std::string body;
    std::filesystem::path attachment;
};

enum class MailOutcome {
    opened,
    cancelled,   ///< by the user, when asked for a program
    unavailable, ///< there is no program that takes messages with attachments
};

/// The system's way to write a message. Main thread.
class MailComposer {
public:
    /// Told on any thread, at most once; not after the composer has gone.
    using Done = std::function<void(MailOutcome)>;

    virtual ~MailComposer() = default;
    /// Opens the user's mail program with the draft, without waiting for it. Ends a draft that is
    /// still being opened.
    virtual void compose(MailDraft draft, Done done) = 0;
};

/// `environment` is the user's: mail programs are theirs, not ours.
std::unique_ptr<MailComposer> makeMailComposer(Environment environment);

} // namespace vellmark
