#pragma once

#include "presentation/StatusReport.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What status bars and prompts read. Pure functions.
///
/// The names of accounts, windows and models and the words of an agent come from outside: each form
/// makes all of them harmless for the program that reads it.
enum class StatusFormat {
    text,     ///< for people; the terminal adds its looks
    waybar,   ///< one line of JSON, its texts in Pango markup
    i3blocks, ///< three lines: text, short text, colour
    i3bar,    ///< one block of the i3bar protocol; followed, the whole protocol
    polybar,  ///< one line with its tags for colours
    tmux,     ///< one line with its styles
    starship, ///< a few plain words for a prompt
    swiftbar, ///< a title, a line for each window, actions
    json,     ///< everything, for other programs
};

/// Their names, in the order of the help.
const std::vector<std::string>& statusFormatNames();
/// Absent for a name that is none.
std::optional<StatusFormat> statusFormatNamed(std::string_view name);
/// Whether it has a place for each agent by itself.
bool listsAgents(StatusFormat format);

/// `text` on one line, without what the program of that format would take for more than text.
std::string escapedFor(StatusFormat format, std::string_view text);

/// What a bar's menu can start; empty for nothing.
struct StatusPrograms {
    std::string terminal; ///< the path of `vellmark`
    std::string desktop;  ///< the path of the desktop program
};

/// The whole output in one of the formats, with the line feed at its end.
std::string statusOutput(const StatusReport& report, StatusFormat format,
                         const StatusPrograms& programs = {});

/// The same for a program that goes on reading: what comes before the first report, and each report
/// as one line, or as what the reader takes for one.
std::string statusStreamHead(StatusFormat format);
std::string statusStreamOutput(const StatusReport& report, StatusFormat format,
                               const StatusPrograms& programs = {});

/// The parts of a line for people: "Critical", "Claude Code", "Session 4% left", "Resets in …",
/// "34 min old".
std::vector<std::string> statusTextParts(const StatusReport& report);

/// A template with fields in braces: "{short-agent} {left}". "{{" and "}}" are braces, "\n" and
/// "\t" what they are elsewhere. A field of which nothing is known is empty.
class StatusTemplate {
public:
    /// Why a text is none: the field that does not exist, or a brace without its other one (empty).
    struct Fault {
        std::string field;
    };
    /// Throws Fault.
    explicit StatusTemplate(std::string_view text);
    /// The fields there are.
    static std::vector<std::string> fieldNames();
    /// What stands in the fields is made harmless for a reader of that format.
    std::string filled(const StatusReport& report, StatusFormat reader) const;

private:
    struct Piece {
        std::string text;
        bool isField = false;
    };
    std::vector<Piece> pieces_;
};

/// The exit status that tells the health: 0, 10 running low, 11 critical, 12 unavailable.
int statusExitStatus(UsageHealth health);
/// "healthy", "attention", "critical", "unavailable": the same in all languages.
std::string_view healthName(UsageHealth health);

} // namespace vellmark
