#pragma once

#include <string>

namespace vellmark {

/// The waits of the scripted session. Seconds are whole because the interpreter's time limits are;
/// tests shorten them, the defaults are what the CLI has been found to need.
struct ClaudeSessionTimings {
    /// How long each step waits for the CLI to show something.
    int stepTimeoutSeconds = 30;
    /// From the status screen to Escape, and from Escape to the usage command.
    int statusPauseMs = 1200;
    int statusEscapePauseMs = 500;
    /// From Escape to the usage command when the status screen never showed.
    int missingStatusPauseMs = 300;
    /// Before and after leaving a CLI that is not logged in.
    int loggedOutPauseMs = 300;
    int loggedOutExitPauseMs = 500;
    /// How long an expected model window is waited for after the main blocks.
    int modelWindowSeconds = 10;
    /// The silence that makes a page complete, and the longest wait for it: with its end seen, and
    /// without.
    int markedQuietSeconds = 1;
    int markedCapMs = 3000;
    int unmarkedQuietSeconds = 2;
    int unmarkedCapMs = 10000;
    /// After Escape and after the exit command at the end.
    int leavePauseMs = 400;
    int exitPauseMs = 800;
};

/// How the script ends; any other status is a failure of the interpreter.
namespace ClaudeSessionStatus {
inline constexpr int complete = 0;
inline constexpr int completeBySilence = 20;
inline constexpr int noPrompt = 124;
inline constexpr int endedBeforeUsage = 125;
inline constexpr int noUsage = 126;
inline constexpr int endedInUsage = 127;
inline constexpr int notLoggedIn = 128;
/// An interpreter that was told to stop.
inline constexpr int terminated = 143;
} // namespace ClaudeSessionStatus

/// The text for the `expect` interpreter that opens the CLI's status and usage screens, records
/// what is drawn, and leaves. Reads VELLMARK_CLAUDE_PATH and VELLMARK_EXPECT_FABLE from its
/// environment; ends its output with one VELLMARK_TIMING line.
std::string claudeSessionScript(const ClaudeSessionTimings& timings = {});

} // namespace vellmark
