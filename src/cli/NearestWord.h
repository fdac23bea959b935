#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The one of `known` that the user is likely to have meant by `typed`: it begins so, or few
/// letters are wrong, missing, added or swapped. Absent (empty) when none is near.
std::string nearestWord(std::string_view typed, const std::vector<std::string>& known);

} // namespace vellmark
