#include "app/DisplayLoss.h"
#include "app/QtDescriptorWatcher.h"
#include "app/RenderGlyph.h"
#include "app/TerminationSignals.h"
#include "app/VellmarkAppDelegate.h"
#include "platform/ActivationPolicy.h"
#include "platform/Machine.h"
#include "platform/ProgramEnd.h"
#include "platform/SessionBus.h"
#include "platform/SignalChannel.h"
#include "platform/UnusedMemory.h"
#include "platform/UserLocale.h"
#include "presentation/LanguageManager.h"
#include "presentation/LaunchHelp.h"
#include "probes/DemoSandbox.h"
#include "process/ChildWatcher.h"
#include "store/DemoHistory.h"
#include "text/SystemErrorText.h"
#include "text/TerminalText.h"
#include "ui/GlyphPainter.h"
#include "ui/kit/ToolTip.h"

#include <QApplication>
#include <QThreadPool>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace vellmark;

constexpr int wrongUse = 2;
constexpr int painterThreadsIdle = 5; // ms

constexpr std::size_t terminalColumns = 80;

void report(const std::string& message) {
    std::fprintf(stderr, "vellmark-desktop: %s\n", message.c_str());
}

/// What is said where there is no display. Set before Qt looks for one.
std::string noDisplay;

/// Qt ends in abort() where it finds no display; what it says before that is the reason.
void leaveWithoutDisplay(QtMsgType type, const QMessageLogContext& context,
                         const QString& message) {
    if (type != QtFatalMsg) {
        std::fprintf(stderr, "%s\n",
                     qFormatLogMessage(type, context, message).toLocal8Bit().constData());
        return;
    }
    report(noDisplay);
    std::_Exit(1);
}

std::unique_ptr<QApplication> makeApplication(int& argc, char** argv) {
    const QtMessageHandler usual = qInstallMessageHandler(leaveWithoutDisplay);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(usual);
    return application;
}

/// `removeTraces` removes what else would go when the program returns from here.
int run(QApplication& application, const LaunchOptions& options, const Machine& machine,
        const std::function<void()>& removeTraces) {
    VellmarkAppDelegate delegate(options, machine);
    QtDescriptorWatcher loop;
    // A closed session and a quit from anywhere end in the same call.
    const TerminationSignals termination(loop, [] { QCoreApplication::quit(); });
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &application,
                     [&delegate] { delegate.applicationWillTerminate(); });
    const DisplayLoss displayLoss([&] {
        delegate.displayWasLost();
        removeTraces();
        // Windows cannot be destroyed without a screen, nor from within the toolkit.
        noteThreadLeftBehind();
        endProgram(1);
    });
    if (delegate.applicationDidFinishLaunching() == LaunchOutcome::handedOver) {
        return 0;
    }
    return QApplication::exec();
}

int runOnChosenMachine(QApplication& application, const LaunchOptions& options, Machine machine) {
    std::optional<DemoSandbox> demo;
    if (options.isDemo) {
        demo.emplace(machine.temporary);
        machine = demo->machine();
        writeDemoHistory(machine, ReferenceClock::now());
    } else if (!options.sandbox.empty()) {
        machine = Machine::sandbox(options.sandbox);
    }
    return run(application, options, machine, [&demo] { demo.reset(); });
}

int runProgram(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments.front() == "--render-glyph") {
        return renderGlyph({arguments.begin() + 1, arguments.end()});
    }
    // Before this process changes its own environment: agents get the user's.
    const Machine machine = Machine::current();
    const auto options = LaunchOptions::parse(arguments, machine.environment);
    const Localization words =
        localizationFor(UserLocale::of(machine.environment), options.language);
    const auto refuse = [&words](const std::string& message) {
        report(message);
        std::fprintf(stderr, "%s\n",
                     words.format("cli.error.hint", {"vellmark-desktop --help"}).c_str());
        return wrongUse;
    };
    if (!options.offendingArgument.empty()) {
        return refuse(
            words.format("desktop.error.option", {singleLine(options.offendingArgument)}));
    }
    if (!options.language.empty() && !Localization::hasLanguage(options.language)) {
        return refuse(
            words.format("cli.error.language", {singleLine(options.language), languageList(", ")}));
    }

    if (options.asksForHelp) {
        std::fputs(launchHelp(words, terminalColumns).c_str(), stdout);
        return 0;
    }
    if (options.asksForVersion) {
        std::puts("Vellmark " VELLMARK_VERSION);
        return 0;
    }

    if (!startChildWatcher()) {
        report(words.text("watcher.missing"));
    }
    // The toolkit must not meet a stopped bus.
    leaveOutUnansweringSessionBus();
    QApplication::setApplicationName(QStringLiteral("Vellmark"));
    QApplication::setDesktopFileName(QStringLiteral("app.vellmark.Vellmark"));
    QApplication::setQuitOnLastWindowClosed(false);
    startInBackground();
    noDisplay = words.text("desktop.error.noDisplay");
    const std::unique_ptr<QApplication> application = makeApplication(argc, argv);
    // Nothing in our layouts mirrors, so nothing of the toolkit's may.
    QApplication::setLayoutDirection(Qt::LeftToRight);
    // The painter's threads would wake up once more to end, half a minute after each drawing.
    QThreadPool::globalInstance()->setExpiryTimeout(painterThreadsIdle);
    // Once for all windows: the toolkit keeps copies of each icon that it was given.
    QApplication::setWindowIcon(applicationIcon());
    kit::useToolTips();
    try {
        return runOnChosenMachine(*application, options, machine);
    } catch (const std::exception& error) {
        report(faultText(error, words));
        return 1;
    }
}

} // namespace

int main(int argc, char** argv) {
    ignoreWriteSignals();
    keepLittleUnusedMemory();
    endProgram(runProgram(argc, argv));
}
