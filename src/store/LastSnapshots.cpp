#include "store/LastSnapshots.h"

#include "model/UsageJSON.h"
#include "platform/ReplacementFile.h"
#include "platform/WholeFile.h"
#include "store/FileLock.h"

#include <utility>

namespace vellmark {

LastSnapshots::LastSnapshots(std::filesystem::path file) : file_(std::move(file)) {}

std::vector<AgentUsageSnapshot> LastSnapshots::read() const {
    std::error_code error;
    const auto text = readWholeFile(file_, error);
    if (!text) {
        return {};
    }
    try {
        return snapshotsFromDocument(*text);
    } catch (const JSONDecodingError&) {
        return {};
    }
}

std::error_code LastSnapshots::write(const std::map<AgentProviderID, AgentUsageSnapshot>& readings,
                                     Instant now) const {
    std::error_code error;
    const auto held = FileLock::acquire(std::filesystem::path(file_).replace_extension(".lock"),
                                        Seconds(1), error);
    if (!held) {
        // The next refresh brings newer figures anyway.
        return error == std::errc::resource_unavailable_try_again ? std::error_code() : error;
    }
    auto merged = readings;
    for (AgentUsageSnapshot& stored : read()) {
        const auto ours = merged.try_emplace(stored.id, stored).first;
        if (ours->second.updatedAt < stored.updatedAt && stored.updatedAt <= now) {
            ours->second = std::move(stored);
        }
    }
    std::vector<AgentUsageSnapshot> snapshots;
    for (auto& [id, snapshot] : merged) {
        snapshots.push_back(std::move(snapshot));
    }
    ReplacementFile replacement(file_, ReplacementFile::Name::fixed);
    replacement.write(snapshotsDocument(snapshots));
    return replacement.commit();
}

} // namespace vellmark
