#include "platform/CredentialStore.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/PrivateBus.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>

namespace vellmark {
namespace {

using Attributes = std::map<std::string, std::string>;

/// A Secret Service with one item. An item is found when it has all attributes asked for.
class SecretServiceStandIn {
public:
    SecretServiceStandIn(const std::string& address, Attributes item, bool locked)
        : connection_(sdbus::createSessionBusConnectionWithAddress(address)),
          object_(
              sdbus::createObject(*connection_, sdbus::ObjectPath("/org/freedesktop/secrets"))) {
        using Paths = std::vector<sdbus::ObjectPath>;
        bus::Interface(*object_, "org.freedesktop.Secret.Service")
            .method("SearchItems",
                    [item = std::move(item), locked](const Attributes& wanted) {
                        const bool found =
                            std::all_of(wanted.begin(), wanted.end(), [&](const auto& one) {
                                const auto own = item.find(one.first);
                                return own != item.end() && own->second == one.second;
                            });
                        const Paths paths =
                            found ? Paths{sdbus::ObjectPath("/org/freedesktop/secrets/item")}
                                  : Paths{};
                        return std::tuple<Paths, Paths>(locked ? Paths{} : paths,
                                                        locked ? paths : Paths{});
                    })
            .publish();
        connection_->requestName(bus::ServiceName("org.freedesktop.secrets"));
        connection_->enterEventLoopAsync();
    }

private:
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> object_;
};

class CredentialStoreTest : public tests::BusTest {
protected:
    std::optional<bool> ask() const { return store_->hasGenericPassword("gemini", "antigravity"); }

    /// The time that one question takes, which nobody answers.
    std::chrono::duration<double> timeToGiveUp() const {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(ask(), std::nullopt);
        return std::chrono::steady_clock::now() - start;
    }

    std::shared_ptr<const CredentialStore> store_ = makeSystemCredentialStore();
};

// The promise is two seconds; the rest is for a loaded machine.
constexpr std::chrono::duration<double> patience{6};

TEST_F(CredentialStoreTest, FindsAnItemByEitherNameOfItsAccount) {
    const std::tuple<Attributes, bool, bool> cases[] = {
        {{{"service", "gemini"}, {"account", "antigravity"}}, false, true},
        {{{"service", "gemini"}, {"account", "antigravity"}, {"xdg:schema", "x"}}, true, true},
        {{{"service", "gemini"}, {"username", "antigravity"}}, false, true},
        {{{"service", "gemini"}, {"username", "antigravity"}}, true, true},
        {{{"service", "gemini"}, {"username", "somebody"}}, false, false},
        {{{"service", "other"}, {"account", "antigravity"}}, false, false},
    };
    for (const auto& [item, locked, expected] : cases) {
        const SecretServiceStandIn service(bus_->address(), item, locked);
        EXPECT_EQ(ask(), expected) << ::testing::PrintToString(item);
    }
}

TEST_F(CredentialStoreTest, NoServiceAndNoBusCannotBeAsked) {
    EXPECT_EQ(ask(), std::nullopt);
    for (const char* address : {"unix:path=/nonexistent/bus", "nonsense"}) {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
        EXPECT_EQ(ask(), std::nullopt) << address;
    }
}

TEST_F(CredentialStoreTest, AHangingServiceIsNotWaitedFor) {
    std::ofstream(bus_->services() / "org.freedesktop.secrets.service")
        << "[D-BUS Service]\nName=org.freedesktop.secrets\nExec=/bin/sh -c "
           "\"exec /bin/sleep 8 >/dev/null 2>&1\"\n";
    EXPECT_LT(timeToGiveUp(), patience);
}

TEST_F(CredentialStoreTest, AStoppedBusIsNotWaitedFor) {
    bus_->stop();
    EXPECT_LT(timeToGiveUp(), patience);
}

TEST_F(CredentialStoreTest, LeavesNoDescriptorBehind) {
    EXPECT_EQ(ask(), std::nullopt);
    const auto before = tests::openDescriptorCount();
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(ask(), std::nullopt);
    }
    EXPECT_EQ(tests::openDescriptorCount(), before);
}

} // namespace
} // namespace vellmark
