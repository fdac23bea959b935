#pragma once

#include "text/Instant.h"

#include <memory>
#include <string>

namespace vellmark {

/// A setup script in a terminal window of the user's. Main thread. Destroying it takes away the
/// script's file, and neither ends the script nor closes the window.
class SetupRun {
public:
    enum class Stage {
        opening,  ///< the window is about to come
        running,  ///< the script runs
        ended,    ///< the script ended with `exitStatus`
        closed,   ///< the script was ended with its window, or by force
        noWindow, ///< no terminal has shown the script
    };
    struct State {
        Stage stage = Stage::opening;
        int exitStatus = 0;
        bool operator==(const State&) const = default;
    };

    virtual ~SetupRun() = default;
    /// How far it is. Looks at files and never waits; to be asked every few seconds.
    virtual State look(Instant now) = 0;
};

/// Whether scripts can be shown to the user in a terminal window, and why not.
enum class SetupMeans { available, noShell, noTerminal };

/// What the script's window says below what the script has said.
struct SetupWindowTexts {
    /// How the window is closed, where it does not stay or go by itself. As SetupScriptTexts, no
    /// backslash and no dash at the beginning.
    std::string close;
};

} // namespace vellmark
