#include "model/UsageProviderErrorCases.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/HelpPageContent.h"
#include "probes/ProviderRegistry.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace vellmark {
namespace {

/// Stands for what differs from case to case.
const std::string ellipsis = "…";

/// The agent that a case is of, by its message's key ("error.codex.noQuotas"); null for the cases
/// that any agent may have.
const ProviderDescriptor* agentOf(const ErrorCase& failure) {
    const auto& agents = providerRegistry();
    const auto found = std::ranges::find_if(agents, [&](const ProviderRegistration& agent) {
        return failure.messageKey.starts_with("error." + agent.descriptor.id.rawValue + ".");
    });
    return found == agents.end() ? nullptr : &found->descriptor;
}

std::vector<std::string> commands(ErrorKind kind, const ProviderDescriptor* agent) {
    if (agent == nullptr || !agent->setup) {
        return {};
    }
    const CLISetupInfo& info = agent->setup->info;
    switch (wayOutOf(agent->id, kind)) {
    case WayOut::install:
    case WayOut::update:
        return {info.installCommand};
    case WayOut::logIn:
        return {info.loginCommand};
    default:
        return {};
    }
}

HelpEntry entry(const ErrorCase& failure, const ProviderDescriptor* agent,
                const Localization& words) {
    HelpEntry entry;
    entry.text = words.text(std::string("help.cure.") + failure.name);
    entry.commands = commands(failure.kind, agent);
    if (failure.messageKey.empty()) {
        entry.title = words.text("help.failures.other");
        return entry;
    }
    // What the first place of a message is about: the agent, or else its own words.
    std::string first = ellipsis;
    if (failure.kind == ErrorKind::executableMissing) {
        first = words.text(agent->sourceKey);
    } else if (failure.kind == ErrorKind::timeout) {
        first = words.text("help.failures.anyAgent");
    }
    entry.title = words.format(failure.messageKey, {first, ellipsis});
    return entry;
}

HelpGroup agentFailures(const ProviderDescriptor& agent, const Localization& words) {
    HelpGroup group{.title = agentName(agent.id, words), .entries = {}};
    group.entries.push_back(entry(errorCase(ErrorKind::executableMissing), &agent, words));
    for (const ErrorCase& failure : errorCases) {
        if (agentOf(failure) == &agent) {
            group.entries.push_back(entry(failure, &agent, words));
        }
    }
    return group;
}

HelpGroup commonFailures(const Localization& words) {
    HelpGroup group{.title = words.text("help.failures.any"), .entries = {}};
    for (const ErrorCase& failure : errorCases) {
        if (agentOf(failure) == nullptr && failure.kind != ErrorKind::executableMissing) {
            group.entries.push_back(entry(failure, nullptr, words));
        }
    }
    return group;
}

/// Trouble with the program's own files.
HelpGroup fileFailures(const Localization& words) {
    const auto trouble = [&](std::string_view titleKey, std::string text) {
        return HelpEntry{.mark = {},
                         .title = words.text(titleKey),
                         .text = std::move(text),
                         .commands = {},
                         .keys = {},
                         .buttons = {}};
    };
    return {.title = words.text("help.failures.files"),
            .entries = {
                trouble("help.cure.storageFailed.title", words.text("help.cure.storageFailed")),
                trouble("help.cure.storageInTheWay.title",
                        words.format("log.storage.inTheWay", {ellipsis}) + "."),
                trouble("help.cure.storageForeign.title",
                        words.format("log.storage.foreign", {ellipsis}) + "."),
            }};
}

} // namespace

std::vector<HelpGroup> helpFailures(const Localization& words) {
    std::vector<HelpGroup> groups{commonFailures(words)};
    for (const ProviderRegistration& agent : providerRegistry()) {
        groups.push_back(agentFailures(agent.descriptor, words));
    }
    groups.push_back(fileFailures(words));
    return groups;
}

} // namespace vellmark
