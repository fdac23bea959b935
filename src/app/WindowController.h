#pragma once

#include "platform/Preferences.h"
#include "presentation/WindowPresenceController.h"

#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

namespace vellmark {

/// One window of the application: made when it is shown, deleted a while after it was closed.
/// Tells the window presence when it opens and closes, and remembers its frame. It is never larger
/// than the free area of its screen, whatever its least size is. Main thread.
class WindowController : public QObject {
public:
    struct Description {
        /// Names the window for the window presence ("main").
        std::string identifier;
        /// The preference that keeps the frame; empty for a window whose frame is not kept.
        std::string autosaveName;
        std::function<std::unique_ptr<QWidget>()> make;
        std::function<QString()> title;
        /// Called when the window has been shown or hidden; may be empty.
        std::function<void()> onVisibilityChange;
    };

    WindowController(Description description, WindowPresenceController& presence,
                     Preferences& preferences);
    ~WindowController() override;

    /// Brings the window before all others.
    void show();
    bool isVisible() const;
    /// After a change of the language.
    void retitle();
    void saveFrame();
    /// Null until it is shown, and again a while after it was closed.
    QWidget* window() const { return window_.get(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void make();
    void restoreFrame();
    void followScreens();
    void fitToScreen();
    std::unique_ptr<QWidget> release();

    Description description_;
    WindowPresenceController& presence_;
    Preferences& preferences_;
    std::unique_ptr<QWidget> window_;
    /// What the window asked for when it was made.
    QSize leastSize_;
};

} // namespace vellmark
