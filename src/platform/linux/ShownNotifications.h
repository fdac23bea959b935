#pragma once

#include "platform/NotificationCenter.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// Which of the program's notices the notification service knows by which number: what is to be
/// sent to it next, and what its answers and signals mean for the program. Knows no bus. The
/// service is not trusted: it may answer and signal whatever it likes, in any order. One thread.
///
/// A notice is sent anew only after the service has answered the former sending, since that answer
/// holds the number that the next one takes the place of.
class ShownNotifications {
public:
    struct Sending {
        /// Names it to `answered`. Never used twice.
        std::uint64_t ticket = 0;
        /// The service's number of the notice whose place it takes; 0 where there is none.
        std::uint32_t replaces = 0;
        NotificationContent content;
    };
    /// What follows from an answer, each where present: sent to the service, told to the program.
    struct Outcome {
        std::optional<Sending> send;
        /// A number to close.
        std::optional<std::uint32_t> close;
        std::optional<std::string> gone;
        std::optional<std::string> failed;
    };

    /// What is to be sent now; absent while a former sending of this notice is under way.
    std::optional<Sending> post(const NotificationContent& content);
    /// The number to close now, where the service has one for it.
    std::optional<std::uint32_t> close(const std::string& id);
    /// The service has answered, without a `number` where it refuses. An answer to what it was not
    /// asked, or was asked before it was lost, means nothing.
    Outcome answered(std::uint64_t ticket, std::optional<std::uint32_t> number);
    /// The service has closed a notice, of whichever program. Returns ours that is gone with it.
    std::optional<std::string> closed(std::uint32_t number);
    /// Whose number it is; absent where it is none of ours.
    std::optional<std::string> idOf(std::uint32_t number) const;
    /// Whether a sending of it has no answer yet.
    bool isUnderWay(const std::string& id) const;
    /// The service has gone, and all notices with it. Returns those that were under way.
    std::vector<std::string> lost();

private:
    struct Shown {
        /// The service's name for it; 0 before the first, and where it has none.
        std::uint32_t number = 0;
        /// Of the sending that is under way; 0 where none is.
        std::uint64_t ticket = 0;
        bool isClosing = false;
        std::optional<NotificationContent> next;
    };
    using Entries = std::map<std::string, Shown>;

    Sending sending(Shown& shown, NotificationContent content);
    Entries::const_iterator find(std::uint32_t number) const;

    Entries shown_;
    std::uint64_t lastTicket_ = 0;
};

} // namespace vellmark
