#pragma once

#include "platform/DescriptorWatcher.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vellmark {

/// A notice on the user's screen that stands outside the program's windows.
struct NotificationContent {
    struct Action {
        /// Told back when it is chosen; not empty.
        std::string name;
        std::string title;
    };
    /// Takes the place of the one that has the same identifier.
    std::string id;
    /// Plain text; the body in one line or several.
    std::string title;
    std::string body;
    /// Beside a click on the notice itself; left out where the desktop has no room for them.
    std::vector<Action> actions;
    /// Need not interrupt anybody.
    bool isQuiet = false;
};

/// A square picture; pixels are 0xAARRGGBB, not premultiplied, row by row from the top.
struct NotificationIcon {
    int side = 0;
    std::vector<std::uint32_t> pixels;
};

/// Shows notices by way of the desktop's own service: on macOS the notification centre, on Linux
/// whoever owns "org.freedesktop.Notifications" on the session bus, also one that comes later or
/// restarts. Main thread; handlers are called from the event loop, never from within a call.
class NotificationCenter {
public:
    enum class Availability {
        unknown, ///< nobody has looked yet
        available,
        unserved,  ///< nobody here shows notices
        forbidden, ///< the user has forbidden them in the system's settings
        unasked,   ///< the system has yet to ask the user
    };
    struct Handlers {
        std::function<void()> availabilityChanged;
        /// `action` is empty when the notice itself was clicked.
        std::function<void(const std::string& id, const std::string& action)> chosen;
        /// Closed by the user, or by the desktop after a while.
        std::function<void(const std::string& id)> gone;
        /// It could not be shown.
        std::function<void(const std::string& id)> failed;
        /// Who showed them has ended.
        std::function<void()> allGone;
        /// The desktop's leave to take the keyboard, before `chosen`; not from every service.
        std::function<void(const std::string& token)> activationToken = {};
    };

    virtual ~NotificationCenter() = default;

    virtual Availability availability() const = 0;
    /// Looks who shows notices, unless that is known; the answer comes as a change. With
    /// `mayAskUser` a system that wants to ask the user first does so.
    virtual void lookForService(bool mayAskUser) = 0;
    /// Only while `available`.
    virtual void post(const NotificationContent& content) = 0;
    /// Nothing happens where none of this identifier is shown.
    virtual void close(const std::string& id) = 0;
    /// Whether it was posted and the service has not taken it yet.
    virtual bool isUnderWay(const std::string& id) const = 0;
    /// Where the user allows notices; false where the system has no such place.
    virtual bool openSystemSettings() const = 0;
    /// Whether notices outlive the program: a click on one starts it again.
    virtual bool outlivesProgram() const = 0;
};

/// Never null. `icon` stands beside the text where the system has none for the program.
std::unique_ptr<NotificationCenter> makeNotificationCenter(DescriptorWatcher& loop,
                                                           NotificationIcon icon,
                                                           NotificationCenter::Handlers handlers);

} // namespace vellmark
