#include "cli/CommandLine.h"
#include "cli/Subcommands.h"
#include "cli/WrongArguments.h"
#include "platform/Preferences.h"
#include "platform/ProgramEnd.h"
#include "platform/SignalChannel.h"
#include "platform/UnusedMemory.h"
#include "platform/UserLocale.h"
#include "presentation/LanguageManager.h"
#include "process/BoundedProcess.h"
#include "process/ChildWatcher.h"
#include "store/AgentSettings.h"
#include "store/DemoHistory.h"
#include "text/SystemErrorText.h"

#include <exception>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace vellmark {
namespace {

/// Where no terminal says how wide a page is.
constexpr std::size_t pageWidth = 80;

/// A standard stream that the caller has closed is opened on the null device the wrong way round:
/// files opened later do not take its number, and using it is an error that can be reported.
void openClosedStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

/// In the language asked for, else in the one that the machine's settings name.
Localization wordsFor(const std::optional<std::string>& language, const Machine& machine) {
    return localizationFor(UserLocale::of(machine.environment),
                           language ? *language : chosenLanguage(*makePreferences(machine)));
}

/// Runs the subcommand on the machine that the arguments ask for.
int runSubcommand(const CommandLine& commandLine, const std::optional<std::string>& language,
                  const Machine& machine, TerminalOutput& output, TerminalOutput& errors) {
    std::optional<DemoSandbox> demo;
    std::optional<Machine> sandbox;
    if (commandLine.demo) {
        demo.emplace(machine.temporary, commandLine.subcommand->demoAgents());
        writeDemoHistory(demo->machine(), ReferenceClock::now());
    } else if (commandLine.sandbox) {
        sandbox = Machine::sandbox(*commandLine.sandbox);
    }
    const Machine& chosen = demo ? demo->machine() : sandbox ? *sandbox : machine;
    const auto currentWords = [&] { return wordsFor(language, sandbox ? *sandbox : machine); };
    const Localization words = currentWords();
    if (commandLine.subcommand->startsChildren() && !startChildWatcher()) {
        errors.write("vellmark: " + words.text("watcher.missing") + "\n");
    }
    if (commandLine.subcommand->startsChildren()) {
        AgentSettings(*makePreferences(chosen), providerRegistry()).applyExecutables(chosen);
    }
    const int status = commandLine.subcommand->run({chosen, words, output, errors, currentWords});
    // Nothing that a subcommand started outlives the program, or the demo's directory.
    terminateAllChildren(Seconds(1));
    return status;
}

int statusAfterWriting(int status, const TerminalOutput& output, TerminalOutput& errors,
                       const Localization& words) {
    if (output.readerHasGone()) {
        return ExitStatus::readerHasGone;
    }
    if (!output.error()) {
        return status;
    }
    errors.write("vellmark: " +
                 words.format("cli.error.unwritable", {systemErrorText(output.error(), words)}) +
                 "\n");
    return ExitStatus::failed;
}

int run(const std::vector<std::string>& arguments) {
    const Machine machine = Machine::current();
    const auto language = requestedLanguage(arguments);
    const Localization words = wordsFor(language, machine);
    TerminalOutput output(STDOUT_FILENO, machine.environment);
    TerminalOutput errors(STDERR_FILENO, machine.environment);
    const auto subcommands = allSubcommands();
    const auto refuse = [&](const std::string& message, const std::string& hint) {
        errors.write("vellmark: " + message + "\n" + hint + "\n");
        return ExitStatus::wrongArguments;
    };
    CommandLine commandLine;
    int status = ExitStatus::done;
    try {
        commandLine = parseCommandLine(arguments, subcommands, words);
        output.chooseColors(commandLine.colors);
        errors.chooseColors(commandLine.colors);
        if (commandLine.help) {
            output.write(commandLine.help->text(output.isTerminal() ? output.width() : pageWidth));
        } else if (commandLine.subcommand == nullptr) {
            output.write("vellmark " VELLMARK_VERSION "\n");
        } else {
            status = runSubcommand(commandLine, language, machine, output, errors);
        }
    } catch (const CommandLineFault& fault) {
        return refuse(fault.message, fault.hint);
    } catch (const WrongArguments& wrong) {
        return refuse(wrong.message(words), helpHint(commandLine.subcommand->name(), words));
    } catch (const std::exception& error) {
        errors.write("vellmark: " + faultText(error, words) + "\n");
        return ExitStatus::failed;
    }
    return statusAfterWriting(status, output, errors, words);
}

} // namespace
} // namespace vellmark

int main(int argumentCount, char** arguments) {
    vellmark::ignoreWriteSignals();
    vellmark::keepLittleUnusedMemory();
    vellmark::openClosedStandardStreams();
    vellmark::endProgram(vellmark::run({arguments + 1, arguments + argumentCount}));
}
