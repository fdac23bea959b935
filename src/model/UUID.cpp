#include "model/UUID.h"

#include <array>
#include <random>

namespace vellmark {

namespace {

constexpr std::string_view upperHexDigits = "0123456789ABCDEF";

/// The bytes before which the canonical form has a hyphen.
constexpr bool startsGroup(std::size_t byte) {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

constexpr std::uint8_t noDigit = 0xFF;

/// The value of each character as a hexadecimal digit: histories hold hundreds of thousands.
constexpr std::array<std::uint8_t, 256> hexValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t value = 0; value < upperHexDigits.size(); ++value) {
        const char digit = upperHexDigits[value];
        values[static_cast<unsigned char>(digit)] = value;
        if (value >= 10) {
            values[static_cast<unsigned char>(digit - 'A' + 'a')] = value;
        }
    }
    return values;
}();

std::uint8_t hexValue(char digit) {
    return hexValues[static_cast<unsigned char>(digit)];
}

} // namespace

UUID UUID::make() {
    // One generator a thread: seeding asks the system, drawing does not.
    thread_local std::mt19937_64 generator([] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(),
                           device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }());
    UUID result;
    for (std::size_t index = 0; index < result.bytes.size(); index += 8) {
        std::uint64_t bits = generator();
        for (std::size_t offset = 0; offset < 8; ++offset, bits >>= 8) {
            result.bytes[index + offset] = static_cast<std::uint8_t>(bits & 0xFF);
        }
    }
    // Version 4, variant 1 (RFC 9562, section 5.4).
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0F) | 0x40);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3F) | 0x80);
    return result;
}

std::optional<UUID> UUID::parse(std::string_view text) {
    if (text.size() != 36) {
        return std::nullopt;
    }
    UUID result;
    std::size_t place = 0;
    for (std::size_t index = 0; index < result.bytes.size(); ++index) {
        if (startsGroup(index) && text[place++] != '-') {
            return std::nullopt;
        }
        const std::uint8_t high = hexValue(text[place++]);
        const std::uint8_t low = hexValue(text[place++]);
        if (high == noDigit || low == noDigit) {
            return std::nullopt;
        }
        result.bytes[index] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return result;
}

std::string UUID::text() const {
    std::string result;
    result.reserve(36);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (startsGroup(index)) {
            result += '-';
        }
        result += upperHexDigits[bytes[index] >> 4];
        result += upperHexDigits[bytes[index] & 0x0F];
    }
    return result;
}

} // namespace vellmark
