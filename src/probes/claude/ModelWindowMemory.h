#pragma once

#include "text/Instant.h"

#include <filesystem>
#include <mutex>
#include <optional>

namespace vellmark {

/// Remembers when Claude's model window was last seen, so that a session waits for it while it may
/// be expected. Consults the usage history once, on the first question; writes nothing.
///
/// Safe to use from any thread.
class ModelWindowMemory {
public:
    /// Without a history file there is only what `markSeen` tells.
    explicit ModelWindowMemory(std::optional<std::filesystem::path> historyFile,
                               std::optional<Instant> lastSeen = std::nullopt);

    /// True when the window was seen less than 24 hours before `now`. The first call may read the
    /// history file.
    bool shouldExpectModelWindow(Instant now);

    void markSeen(Instant now);

private:
    std::mutex mutex_;
    std::optional<Instant> lastSeen_;
    bool loadedHistory_;
    std::filesystem::path historyFile_;
};

} // namespace vellmark
