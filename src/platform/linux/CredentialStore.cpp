// The Secret Service of freedesktop.org ("org.freedesktop.secrets"), asked over the session bus for
// the paths of matching items and nothing else.
//
// Spoken through sd-bus itself, the C library under sdbus-c++: opening a connection through
// sdbus-c++ waits for the bus's answer with a limit of its own, and a bus that has stopped would
// hold the caller for longer than the two seconds promised here.

#include "platform/CredentialStore.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <systemd/sd-bus.h>
#include <utility>

namespace vellmark {

namespace {

using Clock = std::chrono::steady_clock;
using Attributes = std::initializer_list<std::pair<const char*, const std::string*>>;

constexpr auto answerLimit = std::chrono::seconds(2);

struct BusCloser {
    // Without flushing: nothing is left to be said, and flushing may wait.
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct MessageReleaser {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, BusCloser>;
using Message = std::unique_ptr<sd_bus_message, MessageReleaser>;

std::uint64_t microsecondsUntil(Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    return static_cast<std::uint64_t>(std::max<std::int64_t>(left.count(), 0));
}

/// A session-bus connection on which the handshake is over; null when there is none in time.
Bus openSessionBus(Clock::time_point deadline) {
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0) {
        return nullptr;
    }
    Bus bus(opened);
    while (sd_bus_is_ready(bus.get()) == 0) {
        const int processed = sd_bus_process(bus.get(), nullptr);
        const std::uint64_t left = microsecondsUntil(deadline);
        if (processed < 0 || left == 0) {
            return nullptr;
        }
        if (processed == 0 && sd_bus_wait(bus.get(), left) < 0) {
            return nullptr;
        }
    }
    return sd_bus_is_ready(bus.get()) > 0 ? std::move(bus) : nullptr;
}

Message makeSearch(sd_bus* bus, Attributes attributes) {
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_call(bus, &made, "org.freedesktop.secrets",
                                       "/org/freedesktop/secrets", "org.freedesktop.Secret.Service",
                                       "SearchItems") < 0) {
        return nullptr;
    }
    Message message(made);
    bool complete = sd_bus_message_open_container(made, 'a', "{ss}") >= 0;
    for (const auto& [name, value] : attributes) {
        complete = complete && sd_bus_message_append(made, "{ss}", name, value->c_str()) >= 0;
    }
    complete = complete && sd_bus_message_close_container(made) >= 0;
    return complete ? std::move(message) : nullptr;
}

/// Whether the array of object paths that comes next in `reply` holds one; moves behind it.
bool nextArrayHasPath(sd_bus_message* reply) {
    const char* path = nullptr;
    bool found = false;
    if (sd_bus_message_enter_container(reply, 'a', "o") <= 0) {
        return false;
    }
    while (sd_bus_message_read_basic(reply, 'o', &path) > 0) {
        found = true;
    }
    sd_bus_message_exit_container(reply);
    return found;
}

bool anyItemMatches(sd_bus* bus, Attributes attributes, Clock::time_point deadline) {
    const Message search = makeSearch(bus, attributes);
    const std::uint64_t left = microsecondsUntil(deadline);
    if (!search || left == 0) {
        return false;
    }
    sd_bus_message* answered = nullptr;
    if (sd_bus_call(bus, search.get(), left, nullptr, &answered) < 0) {
        return false;
    }
    const Message reply(answered);
    const bool unlocked = nextArrayHasPath(answered);
    const bool locked = nextArrayHasPath(answered);
    return unlocked || locked;
}

class SecretService final : public CredentialStore {
public:
    // Programs name the second attribute in two ways; both mean the same item.
    bool hasGenericPassword(const std::string& service, const std::string& account) const override {
        const auto deadline = Clock::now() + answerLimit;
        const Bus bus = openSessionBus(deadline);
        return bus && (anyItemMatches(bus.get(), {{"service", &service}, {"account", &account}},
                                      deadline) ||
                       anyItemMatches(bus.get(), {{"service", &service}, {"username", &account}},
                                      deadline));
    }
};

} // namespace

std::shared_ptr<const CredentialStore> makeSystemCredentialStore() {
    return std::make_shared<SecretService>();
}

} // namespace vellmark
