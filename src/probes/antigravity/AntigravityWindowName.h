#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// A window's name as the Antigravity CLI writes it ("Weekly limit remaining"), brought to its slug
/// and, where it is known, the window's length in minutes.
struct AntigravityWindowName {
    std::string slug;
    std::optional<double> minutes;

    /// Weekly goes before five hours, which is the only window of hours with a length; then daily
    /// and monthly, else the text without "limit remaining", else "other".
    static AntigravityWindowName of(std::string_view text);

    bool operator==(const AntigravityWindowName&) const = default;
};

} // namespace vellmark
