#pragma once

#include "model/AgentUsageSnapshot.h"

#include <filesystem>
#include <map>
#include <system_error>
#include <vector>

namespace vellmark {

/// "last-snapshots.json": the last good reading of each agent, so that the next run has figures to
/// show at once. A JSON array of snapshots, mode 0600. Shared by several processes: each agent's
/// newest reading stays.
class LastSnapshots {
public:
    explicit LastSnapshots(std::filesystem::path file);

    /// Empty when there is no file or it cannot be understood.
    std::vector<AgentUsageSnapshot> read() const;
    /// Puts these readings into the file, in place of older ones of the same agents. Readings dated
    /// after `now` (the clock was wrong) count as older.
    std::error_code write(const std::map<AgentProviderID, AgentUsageSnapshot>& readings,
                          Instant now) const;

private:
    std::filesystem::path file_;
};

} // namespace vellmark
