#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

struct RedactionOptions {
    /// E-mail addresses stay.
    bool includeEmails = false;
    /// Only the five rules that a report is documented to follow, as they stand: paths of the home
    /// directory and below /Users, named secrets, keys with known prefixes, e-mail addresses.
    bool strictRules = false;
};

/// `text` without what must not leave the machine: the home directory and user names in paths, the
/// values of tokens and keys and, unless they are asked for, e-mail addresses.
///
/// After the five rules comes a step that knows more (see Redaction.cpp): the token shapes of
/// common services, secrets in JSON members, assignments and request headers, private keys, the
/// user part of URLs, other users' homes.
///
/// Works on any bytes in time linear in their number; bytes that are no UTF-8 stay as they are
/// outside what is replaced. Fails closed: absent when a rule could not be applied.
std::optional<std::string> redacted(std::string_view text, std::string_view homeDirectory,
                                    const RedactionOptions& options = {});

/// What kind of thing was removed.
enum class RemovedKind {
    path,    ///< the home directory, or a user's name in a path
    address, ///< an e-mail address
    key,     ///< a token, a key, a password
};

/// Where it stood: the bytes of the redacted text that stand for it now.
struct RemovedPlace {
    std::size_t begin = 0;
    std::size_t end = 0;
    RemovedKind kind = RemovedKind::path;
    bool operator==(const RemovedPlace&) const = default;
};

struct RedactedText {
    std::string text;
    /// In their order. A place that lies in what was removed later is none.
    std::vector<RemovedPlace> places;
};

/// The same text, with the places where something was removed.
std::optional<RedactedText> redactedWithPlaces(std::string_view text,
                                               std::string_view homeDirectory,
                                               const RedactionOptions& options = {});

/// What another program said about a failure, as one line that may be shown and kept: `redacted`,
/// e-mail addresses included, and without queries of URLs and runs of characters that are no words.
/// Empty when a rule could not be applied. Applied to its own result, it changes nothing.
std::string redactedWords(std::string_view words, std::string_view homeDirectory);

/// The first 500 characters of that.
std::string redactedLine(std::string_view words, std::string_view homeDirectory);

/// The length of the longest start of `text`, in whole lines, that no match of a rule can reach
/// beyond, whatever follows: it can be redacted by itself. `text` ends with a line break.
std::size_t redactionBoundary(std::string_view text, std::string_view homeDirectory,
                              const RedactionOptions& options = {});

} // namespace vellmark
