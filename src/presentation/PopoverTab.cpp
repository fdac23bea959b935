#include "presentation/PopoverTab.h"

#include <algorithm>

namespace vellmark {

static constexpr std::string_view providerPrefix = "provider:";

std::string PopoverTab::storedForm() const {
    return provider ? std::string(providerPrefix) + provider->rawValue : "overview";
}

PopoverTab PopoverTab::fromStoredForm(std::string_view text,
                                      std::span<const AgentProviderID> shown) {
    if (!text.starts_with(providerPrefix)) {
        return overview();
    }
    AgentProviderID id(std::string(text.substr(providerPrefix.size())));
    if (std::find(shown.begin(), shown.end(), id) == shown.end()) {
        return overview();
    }
    return agent(std::move(id));
}

} // namespace vellmark
