#pragma once

#include <memory>
#include <optional>
#include <string>

namespace vellmark {

/// Asks the system's credential store (keychain, Secret Service) whether an item exists. Never
/// reads a secret. Usable from any thread; answers within about 2 s.
class CredentialStore {
public:
    virtual ~CredentialStore() = default;
    /// Absent when the store cannot be asked: there is none, or it does not answer.
    virtual std::optional<bool> hasGenericPassword(const std::string& service,
                                                   const std::string& account) const = 0;
};

std::shared_ptr<const CredentialStore> makeSystemCredentialStore();

} // namespace vellmark
