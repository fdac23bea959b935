#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// The version of a tool, to be compared with another one. What stands behind the three numbers
/// ("-beta.2") does not count.
struct VersionNumber {
    std::array<int, 3> numbers{};
    bool operator==(const VersionNumber&) const = default;
    bool operator<(const VersionNumber& other) const { return numbers < other.numbers; }

    /// The first version in what a tool says of itself ("agy 1.1.11 (build 7)"); absent without.
    static std::optional<VersionNumber> parse(std::string_view text);
    std::string text() const;
};

} // namespace vellmark
