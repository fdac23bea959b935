#pragma once

#include "model/AgentProviderID.h"
#include "store/ActivityMessage.h"
#include "text/Instant.h"

#include <optional>
#include <string>

namespace vellmark {

/// One entry of the activity log: what the program did or met.
struct ActivityEntry {
    enum class Level { info, notice, error };

    Level level = Level::info;
    /// The agent concerned; absent when the entry is about the program itself.
    std::optional<AgentProviderID> agent;
    /// One line, in the language that was set when it was written.
    std::string text;
    /// To the second once it has been through the file.
    Instant time{};
    /// The same as the text, for other languages; without a key in entries of earlier versions.
    ActivityMessage message{};

    bool operator==(const ActivityEntry&) const = default;
};

} // namespace vellmark
