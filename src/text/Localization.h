#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace vellmark {

class TimeZone;

/// An argument of a format text: "%@" takes a text, "%lld" an integer.
using TextArgument = std::variant<std::string, std::int64_t>;

/// The words of one language together with the user's formats; a small value that can be copied.
///
/// A key is looked up in the chosen language, then in German, then the key itself is the text.
/// Safe to use from any thread. The texts are those of resources/Localizable.xcstrings.
class Localization {
public:
    /// The languages there are, by their codes ("de", "en" …).
    static std::span<const std::string_view> languages();
    static bool hasLanguage(std::string_view code);

    /// `languageCode` is one of `languages()`; any other finds only German texts.
    /// `localeIdentifier` and `timeZoneIdentifier` choose the formats of numbers and dates, for
    /// example "de_CH" and "Europe/Zurich"; empty ones mean the language's own formats and the
    /// system's zone.
    explicit Localization(std::string languageCode, std::string localeIdentifier = {},
                          std::string timeZoneIdentifier = {});

    const std::string& languageCode() const { return languageCode_; }
    const std::string& localeIdentifier() const { return localeIdentifier_; }
    /// The zone that dates are written in: the system's when the chosen one is unknown.
    TimeZone timeZone() const;

    /// The text behind `key`, without replacing placeholders.
    std::string text(std::string_view key) const;

    /// The text behind `key` with "%@", "%lld" and positional "%1$@" replaced by `arguments`
    /// ("%%" is a per cent sign). A placeholder without its argument is left as it stands.
    std::string format(std::string_view key, std::initializer_list<TextArgument> arguments) const {
        return format(key, std::span(arguments.begin(), arguments.size()));
    }
    std::string format(std::string_view key, std::span<const TextArgument> arguments) const;

    /// Whether the language uses the singular for `count` things: for one and, in French, for none.
    /// A text that names a count has a key for each form.
    bool takesSingular(std::int64_t count) const;

    bool operator==(const Localization&) const = default;

private:
    std::string languageCode_;
    std::string localeIdentifier_;
    std::string timeZoneIdentifier_;
};

} // namespace vellmark
