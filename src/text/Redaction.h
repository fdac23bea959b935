#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// `text` without what must not leave the machine: the home directory and user names in paths, the
/// values of tokens and keys and, unless `includeEmails` is set, e-mail addresses.
///
/// Works on any bytes in time linear in their number; bytes that are no UTF-8 stay as they are
/// outside what is replaced. Fails closed: absent when a rule could not be applied.
std::optional<std::string> redacted(std::string_view text, std::string_view homeDirectory,
                                    bool includeEmails);

/// What another program said about a failure, as one line of at most 300 characters that may be
/// shown and kept: `redacted`, e-mail addresses included, and without what stands in the places
/// where requests and answers carry secrets (the login and the query of a URL, the named members of
/// a JSON body, runs of characters that are no words). Empty when a rule could not be applied.
std::string redactedLine(std::string_view words, std::string_view homeDirectory);

/// The length of the longest start of `text`, in whole lines, that no match of a rule can reach
/// beyond, whatever follows: it can be redacted by itself. `text` ends with a line break.
std::size_t redactionBoundary(std::string_view text, std::string_view homeDirectory);

} // namespace vellmark
