#pragma once

#include "Scenario.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace simulator {

/// The size that "huge" stands for.
inline constexpr std::size_t hugeSize = 20u << 20;

/// Writes to a descriptor, whole or (scenarios "split", "query-split") in pieces of a few bytes
/// with pauses, so that no reader can count on meeting line ends, characters or sequences in one
/// piece.
class Output {
public:
    Output(int descriptor, const Scenario& scenario)
        : descriptor_(descriptor), split_(scenario.is({"split", "query-split"})) {}

    /// False when nobody reads any more.
    bool write(std::string_view bytes) const;

private:
    bool writeWhole(std::string_view bytes) const;

    int descriptor_;
    bool split_;
};

/// 8 KB of every byte, always the same.
std::string garbage();

void pause(std::chrono::milliseconds span);

/// Waits until somebody ends this process.
[[noreturn]] void hang();

/// As `hang`, and nothing but SIGKILL helps.
[[noreturn]] void hangDeaf();

/// Ends as by a crash: killed by SIGABRT, no core file.
[[noreturn]] void crash();

} // namespace simulator
