#pragma once

#include <sdbus-c++/IConnection.h>

#include <chrono>
#include <memory>

namespace vellmark {

enum class MessageBus { session, system };

/// How long opening a bus and each call on it may take: a bus that works answers in milliseconds,
/// one that has stopped never.
constexpr auto busAnswerLimit = std::chrono::seconds(2);

/// A connection to a message bus, made within `busAnswerLimit`, which also limits every call on it
/// that names no limit. Null when there is no such bus or it does not answer. Any thread.
std::unique_ptr<sdbus::IConnection> openBus(MessageBus which);

/// Closes without waiting for a bus that does not take what is still to be sent. Any thread.
void closeBus(std::unique_ptr<sdbus::IConnection> connection);

} // namespace vellmark
