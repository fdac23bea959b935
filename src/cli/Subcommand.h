#pragma once

#include "cli/CommandOptions.h"
#include "cli/TerminalOutput.h"
#include "platform/Machine.h"
#include "probes/DemoSandbox.h"
#include "text/Localization.h"
#include "text/SystemErrorText.h"

#include <functional>
#include <string>
#include <system_error>
#include <vector>

namespace vellmark {

/// How the program ends. Ended by a signal it is 128 + its number.
namespace ExitStatus {
inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int wrongArguments = 2;
inline constexpr int readerHasGone = 128 + 13;
} // namespace ExitStatus

/// What every subcommand works with.
struct CommandContext {
    const Machine& machine;
    const Localization& words;
    TerminalOutput& output;
    /// For messages; the subcommand's result goes to `output` alone.
    TerminalOutput& errors;
    /// The words that hold by now: the user may choose another language while the program runs.
    std::function<Localization()> currentWords;

    /// "vellmark: message" on the error stream.
    void report(const std::string& message) const { errors.write("vellmark: " + message + "\n"); }
    /// The same about a file that cannot be read.
    void reportUnreadable(const std::string& file, std::error_code error) const {
        report(words.format("cli.error.unreadable", {file, systemErrorText(error, words)}));
    }
    /// That there is nothing to print, which is no failure.
    void note(const std::string& text) const { errors.write(text + "\n"); }
};

/// One subcommand: its name, its arguments and its work.
class Subcommand {
public:
    virtual ~Subcommand() = default;
    virtual std::string name() const = 0;
    /// One line for the list of subcommands.
    virtual std::string summaryKey() const = 0;
    /// Text below the options; empty for none.
    virtual std::string detailKey() const { return {}; }
    virtual void declare(CommandOptions& options) = 0;
    /// All words that may be given for an option ("--level") or argument ("TASK") of its own;
    /// empty where they are not a few, or follow from the placeholder ("AGENT", "FILE").
    virtual std::vector<std::string> choices(const std::string& /*name*/) const { return {}; }
    /// Asked by programs, not typed: the help leaves it out.
    virtual bool isHidden() const { return false; }
    /// The machine that a demonstration of it needs.
    virtual DemoSandbox::Agents demoAgents() const { return DemoSandbox::Agents::ready; }
    /// Whether it looks at the machine at all: else there is nothing to demonstrate.
    virtual bool hasDemo() const { return true; }
    /// Whether it, with the arguments it was given, may run agents: a watcher then ends them should
    /// the program be killed.
    virtual bool startsChildren() const { return true; }
    /// Returns the exit status. Throws WrongArguments for values that make no sense.
    virtual int run(const CommandContext& context) = 0;
};

} // namespace vellmark
