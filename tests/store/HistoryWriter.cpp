// Writes the store's files as fast as it can until somebody kills it. A line on standard output
// tells each reading that is safely on disk.

#include "store/ActivityLog.h"
#include "store/LastSnapshots.h"
#include "store/UsageHistoryRecorder.h"

#include <cstdlib>
#include <unistd.h>

using namespace vellmark;

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        return 2;
    }
    const std::filesystem::path directory = arguments[1];
    const int start = std::atoi(arguments[2]);
    auto history = std::make_shared<UsageHistory>();
    UsageHistoryRecorder recorder(directory / "usage-history.json", history);
    LastSnapshots snapshots(directory / "last-snapshots.json");
    ActivityLog log(directory / "activity.log");
    AgentUsageSnapshot reading;
    reading.id = AgentProviderID::claude();
    recorder.load(Instant(Seconds(start)));
    for (int index = start;; ++index) {
        reading.updatedAt = Instant(Seconds(index));
        reading.windows = {{"session", static_cast<double>(index % 100), 300, std::nullopt}};
        recorder.record(reading);
        snapshots.write({{reading.id, reading}}, reading.updatedAt);
        log.append({.text = "reading", .time = reading.updatedAt}, TimeZone::utc());
        if (recorder.heldBackCount() > 0 || ::write(STDOUT_FILENO, "\n", 1) != 1) {
            return 1;
        }
    }
}
