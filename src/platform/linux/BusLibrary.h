#pragma once

// sdbus-c++ in its versions 1 and 2, which do the same under different names. What differs is here
// and nowhere else; cmake/Dependencies.cmake says which version it is.

#include <sdbus-c++/sdbus-c++.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vellmark::bus {

#if VELLMARK_SDBUS_MAJOR >= 2

using ServiceName = sdbus::ServiceName;
using ErrorName = sdbus::Error::Name;
/// The first argument of what is told the answer of a call; false where all went well.
using CallError = std::optional<sdbus::Error>;

/// Handles one message that has arrived; false when there was none.
inline bool processPendingEvent(sdbus::IConnection& connection) {
    return connection.processPendingEvent();
}

/// `handler` takes the message as `auto&&`, and is told until the slot ends.
template<typename Handler>
[[nodiscard]] sdbus::Slot addMatch(sdbus::IConnection& connection, const std::string& rule,
                                   Handler&& handler) {
    return connection.addMatch(rule, std::forward<Handler>(handler), sdbus::return_slot);
}

/// After the last `uponSignal`.
inline void receiveSignals(sdbus::IProxy&) {}

/// Whoever called the method that is running.
inline std::string caller(const sdbus::IObject& object) {
    return object.getCurrentlyProcessedMessage().getSender();
}

/// The one interface of an object, there for others once it is published.
class Interface {
public:
    Interface(sdbus::IObject& object, std::string name) : object_(object), name_(std::move(name)) {}

    template<typename Function>
    Interface& method(const std::string& name, Function&& function) {
        members_.emplace_back(
            sdbus::registerMethod(name).implementedAs(std::forward<Function>(function)));
        return *this;
    }
    template<typename Getter>
    Interface& property(const std::string& name, Getter&& getter) {
        members_.emplace_back(
            sdbus::registerProperty(name).withGetter(std::forward<Getter>(getter)));
        return *this;
    }
    template<typename... Arguments>
    Interface& signal(const std::string& name) {
        members_.emplace_back(sdbus::registerSignal(name).withParameters<Arguments...>());
        return *this;
    }
    void publish() { object_.addVTable(sdbus::InterfaceName(name_), std::move(members_)); }

private:
    sdbus::IObject& object_;
    std::string name_;
    std::vector<sdbus::VTableItem> members_;
};

#else

using ServiceName = std::string;
using ErrorName = std::string;
using CallError = const sdbus::Error*;

inline bool processPendingEvent(sdbus::IConnection& connection) {
    return connection.processPendingRequest();
}

template<typename Handler>
[[nodiscard]] sdbus::Slot addMatch(sdbus::IConnection& connection, const std::string& rule,
                                   Handler&& handler) {
    return connection.addMatch(rule, std::forward<Handler>(handler));
}

inline void receiveSignals(sdbus::IProxy& proxy) {
    proxy.finishRegistration();
}

inline std::string caller(const sdbus::IObject& object) {
    return object.getCurrentlyProcessedMessage()->getSender();
}

class Interface {
public:
    Interface(sdbus::IObject& object, std::string name) : object_(object), name_(std::move(name)) {}

    template<typename Function>
    Interface& method(const std::string& name, Function&& function) {
        object_.registerMethod(name).onInterface(name_).implementedAs(
            std::forward<Function>(function));
        return *this;
    }
    template<typename Getter>
    Interface& property(const std::string& name, Getter&& getter) {
        object_.registerProperty(name).onInterface(name_).withGetter(std::forward<Getter>(getter));
        return *this;
    }
    template<typename... Arguments>
    Interface& signal(const std::string& name) {
        object_.registerSignal(name).onInterface(name_).template withParameters<Arguments...>();
        return *this;
    }
    void publish() { object_.finishRegistration(); }

private:
    sdbus::IObject& object_;
    std::string name_;
};

#endif

} // namespace vellmark::bus
