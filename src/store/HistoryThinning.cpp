#include "store/HistoryThinning.h"

#include <algorithm>
#include <cmath>

namespace vellmark {

namespace {

constexpr Seconds keptWhole = HistoryThinning::daysKeptWhole * oneDay;
constexpr Seconds keptAtAll = HistoryThinning::daysKept * oneDay;

} // namespace

Instant HistoryThinning::keptWholeSince(Instant reference) {
    return reference - keptWhole;
}

HistoryThinning::HistoryThinning(Instant reference)
    : wholeSince_(keptWholeSince(reference).time_since_epoch().count()),
      anySince_((reference - keptAtAll).time_since_epoch().count()) {}

void HistoryThinning::add(const StoredHistorySample& sample) {
    const Place place(file_, sample.offset);
    if (sample.capturedAt >= wholeSince_ || sample.hasUnknownFields) {
        return;
    }
    if (sample.capturedAt < anySince_) {
        dropped_.push_back(place);
        return;
    }
    const auto hour = static_cast<std::int64_t>(std::floor(sample.capturedAt / 3600));
    auto& ofKey = hours_[{std::string(sample.provider), std::string(sample.windowID)}];
    const auto [found, isFirst] = ofKey.try_emplace(hour, Highest{sample.usedPercent, place});
    if (isFirst) {
        return;
    }
    Highest& highest = found->second;
    if (sample.usedPercent > highest.usedPercent) {
        dropped_.push_back(highest.place);
        highest = {sample.usedPercent, place};
    } else {
        dropped_.push_back(place);
    }
}

std::vector<std::uint64_t> HistoryThinning::expendable(int file) {
    std::vector<std::uint64_t> offsets;
    for (const auto& [from, offset] : dropped_) {
        if (from == file) {
            offsets.push_back(offset);
        }
    }
    std::ranges::sort(offsets);
    return offsets;
}

} // namespace vellmark
