#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace vellmark {

/// Keeps a window from costing memory that nobody uses. Once it has been closed for a while it is
/// deleted (the pixels of the popover are a megabyte, those of the main window three); once it has
/// been open for a while, what only its opening needed is given back. Belongs to the window. Main
/// thread.
class WindowMemory final : public QObject {
public:
    /// Long enough that a second look finds the same window.
    static constexpr int delayMilliseconds = 10'000;

    /// `release` is called at most once and hands the window over.
    WindowMemory(QWidget& window, std::function<std::unique_ptr<QWidget>()> release);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void settle();

    QWidget& window_;
    std::function<std::unique_ptr<QWidget>()> release_;
    QTimer delay_{this};
};

} // namespace vellmark
