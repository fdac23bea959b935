#pragma once

#include "platform/DescriptorWatcher.h"

#include <functional>
#include <memory>

namespace vellmark {

class BusConnection;

/// Tells whoever uses the session bus when it is lost, and when there is one to use: after it was
/// lost, or where there was none. Looks for one when its socket appears, so waiting costs nothing;
/// a bus that is not reached by a file is not found again. Main thread.
class SessionBusReturn {
public:
    struct Handlers {
        /// May be empty.
        std::function<void()> onLoss;
        /// The new connection, also to be had by `BusConnection::session`.
        std::function<void(const std::shared_ptr<BusConnection>& bus)> onReturn;
    };
    /// The handlers are called from the event loop, in the order of these objects.
    SessionBusReturn(DescriptorWatcher& loop, Handlers handlers);
    ~SessionBusReturn();
    SessionBusReturn(const SessionBusReturn&) = delete;
    SessionBusReturn& operator=(const SessionBusReturn&) = delete;

private:
    class Search;
    std::shared_ptr<Search> search_;
    Handlers handlers_;
};

} // namespace vellmark
