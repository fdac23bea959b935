#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vellmark {

// Claude Code shows what a command of the user's choice prints: the member "statusLine" of the
// user's settings file. These functions put `vellmark statusline` there and take it out again. A
// command that was there goes on being run, after ours. Everything else in the file stays byte for
// byte as it is.

/// "settings.json" where Claude Code has it: in CLAUDE_CONFIG_DIR, else in "~/.claude".
std::filesystem::path claudeSettingsFile(const Machine& machine);

/// The settings are no JSON object, or have a status line of an unknown kind.
class ClaudeSettingsFault : public std::runtime_error {
public:
    enum class Kind { notJSON, unknownStatusLine };
    ClaudeSettingsFault(Kind what, const std::string& reason)
        : std::runtime_error(reason), kind(what) {}
    Kind kind;
};

/// The settings with the status line of the `program` at that path; an empty text counts as no
/// settings. Absent when it is there already. Throws ClaudeSettingsFault.
std::optional<std::string> withStatusLine(std::string_view settings,
                                          const std::filesystem::path& program);
/// The settings as they were without it. Absent when it is not there. Throws ClaudeSettingsFault.
std::optional<std::string> withoutStatusLine(std::string_view settings);

/// A line of a comparison.
struct ChangedLine {
    enum class Kind { same, removed, added };
    Kind kind = Kind::same;
    std::string text;
    bool operator==(const ChangedLine&) const = default;
};
/// What differs, with a few lines around it.
std::vector<ChangedLine> changedLines(std::string_view before, std::string_view after);

/// A change of Claude Code's settings file that the user is to see before it is made.
struct ClaudeSettingsChange {
    std::filesystem::path file;
    std::string before;
    std::string after;

    enum class Wish { install, remove };
    /// Absent when there is nothing to change. Throws ClaudeSettingsFault, and std::system_error
    /// for a file that cannot be read; one that is not there is empty.
    static std::optional<ClaudeSettingsChange> of(const Machine& machine, Wish wish,
                                                  const std::filesystem::path& program);

    struct Outcome {
        std::error_code error;
        /// Somebody else has changed the file since it was read: nothing was written.
        bool hasChangedMeanwhile = false;
        /// Where the settings are as they were; empty when there were none.
        std::filesystem::path backup;
    };
    /// Makes it, and keeps the file as it was beside it ("settings.json.before-vellmark").
    Outcome make() const;
};

} // namespace vellmark
