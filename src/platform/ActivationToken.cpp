#include "platform/ActivationToken.h"

namespace vellmark {
namespace {

/// The first that is there counts.
constexpr const char* variables[] = {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"};

} // namespace

std::string activationToken(const Environment& environment) {
    for (const char* variable : variables) {
        const auto found = environment.find(variable);
        if (found != environment.end() && !found->second.empty()) {
            return found->second;
        }
    }
    return {};
}

Environment withoutActivationToken(Environment environment) {
    for (const char* variable : variables) {
        environment.erase(variable);
    }
    return environment;
}

} // namespace vellmark
