#pragma once

#include "cli/CommandDescription.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// The manual page of a command, of the whole program where `command` is empty, in man(7) and
/// UTF-8. `command` is one of `program`.
std::string manPage(const ProgramDescription& program, const std::string& command,
                    const Localization& words);

/// "vellmark-log.1"; "vellmark.1" where `command` is empty.
std::string manPageFile(const std::string& command);

/// The page of the desktop application, "vellmark-desktop.1".
std::string desktopManPage(const Localization& words);

} // namespace vellmark
