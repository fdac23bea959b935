#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace vellmark {

/// Deletes a window that has been closed for a while, so that what is seen rarely costs no memory:
/// the pixels of the popover are a megabyte, those of the main window three. Belongs to the window.
/// Main thread.
class ReleaseAfterClosing final : public QObject {
public:
    /// Long enough that a second look finds the same window.
    static constexpr int delayMilliseconds = 10'000;

    /// `release` is called at most once and hands the window over.
    ReleaseAfterClosing(QWidget& window, std::function<std::unique_ptr<QWidget>()> release);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void releaseWindow();

    QWidget& window_;
    std::function<std::unique_ptr<QWidget>()> release_;
    QTimer delay_;
};

} // namespace vellmark
