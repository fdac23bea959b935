#include "probes/claude/ClaudeLoginCheck.h"

#include "probes/AgentWorkspace.h"
#include "process/BoundedProcess.h"
#include "process/ChildEnvironment.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <system_error>

namespace vellmark {

namespace {

/// The answer has a few hundred bytes; what goes beyond this is not one.
constexpr std::size_t answerLimit = 1u << 20;

std::optional<std::string> text(const JSON& object, const char* name) {
    const auto member = object.find(name);
    const bool isText = member != object.end() && member->is_string();
    return isText ? std::optional(member->get<std::string>()) : std::nullopt;
}

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
        login.usesAPIKey = text(status, "authMethod") == "api_key";
        login.email = text(status, "email");
        const auto subscriptionType = status.find("subscriptionType");
        login.lacksSubscription = subscriptionType != status.end() && subscriptionType->is_null();
        // The subscription alone does not tell which of its sizes; without one there is no plan.
        if (const auto subscription = text(status, "subscriptionType")) {
            login.plan = planName(text(status, "planTier").value_or(*subscription));
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
    child.standardOutput = ChildOutput::captured(answerLimit);
    child.mergesStandardError = true;
    try {
        const BoundedProcessResult result = BoundedProcess::run(child, limit, killGrace);
        return result.timedOut ? ClaudeLogin{} : parseClaudeLogin(result.output);
    } catch (const std::system_error&) {
        return {};
    }
}

} // namespace vellmark
