#pragma once

#include <string>
#include <string_view>

namespace vellmark {

/// Every word with its first letter in upper case and the others in lower case, independent of any
/// language: "PRO plan" is "Pro Plan", "pay-as-you-go" is "Pay-As-You-Go", "don't" is "Don't".
std::string capitalized(std::string_view text);

} // namespace vellmark
