#pragma once

#include <memory>
#include <string>

namespace vellmark {

/// Asks the system's credential store (keychain, Secret Service) whether an item exists. Never
/// reads a secret. Usable from any thread; answers within about 2 s.
class CredentialStore {
public:
    virtual ~CredentialStore() = default;
    /// False also when there is no store to ask.
    virtual bool hasGenericPassword(const std::string& service,
                                    const std::string& account) const = 0;
};

std::shared_ptr<const CredentialStore> makeSystemCredentialStore();

} // namespace vellmark
