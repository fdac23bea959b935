#pragma once

#include "support/TemporaryDirectory.h"
#include "support/TestTerminal.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <termios.h>
#include <vector>

namespace vellmark::tests {

/// What a finished run of the program left.
struct ProgramResult {
    /// The exit status; 128 + signal when one ended it; -1 when it did not end in time.
    int status = -1;
    std::string output;
    std::string errors;
};

/// One run of the built `vellmark`, as a user would start it: in files, or on a terminal of its
/// own, where standard output and standard error come together. Killed when it is forgotten.
class ProgramRun {
public:
    struct Setting {
        std::vector<std::string> arguments;
        /// Added to the surrounding environment; English and no colours' wishes are the default.
        std::map<std::string, std::string> environment;
        /// What standard input holds; absent: the null device.
        std::optional<std::string> input;
        /// Standard streams that are closed at the start.
        std::vector<int> closed;
        /// Standard output goes here in place of a file.
        std::string outputPath;
        /// Columns of the terminal; 0: no terminal.
        int columns = 0;
        int rows = 24;
        /// Run by a shell with job control, which continues with these commands when the program
        /// has been stopped or has ended.
        std::string shellCommands;
    };

    explicit ProgramRun(const Setting& setting);
    ~ProgramRun();
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    /// Runs it to its end.
    static ProgramResult of(const Setting& setting);

    /// The shell's where there is one.
    pid_t pid() const { return pid_; }
    /// How the terminal treats its keyboard now; it begins with settings that no program would
    /// guess.
    termios terminalSettings() const { return terminal_->settings(); }
    termios firstSettings() const { return firstSettings_; }
    /// What has been shown is not looked at any more.
    void forget() { shown_.clear(); }
    /// Types on the terminal.
    void type(std::string_view keys) const;
    /// Waits until `text` has appeared on the terminal; false when the program ends without it.
    bool shows(std::string_view text);
    ProgramResult wait(std::chrono::duration<double> limit = std::chrono::seconds(60));

private:
    void setUpTerminal();
    /// False when nothing came within a moment.
    bool readTerminal();

    TemporaryDirectory directory_;
    std::string outputPath_;
    std::optional<TestTerminal> terminal_;
    termios firstSettings_{};
    std::string shown_;
    pid_t pid_ = -1;
};

} // namespace vellmark::tests
