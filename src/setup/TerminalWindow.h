#pragma once

#include "platform/Machine.h"
#include "platform/UserTerminal.h"
#include "process/PrivateTemporaryDirectory.h"
#include "setup/SetupRun.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// Shows setup scripts in a window of the user's own terminal, for programs that have no terminal
/// themselves.
///
/// The window and everything in it are the user's: nothing of it is ended with this program, and
/// nothing of it is waited for. The script lies in a directory of its own (0700, the files 0600)
/// that goes with the run; what a killed program left goes with `removeAbandoned`. A small script
/// around it leaves word there: that it has begun, under which number, and how it ended.
namespace TerminalWindow {

SetupMeans means(const Machine& machine);

/// Throws std::system_error when the files cannot be written or no terminal can be launched.
std::unique_ptr<SetupRun> open(const Machine& machine, const std::string& script,
                               const SetupWindowTexts& texts, Instant now);

/// The same with the terminals to try, in their order; the next one where one ends without having
/// shown the script.
std::unique_ptr<SetupRun> open(const Machine& machine, const std::string& script,
                               const SetupWindowTexts& texts, Instant now,
                               std::vector<UserTerminal> terminals);

/// To be called at the start.
void removeAbandoned(const Machine& machine);

} // namespace TerminalWindow

} // namespace vellmark
