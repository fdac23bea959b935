#include "probes/claude/ModelWindowMemory.h"

#include "model/UsageHistoryReader.h"
#include "model/UsageHistorySample.h"
#include "platform/RegularFile.h"
#include "probes/claude/ClaudeModelWindow.h"

#include <algorithm>
#include <fcntl.h>
#include <utility>

namespace vellmark {

namespace {

/// Nothing from a file that is damaged or of another form: the store repairs the one and leaves the
/// other alone. Nor from the time after `now`: the clock was ahead when that was recorded.
std::optional<Instant> latestSighting(const std::filesystem::path& historyFile, Instant now) {
    std::error_code error;
    const Descriptor file = openRegularFile(historyFile, O_RDONLY, error);
    if (!file.isOpen()) {
        return std::nullopt;
    }
    const std::string claude = AgentProviderID::claude().rawValue;
    std::optional<Instant> latest;
    const auto scan = UsageHistoryReader::read(file.get(), [&](const StoredHistorySample& sample) {
        const Instant capturedAt(Seconds(sample.capturedAt));
        if (sample.provider == claude && sample.windowID == claudeModelWindowID &&
            capturedAt <= now) {
            latest = std::max(latest, std::optional(capturedAt));
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
        const std::optional<Instant> sighting = latestSighting(historyFile_, now);
        if (sighting && (!lastSeen_ || *sighting > *lastSeen_)) {
            lastSeen_ = sighting;
        }
        loadedHistory_ = true;
    }
    return lastSeen_ && now - *lastSeen_ < oneDay;
}

void ModelWindowMemory::markSeen(Instant now) {
    const std::lock_guard lock(mutex_);
    lastSeen_ = now;
}

} // namespace vellmark
