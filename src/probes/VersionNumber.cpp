#include "probes/VersionNumber.h"

#include "text/Pattern.h"

#include <charconv>

namespace vellmark {

std::optional<VersionNumber> VersionNumber::parse(std::string_view text) {
    static const Pattern pattern(
        R"((?:^|[^0-9.])([0-9]{1,6})\.([0-9]{1,6})(?:\.([0-9]{1,6}))?(?:[^0-9]|$))");
    const auto match = pattern.search(text);
    if (!match) {
        return std::nullopt;
    }
    VersionNumber version;
    for (std::size_t index = 0; index < version.numbers.size(); ++index) {
        const std::string_view digits = match->group(index + 1);
        std::from_chars(digits.data(), digits.data() + digits.size(), version.numbers[index]);
    }
    return version;
}

std::string VersionNumber::text() const {
    return std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." +
           std::to_string(numbers[2]);
}

} // namespace vellmark
