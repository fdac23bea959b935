#include "probes/claude/ClaudeLoginCheck.h"

#include "probes/BoundedProcess.h"
#include "probes/ChildEnvironment.h"

#include <nlohmann/json.hpp>

#include <string>
#include <system_error>

namespace vellmark {

namespace {

/// The answer has a few hundred bytes; what goes beyond this is not one.
constexpr std::size_t answerLimit = 1u << 20;

std::optional<bool> loggedInField(const std::string& output) {
    const auto answer = nlohmann::json::parse(output, nullptr, false);
    if (!answer.is_object()) {
        return std::nullopt;
    }
    const auto field = answer.find("loggedIn");
    if (field == answer.end() || !field->is_boolean()) {
        return std::nullopt;
    }
    return field->get<bool>();
}

} // namespace

std::optional<bool> claudeIsLoggedIn(const Machine& machine,
                                     const std::filesystem::path& executable, Seconds limit,
                                     Seconds killGrace) {
    ChildConfiguration child;
    child.executable = executable;
    child.arguments = {"auth", "status", "--json"};
    child.environment = childEnvironment(machine);
    child.standardOutput = ChildOutput::captured(answerLimit);
    child.mergesStandardError = true;
    try {
        const BoundedProcessResult result = BoundedProcess::run(child, limit, killGrace);
        return result.timedOut ? std::nullopt : loggedInField(result.output);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

} // namespace vellmark
