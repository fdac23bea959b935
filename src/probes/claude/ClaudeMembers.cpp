#include "probes/claude/ClaudeMembers.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace vellmark {

const JSON& memberOf(const JSON& object, const char* name) {
    static const JSON none;
    if (!object.is_object()) {
        return none;
    }
    const auto found = object.find(name);
    return found != object.end() ? *found : none;
}

std::optional<std::string> textOf(const JSON& value) {
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

std::optional<double> numberOf(const JSON& value) {
    return value.is_number() && std::isfinite(value.get<double>())
               ? std::optional(value.get<double>())
               : std::nullopt;
}

} // namespace vellmark
