#pragma once

#include <sdbus-c++/IConnection.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>

namespace vellmark {

enum class MessageBus { session, system };

/// How long opening a bus and each call on it may take: a bus that works answers in milliseconds,
/// one that has stopped never.
constexpr auto busAnswerLimit = std::chrono::seconds(2);
/// For an asynchronous call whose answer counts however late it comes: a service that stands still
/// carries out what it was sent once it goes on, and of one that ends the bus tells. In the
/// library's microseconds.
constexpr std::uint64_t untilAnswered = std::numeric_limits<std::uint64_t>::max();

/// A connection to a message bus, made within `busAnswerLimit`, which also limits every call on it
/// that names no limit. Null when there is no such bus or it does not answer. Any thread.
std::unique_ptr<sdbus::IConnection> openBus(MessageBus which);

/// From now on there is no session bus for this process and its libraries, until it is taken back.
/// Both change the environment: main thread, the first before there are others.
void leaveOutSessionBus();
void takeSessionBusBack();

/// The socket of the session bus, also of one that is left out; empty where its address names no
/// file.
std::filesystem::path sessionBusSocket();

/// Closes without waiting for a bus that does not take what is still to be sent. Any thread.
void closeBus(std::unique_ptr<sdbus::IConnection> connection);

} // namespace vellmark
