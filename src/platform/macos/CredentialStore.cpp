#include "platform/CredentialStore.h"

#include "platform/macos/CoreFoundationOwner.h"

#include <Security/Security.h>
#include <array>

namespace vellmark {

namespace {

class Keychain final : public CredentialStore {
public:
    // Attributes only: the item's secret is not asked for, so the system shows no question either.
    std::optional<bool> hasGenericPassword(const std::string& service,
                                           const std::string& account) const override {
        const auto serviceText = makeCFString(service);
        const auto accountText = makeCFString(account);
        if (!serviceText || !accountText) {
            return std::nullopt;
        }
        std::array<const void*, 5> keys = {kSecClass, kSecAttrService, kSecAttrAccount,
                                           kSecMatchLimit, kSecReturnAttributes};
        std::array<const void*, 5> values = {kSecClassGenericPassword, serviceText.get(),
                                             accountText.get(), kSecMatchLimitOne, kCFBooleanTrue};
        const CFOwner<CFDictionaryRef> query(CFDictionaryCreate(
            kCFAllocatorDefault, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
            &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
        CFTypeRef found = nullptr;
        const OSStatus status = SecItemCopyMatching(query.get(), &found);
        const CFOwner<CFTypeRef> attributes(found);
        if (status == errSecSuccess) {
            return true;
        }
        return status == errSecItemNotFound ? std::optional(false) : std::nullopt;
    }
};

} // namespace

std::shared_ptr<const CredentialStore> makeSystemCredentialStore() {
    return std::make_shared<Keychain>();
}

} // namespace vellmark
