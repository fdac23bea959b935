#include "text/Localization.h"

#include "text/Catalog.h"
#include "text/Formatting.h"
#include "text/TimeZone.h"

#include <algorithm>
#include <optional>

namespace vellmark {

namespace {

/// A conversion found in a format text: "%@", "%lld", "%2$@" or "%%".
struct Placeholder {
    std::size_t length = 0;
    bool isPercentSign = false;
    /// From 1; 0 takes the next argument in order.
    std::size_t position = 0;
};

std::optional<Placeholder> placeholderAt(std::string_view text) {
    if (text.substr(0, 2) == "%%") {
        return Placeholder{.length = 2, .isPercentSign = true};
    }
    std::size_t digits = 1;
    std::size_t position = 0;
    while (digits < text.size() && digits < 3 && text[digits] >= '0' && text[digits] <= '9') {
        position = position * 10 + static_cast<std::size_t>(text[digits++] - '0');
    }
    const bool isPositional = position > 0 && digits < text.size() && text[digits] == '$';
    const std::size_t start = isPositional ? digits + 1 : 1;
    for (const std::string_view conversion : {std::string_view("@"), std::string_view("lld")}) {
        if (text.substr(start, conversion.size()) == conversion) {
            return Placeholder{.length = start + conversion.size(),
                               .position = isPositional ? position : 0};
        }
    }
    return std::nullopt;
}

/// The place of a language's texts in an entry; German's where there is no such language.
std::size_t indexOfLanguage(std::string_view code) {
    const auto found = std::ranges::find(catalogLanguages, code);
    return found == catalogLanguages.end()
               ? 0
               : static_cast<std::size_t>(found - catalogLanguages.begin());
}

std::string argumentText(const TextArgument& argument, const Localization& words) {
    if (const auto* text = std::get_if<std::string>(&argument)) {
        return *text;
    }
    return integerText(std::get<std::int64_t>(argument), words);
}

} // namespace

std::span<const std::string_view> Localization::languages() {
    return catalogLanguages;
}

bool Localization::hasLanguage(std::string_view code) {
    return std::ranges::find(catalogLanguages, code) != catalogLanguages.end();
}

Localization::Localization(std::string languageCode, std::string localeIdentifier,
                           std::string timeZoneIdentifier)
    : languageCode_(std::move(languageCode)), localeIdentifier_(std::move(localeIdentifier)),
      timeZoneIdentifier_(std::move(timeZoneIdentifier)) {}

TimeZone Localization::timeZone() const {
    const auto named = TimeZone::named(timeZoneIdentifier_);
    return named ? *named : TimeZone::system();
}

std::string Localization::text(std::string_view key) const {
    const auto entries = catalogEntries();
    const auto keyOf = [](const CatalogEntry& entry) { return entry.key.view(); };
    const auto found = std::ranges::lower_bound(entries, key, {}, keyOf);
    if (found == entries.end() || keyOf(*found) != key) {
        return std::string(key);
    }
    return std::string(found->texts[indexOfLanguage(languageCode_)].view());
}

bool Localization::takesSingular(std::int64_t count) const {
    return count == 1 || (count == 0 && languageCode_ == "fr");
}

std::string Localization::format(std::string_view key,
                                 std::span<const TextArgument> arguments) const {
    const std::string pattern = text(key);
    std::string result;
    std::size_t next = 1;
    for (std::size_t index = 0; index < pattern.size();) {
        const auto rest = std::string_view(pattern).substr(index);
        const auto placeholder = rest.front() == '%' ? placeholderAt(rest) : std::nullopt;
        if (!placeholder) {
            result += pattern[index++];
            continue;
        }
        index += placeholder->length;
        if (placeholder->isPercentSign) {
            result += '%';
            continue;
        }
        const std::size_t position = placeholder->position > 0 ? placeholder->position : next++;
        if (position <= arguments.size()) {
            result += argumentText(arguments[position - 1], *this);
        } else {
            result += rest.substr(0, placeholder->length);
        }
    }
    return result;
}

} // namespace vellmark
