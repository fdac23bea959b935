#pragma once

#include "platform/DescriptorWatcher.h"
#include "platform/linux/OpenBus.h"

#include <functional>
#include <memory>

namespace vellmark {

/// A connection to a message bus that is driven by the front end's event loop: no thread of its
/// own, no wake-up unless a message comes. Main thread.
///
/// Opening, closing and every blocking call end within `busAnswerLimit`. A lost bus ends the watch;
/// calls on the connection then throw sdbus::Error as they did before.
class BusConnection : public std::enable_shared_from_this<BusConnection> {
public:
    /// The session bus, shared by everyone who asks while somebody holds it and it is not lost;
    /// null when there is none or it does not answer.
    static std::shared_ptr<BusConnection> session(DescriptorWatcher& loop);
    /// The system bus; null when there is none or it does not answer.
    static std::shared_ptr<BusConnection> system(DescriptorWatcher& loop);

    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    sdbus::IConnection& bus() { return *connection_; }
    /// False once the bus is lost.
    bool isOpen() const { return watch_ != nullptr; }

    /// Called once when the bus is lost; whoever needs a bus asks for another from the event loop,
    /// not from here.
    std::function<void()> onLoss;

    /// Handles what has arrived. Needed after a blocking call, which may have read messages for
    /// others from the descriptor.
    void process();

private:
    explicit BusConnection(std::unique_ptr<sdbus::IConnection> connection);
    static std::shared_ptr<BusConnection> open(DescriptorWatcher& loop, MessageBus which);

    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace vellmark
