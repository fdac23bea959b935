#pragma once

#include "store/ActivityEntry.h"
#include "store/PlausibleFigures.h"
#include "store/StorageTrouble.h"
#include "store/UsageState.h"
#include "text/Dates.h"
#include "text/Localization.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The entries of the activity log about refreshes and settings, in the user's words. Undated.
namespace ActivityTexts {

/// Puts an entry that was written in another language into this one, as far as its message is
/// known here; else its text stays.
void tell(ActivityEntry& entry, const Localization& words);
void tell(std::vector<ActivityEntry>& entries, const Localization& words);

/// An entry with the text of `key`, whose arguments are texts and integers.
ActivityEntry entry(ActivityEntry::Level level, std::optional<AgentProviderID> agent,
                    std::string_view key, const std::vector<TextArgument>& arguments,
                    const Localization& words);

ActivityEntry refreshStarted(RefreshTrigger trigger, const Localization& words);
ActivityEntry refreshFinished(RefreshTrigger trigger, std::size_t read, std::size_t asked,
                              Seconds elapsed, const Localization& words);
ActivityEntry refreshAborted(const Localization& words);

/// What is left in each window, or that there are none.
ActivityEntry agentRead(const AgentUsageSnapshot& snapshot, Seconds elapsed,
                        const Localization& words);
ActivityEntry agentFailed(const AgentProviderID& id, const UsageProviderError& error,
                          const Localization& words);
ActivityEntry agentRecovered(const AgentProviderID& id, int failedAttempts,
                             const Localization& words);
ActivityEntry agentRetried(const AgentProviderID& id, Seconds delay, const Localization& words);
/// One entry for each diagnostic note of a reading.
std::vector<ActivityEntry> notes(const AgentUsageSnapshot& snapshot, const Localization& words);
/// What the agent told and was not taken.
ActivityEntry implausible(const AgentProviderID& id, const ImplausibleFigure& figure,
                          const Localization& words);
/// One entry for each window that is critical in `after` and was not in `before`.
std::vector<ActivityEntry> turnedCritical(const AgentUsageSnapshot* before,
                                          const AgentUsageSnapshot& after, Instant now,
                                          const Localization& words);

/// An entry when the agent has begun to refuse, and when it says that it works again.
std::vector<ActivityEntry> allowanceChanged(const AgentUsageSnapshot* before,
                                            const AgentUsageSnapshot& after,
                                            const Localization& words);

ActivityEntry agentSwitched(const AgentProviderID& id, bool enabled, const Localization& words);
ActivityEntry orderChanged(const std::vector<AgentProviderID>& order, const Localization& words);
ActivityEntry historyDeleted(const Localization& words);
ActivityEntry storageTrouble(const StorageTrouble::News& news, const Localization& words);
ActivityEntry woke(Seconds hold, const Localization& words);

/// What stands above an exported log: the program, the period, when it was made.
std::string exportHeader(int days, Instant now, const TimeZone& zone, const Localization& words);

} // namespace ActivityTexts

} // namespace vellmark
