#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// Between facts that stand in one line.
inline constexpr std::string_view factSeparator = " · ";

/// The parts with `separator` between them; empty ones are left out.
inline std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty()) {
            text.append(text.empty() ? "" : separator).append(part);
        }
    }
    return text;
}

} // namespace vellmark
