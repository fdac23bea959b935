// The Secret Service is asked by a module beside the program, which is loaded at the first
// question: its library for the message bus brings six more, and to load them takes about as long
// as all else that the terminal program does until it prints. Most runs ask nothing.

#include "platform/CredentialStore.h"

#include "platform/ProgramPath.h"

#include <dlfcn.h>

namespace vellmark {

namespace {

/// Null where the module cannot be loaded.
const CredentialStore* secretService() {
    static const CredentialStore* const loaded = []() -> const CredentialStore* {
        const auto file = programPath().parent_path() / "vellmark-secrets.so";
        // Never unloaded: a bus that does not answer is waited for by a thread in it.
        void* const module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr) {
            return nullptr;
        }
        using Entry = const CredentialStore* (*)();
        const auto entry = reinterpret_cast<Entry>(::dlsym(module, "vellmarkSecretService"));
        return entry ? entry() : nullptr;
    }();
    return loaded;
}

class SystemCredentialStore final : public CredentialStore {
public:
    std::optional<bool> hasGenericPassword(const std::string& service,
                                           const std::string& account) const override {
        const CredentialStore* const store = secretService();
        return store ? store->hasGenericPassword(service, account) : std::nullopt;
    }
};

} // namespace

std::shared_ptr<const CredentialStore> makeSystemCredentialStore() {
    return std::make_shared<SystemCredentialStore>();
}

} // namespace vellmark
