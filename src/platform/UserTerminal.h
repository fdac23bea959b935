#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vellmark {

/// A terminal emulator of the user's, and how it is told to show a program in a new window.
struct UserTerminal {
    std::filesystem::path program;
    /// What stands before the program that is to be shown.
    std::vector<std::string> arguments;
    /// It is given the file of a script, which must be executable, in place of a program.
    bool opensFile = false;
    /// Its window goes when the program ends.
    bool closesAtEnd = true;

    bool operator==(const UserTerminal&) const = default;
};

/// The terminals that are installed, the one that the user would expect first: the one he has
/// named, the desktop's own, then whatever there is. Empty where there is none, or no display to
/// show it on. Looks at a few files; asks nobody.
std::vector<UserTerminal> userTerminals(const Machine& machine);

} // namespace vellmark
