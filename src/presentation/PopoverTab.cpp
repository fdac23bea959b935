#include "presentation/PopoverTab.h"

#include "presentation/AgentPage.h"

#include <algorithm>

namespace vellmark {

std::string PopoverTab::storedForm() const {
    return provider ? std::string(AgentPage::providerPrefix) + provider->rawValue : "overview";
}

PopoverTab PopoverTab::fromStoredForm(std::string_view text,
                                      std::span<const AgentProviderID> shown) {
    if (!text.starts_with(AgentPage::providerPrefix)) {
        return overview();
    }
    AgentProviderID id(std::string(text.substr(AgentPage::providerPrefix.size())));
    if (std::find(shown.begin(), shown.end(), id) == shown.end()) {
        return overview();
    }
    return agent(std::move(id));
}

} // namespace vellmark
