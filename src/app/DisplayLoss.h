#pragma once

#include <functional>

namespace vellmark {

/// Calls `onLoss` once, on the main thread, when the connection to the screen breaks because the X
/// server or the compositor has ended: the last moment before the toolkit ends the program. It must
/// not return to the toolkit, nor draw. Never called where the screen cannot be lost.
///
/// One at a time, on the main thread, while the application exists.
class DisplayLoss {
public:
    explicit DisplayLoss(std::function<void()> onLoss);
    ~DisplayLoss();
    DisplayLoss(const DisplayLoss&) = delete;
    DisplayLoss& operator=(const DisplayLoss&) = delete;
};

} // namespace vellmark
