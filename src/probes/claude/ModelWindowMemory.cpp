#include "probes/claude/ModelWindowMemory.h"

#include "model/UsageHistoryReader.h"
#include "model/UsageHistorySample.h"
#include "platform/Descriptor.h"
#include "probes/claude/ClaudeUsageParser.h"

#include <algorithm>
#include <fcntl.h>
#include <utility>

namespace vellmark {

namespace {

/// Nothing from a file that is damaged or of another form: the store repairs the one and leaves the
/// other alone.
std::optional<Instant> latestSighting(const std::filesystem::path& historyFile) {
    const Descriptor file(::open(historyFile.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        return std::nullopt;
    }
    const std::string claude = AgentProviderID::claude().rawValue;
    std::optional<Instant> latest;
    const auto scan = UsageHistoryReader::read(file.get(), [&](const StoredHistorySample& sample) {
        if (sample.provider == claude && sample.windowID == claudeModelWindowID) {
            latest = std::max(latest, std::optional(Instant(Seconds(sample.capturedAt))));
        }
    });
    const bool isWhole = scan.form == HistoryFileScan::Form::whole && !scan.error;
    return isWhole ? latest : std::nullopt;
}

} // namespace

ModelWindowMemory::ModelWindowMemory(std::optional<std::filesystem::path> historyFile,
                                     std::optional<Instant> lastSeen)
    : lastSeen_(lastSeen), loadedHistory_(!historyFile),
      historyFile_(std::move(historyFile).value_or(std::filesystem::path())) {}

bool ModelWindowMemory::shouldExpectModelWindow(Instant now) {
    const std::lock_guard lock(mutex_);
    if (!loadedHistory_) {
        const std::optional<Instant> sighting = latestSighting(historyFile_);
        if (sighting && (!lastSeen_ || *sighting > *lastSeen_)) {
            lastSeen_ = sighting;
        }
        loadedHistory_ = true;
    }
    return lastSeen_ && now - *lastSeen_ < Seconds(86400);
}

void ModelWindowMemory::markSeen(Instant now) {
    const std::lock_guard lock(mutex_);
    lastSeen_ = now;
}

} // namespace vellmark
