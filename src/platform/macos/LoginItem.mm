#include "platform/LoginItem.h"

#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// The system starts the main application of the bundle that asks. It finds the bundle by its
/// identifier and does not tell where that was.
class MainApplicationItem final : public LoginItem {
public:
    explicit MainApplicationItem(fs::path bundle) : bundle_(std::move(bundle)) {}

    State state() const override {
        switch ([[SMAppService mainAppService] status]) {
        case SMAppServiceStatusEnabled:
            return State::on;
        case SMAppServiceStatusRequiresApproval:
            return State::needsApproval;
        case SMAppServiceStatusNotRegistered:
        case SMAppServiceStatusNotFound:
            break;
        }
        return State::off;
    }

    std::string setEnabled(bool enabled) override {
        SMAppService* const service = [SMAppService mainAppService];
        NSError* error = nil;
        if (enabled) {
            // Registered at its old place, it must be taken out before it is registered again.
            if ([service status] == SMAppServiceStatusEnabled) {
                [service unregisterAndReturnError:nullptr];
            }
            // Waiting for approval is not a refusal: the state tells about it.
            if ([service registerAndReturnError:&error] ||
                [service status] == SMAppServiceStatusRequiresApproval) {
                return {};
            }
        } else if ([service status] == SMAppServiceStatusNotRegistered ||
                   [service unregisterAndReturnError:&error]) {
            return {};
        }
        NSString* const reason = [error localizedDescription];
        return reason != nil ? [reason UTF8String] : "SMAppService";
    }

    fs::path program() const override { return bundle_; }
    std::optional<fs::path> registeredProgram() const override { return std::nullopt; }
    void openSystemSettings() const override { [SMAppService openSystemSettingsLoginItems]; }

private:
    fs::path bundle_;
};

} // namespace

std::unique_ptr<LoginItem> makeLoginItem(const Machine& machine) {
    NSBundle* const bundle = [NSBundle mainBundle];
    // Run from a build tree there is no bundle, and from a quarantined place it is not the user's.
    if (machine.isSandbox() || [bundle bundleIdentifier] == nil) {
        return nullptr;
    }
    NSString* const path = [[bundle bundlePath] stringByStandardizingPath];
    if ([path rangeOfString:@"/AppTranslocation/"].location != NSNotFound) {
        return nullptr;
    }
    return std::make_unique<MainApplicationItem>([path fileSystemRepresentation]);
}

} // namespace vellmark
