#pragma once

#include "text/BoundedJSON.h"

#include <optional>
#include <string>

/// Reads what the CLI answers: a member that is missing or of another type is no value.
namespace vellmark {

/// The member of `object` by that name; a JSON null where there is none or `object` is no object.
const JSON& memberOf(const JSON& object, const char* name);

std::optional<std::string> textOf(const JSON& value);

/// Always finite.
std::optional<double> numberOf(const JSON& value);

} // namespace vellmark
