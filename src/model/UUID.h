#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// A universally unique identifier, written in its canonical upper-case form of 36 characters.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};
    /// A fresh random one (version 4).
    static UUID make();
    /// Absent when `text` is not of the canonical form (either case is accepted).
    static std::optional<UUID> parse(std::string_view text);
    std::string text() const;
    bool operator==(const UUID&) const = default;
};

} // namespace vellmark
