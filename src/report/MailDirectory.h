#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// Where a report stands while a mail program may still read it: a folder of its own, its owner's
/// alone (0700), in the user's temporary folder. Any thread.
namespace MailDirectory {

/// Makes "vellmark-support-<UUID>" with a file in it, at once or not at all. Returns the folder;
/// an empty path, with nothing left behind, where `error` says why.
std::filesystem::path make(const std::filesystem::path& temporary, const std::string& fileName,
                           std::string_view text, std::error_code& error);

void remove(const std::filesystem::path& directory);

/// Removes what an earlier run of this user left. For a program that is the only one of its kind.
void removeLeftBehind(const std::filesystem::path& temporary);

} // namespace MailDirectory

} // namespace vellmark
