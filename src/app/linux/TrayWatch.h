#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <functional>

namespace vellmark {

/// Tells when an XEmbed tray may have come or gone, on the main thread and from the event loop. It
/// may also be told for nothing; without an X11 display it is never told.
///
/// Qt follows the tray itself, but offers no signal for it.
class TrayWatch final : public QObject, private QAbstractNativeEventFilter {
public:
    explicit TrayWatch(std::function<void()> onChange);
    ~TrayWatch() override;

private:
    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;
    void tell();

    std::function<void()> onChange_;
    bool isTellingPosted_ = false;
};

/// Whether there is a tray for `QSystemTrayIcon` now. The toolkit goes on to believe in one that
/// went just when it was found; the X server knows better.
bool isTrayAvailable();

} // namespace vellmark
