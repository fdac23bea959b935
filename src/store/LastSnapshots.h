#pragma once

#include "model/AgentUsageSnapshot.h"
#include "platform/FileLock.h"
#include "store/StorageTrouble.h"

#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <vector>

namespace vellmark {

/// "last-snapshots.json": the last good reading of each agent, so that the next run has figures to
/// show at once. A JSON array of snapshots, mode 0600 when it is made. Shared by several processes:
/// each agent's newest reading stays, and one that this version cannot understand stays as it is
/// until the agent is read anew.
class LastSnapshots {
public:
    explicit LastSnapshots(std::filesystem::path file);

    struct Contents {
        std::vector<AgentUsageSnapshot> readings;
        /// The agents whose readings cannot be understood; "?" stands for one without a name.
        std::vector<std::string> undecoded;
        /// Nothing in the file can be understood: it is no JSON array.
        bool isDamaged = false;
        /// Why the file cannot be read; none when there is no file.
        std::error_code error;

        void tell(StorageTrouble& trouble) const;
    };
    Contents contents() const;
    std::vector<AgentUsageSnapshot> read() const { return contents().readings; }

    /// Puts these readings into the file, in place of older ones of the same agents. Readings dated
    /// after `now` (the clock was wrong) count as older. A file that is no JSON array is kept as
    /// "last-snapshots.damaged.json".
    std::error_code write(const std::map<AgentProviderID, AgentUsageSnapshot>& readings,
                          Instant now);

private:
    std::filesystem::path file_;
    LockFile lock_;
};

} // namespace vellmark
