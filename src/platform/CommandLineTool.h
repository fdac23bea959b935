#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <optional>
#include <system_error>

namespace vellmark {

/// `vellmark` as a command of every terminal: a link in a folder of the search path to the program
/// in the bundle. Packages bring such a link themselves, a bundle cannot. Looks at the file system
/// each time, and never touches what somebody else put there. Main thread.
class CommandLineTool {
public:
    enum class State {
        off,
        leftBehind, ///< a link into a bundle that is no longer there; may be replaced
        on,
        kept,    ///< leads to this program, by a link of another making
        foreign, ///< something else has the name
    };

    CommandLineTool(std::filesystem::path program, std::filesystem::path link);

    State state() const;
    /// This user may write into the link's folder, or make it.
    bool mayChange() const;
    /// Why it is not as wanted; `file_exists` where the name is not Vellmark's.
    std::error_code setOn(bool isOn) const;

    const std::filesystem::path& program() const { return program_; }
    const std::filesystem::path& link() const { return link_; }

private:
    std::filesystem::path program_;
    std::filesystem::path link_;
};

/// The terminal program that belongs to a desktop program: beside it, and in a bundle in "Helpers",
/// because most Macs take "Vellmark" and "vellmark" for one name.
std::filesystem::path terminalProgram(const std::filesystem::path& desktopProgram);

/// The command in /usr/local/bin. Absent for a sandbox or demo, and where the desktop program runs
/// from no bundle, or from a place that the system gave it for this once.
std::optional<CommandLineTool> bundledCommandLineTool(const Machine& machine,
                                                      const std::filesystem::path& desktopProgram);

} // namespace vellmark
