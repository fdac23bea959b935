// The Secret Service of freedesktop.org ("org.freedesktop.secrets"), asked over the session bus for
// the paths of matching items and nothing else. A module of its own: see ../CredentialStore.cpp.

#include "platform/CredentialStore.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/OpenBus.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <vector>

namespace vellmark {

namespace {

using Clock = std::chrono::steady_clock;
using Attributes = std::map<std::string, std::string>;

constexpr auto answerLimit = std::chrono::seconds(2);

bool anyItemMatches(sdbus::IProxy& secrets, const Attributes& attributes,
                    Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now());
    std::vector<sdbus::ObjectPath> unlocked;
    std::vector<sdbus::ObjectPath> locked;
    secrets.callMethod("SearchItems")
        .onInterface("org.freedesktop.Secret.Service")
        // Zero would mean the library's own limit, so even with no time left some is given.
        .withTimeout(std::max(left, std::chrono::microseconds(1)))
        .withArguments(attributes)
        .storeResultsTo(unlocked, locked);
    return !unlocked.empty() || !locked.empty();
}

class SecretService final : public CredentialStore {
public:
    std::optional<bool> hasGenericPassword(const std::string& service,
                                           const std::string& account) const override {
        const auto deadline = Clock::now() + answerLimit;
        const auto bus = openBus(MessageBus::session);
        if (!bus) {
            return std::nullopt;
        }
        try {
            const auto secrets =
                sdbus::createProxy(*bus, bus::ServiceName("org.freedesktop.secrets"),
                                   sdbus::ObjectPath("/org/freedesktop/secrets"));
            // Programs name the second attribute in two ways; both mean the same item.
            return anyItemMatches(*secrets, {{"service", service}, {"account", account}},
                                  deadline) ||
                   anyItemMatches(*secrets, {{"service", service}, {"username", account}},
                                  deadline);
        } catch (const sdbus::Error&) {
            return std::nullopt;
        }
    }
};

} // namespace

} // namespace vellmark

/// Never null; lives as long as the program.
extern "C" const vellmark::CredentialStore* vellmarkSecretService() {
    static const vellmark::SecretService service;
    return &service;
}
