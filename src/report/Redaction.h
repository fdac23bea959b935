#pragma once

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

} // namespace vellmark
