#include "probes/claude/ClaudeLoginCheck.h"

#include "probes/AgentWorkspace.h"
#include "probes/claude/ClaudeMembers.h"
#include "process/BoundedProcess.h"
#include "process/ChildEnvironment.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <system_error>

namespace vellmark {

namespace {

/// The answer has a few hundred bytes; what goes beyond this is not one.
constexpr std::size_t loginAnswerLimit = 1u << 20;

/// "max_20x" as "Max 20x".
std::string planName(std::string tier) {
    bool beginsWord = true;
    for (char& character : tier) {
        if (character == '_') {
            character = ' ';
        } else if (beginsWord && character >= 'a' && character <= 'z') {
            character = static_cast<char>(character - 'a' + 'A');
        }
        beginsWord = character == ' ';
    }
    return tier;
}

} // namespace

ClaudeLogin parseClaudeLogin(std::string_view answer) {
    ClaudeLogin login;
    try {
        const JSON status = parsedJSON(answer);
        if (!status.is_object()) {
            return login;
        }
        const auto isLoggedIn = status.find("loggedIn");
        if (isLoggedIn != status.end() && isLoggedIn->is_boolean()) {
            login.isLoggedIn = isLoggedIn->get<bool>();
        }
        login.usesAPIKey = textOf(memberOf(status, "authMethod")) == "api_key";
        login.email = textOf(memberOf(status, "email"));
        const auto subscriptionType = status.find("subscriptionType");
        login.lacksSubscription = subscriptionType != status.end() && subscriptionType->is_null();
        // The subscription alone does not tell which of its sizes; without one there is no plan.
        if (const auto subscription = textOf(memberOf(status, "subscriptionType"))) {
            login.plan = planName(textOf(memberOf(status, "planTier")).value_or(*subscription));
        }
    } catch (const JSONDecodingError&) {
        return {};
    }
    return login;
}

ClaudeLogin claudeLogin(const Machine& machine, const std::filesystem::path& executable,
                        Seconds limit, Seconds killGrace) {
    ChildConfiguration child;
    child.executable = executable;
    child.arguments = {"auth", "status", "--json"};
    child.environment = childEnvironment(machine);
    child.workingDirectory = agentWorkspaceOrRoot(machine, "Claude");
    child.standardOutput = ChildOutput::captured(loginAnswerLimit);
    child.mergesStandardError = true;
    try {
        const BoundedProcessResult result = BoundedProcess::run(child, limit, killGrace);
        return result.timedOut ? ClaudeLogin{} : parseClaudeLogin(result.output);
    } catch (const std::system_error&) {
        return {};
    }
}

} // namespace vellmark
