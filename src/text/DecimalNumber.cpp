#include "text/DecimalNumber.h"

#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <locale>
#include <sstream>
#include <string>

namespace vellmark {

namespace {

std::size_t skipDigits(std::string_view text, std::size_t from) {
    const auto end = text.find_first_not_of("0123456789", from);
    return end == std::string_view::npos ? text.size() : end;
}

std::size_t skipSign(std::string_view text, std::size_t from) {
    return from < text.size() && (text[from] == '+' || text[from] == '-') ? from + 1 : from;
}

/// [sign] digits [. digits] [e [sign] digits], with at least one digit before the exponent.
bool isDecimal(std::string_view text) {
    const std::size_t start = skipSign(text, 0);
    std::size_t position = skipDigits(text, start);
    std::size_t digits = position - start;
    if (position < text.size() && text[position] == '.') {
        const std::size_t fraction = position + 1;
        position = skipDigits(text, fraction);
        digits += position - fraction;
    }
    if (digits == 0) {
        return false;
    }
    if (position < text.size() && (text[position] == 'e' || text[position] == 'E')) {
        const std::size_t exponent = skipSign(text, position + 1);
        position = skipDigits(text, exponent);
        if (position == exponent) {
            return false;
        }
    }
    return position == text.size();
}

} // namespace

std::optional<double> parseDecimal(std::string_view text) {
    if (!isDecimal(text)) {
        return std::nullopt;
    }
    // The C functions would read by the locale that the desktop toolkit has set.
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    double value = 0;
    return stream >> value ? std::optional(value) : std::nullopt;
}

std::string decimalText(double value) {
    return JSON(value).dump();
}

} // namespace vellmark
