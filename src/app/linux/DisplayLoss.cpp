// The toolkit finds the broken connection, writes a warning and calls exit() or _exit() on the
// spot: nothing is unwound, no signal of its own is sent, and functions left with atexit() run, if
// at all, after objects that they need are gone. A watch of our own on the connection comes too
// late whenever the loop is busy, as the toolkit looks first. The warning is written before
// anything is undone, so it is what tells: for X11 on the main thread, for Wayland mostly on the
// thread that reads.

#include "app/DisplayLoss.h"

#include "ui/kit/linux/X11.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QThread>

#include <chrono>
#include <thread>
#include <utility>

namespace vellmark {
namespace {

/// Ending the children takes some two seconds at worst.
constexpr std::chrono::seconds longestEnd{10};

std::function<void()>& lossHandler() {
    static std::function<void()> handler;
    return handler;
}

QtMessageHandler& usualHandler() {
    static QtMessageHandler handler = nullptr;
    return handler;
}

bool isDisplayLost(const QString& message) {
    if (xcb_connection_t* const x11 = kit::x11Connection()) {
        return xcb_connection_has_error(x11) != 0;
    }
    // This toolkit shows nobody its connection to a compositor.
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland")) &&
           message.startsWith(QLatin1String("The Wayland connection"));
}

/// Once: what the handler does may make the toolkit write again.
void tellOfLoss() {
    if (const auto onLoss = std::exchange(lossHandler(), {})) {
        onLoss();
    }
}

void lookAtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    usualHandler()(type, context, message);
    if (qGuiApp == nullptr || !isDisplayLost(message)) {
        return;
    }
    if (QThread::currentThread() == qGuiApp->thread()) {
        tellOfLoss();
        return;
    }
    QMetaObject::invokeMethod(qGuiApp, tellOfLoss, Qt::QueuedConnection);
    // This thread would end the program when it goes on. The main thread does that meanwhile,
    // unless it waits for the screen itself.
    std::this_thread::sleep_for(longestEnd);
}

} // namespace

DisplayLoss::DisplayLoss(std::function<void()> onLoss) {
    lossHandler() = std::move(onLoss);
    usualHandler() = qInstallMessageHandler(lookAtMessage);
}

DisplayLoss::~DisplayLoss() {
    lossHandler() = {};
    qInstallMessageHandler(nullptr);
}

} // namespace vellmark
