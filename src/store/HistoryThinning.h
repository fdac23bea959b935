#pragma once

#include "model/UsageHistoryReader.h"
#include "text/Instant.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vellmark {

/// Finds the samples that need not be kept: of those older than 35 days all but the highest of each
/// window and hour, and those older than 400 days. Samples of a newer form are always kept.
class HistoryThinning {
public:
    static constexpr int daysKeptWhole = 35;
    static constexpr int daysKept = 400;

    /// All samples from then on are kept.
    static Instant keptWholeSince(Instant reference);

    explicit HistoryThinning(Instant reference);

    void add(const StoredHistorySample& sample);
    /// The offsets of the samples added that need not be kept, in order. Offsets are told apart
    /// by the file that is being added from.
    std::vector<std::uint64_t> expendable(int file = 0);
    /// What is added from here on is from the next file.
    void nextFile() { ++file_; }

private:
    using Place = std::pair<int, std::uint64_t>; ///< file and offset
    struct Highest {
        double usedPercent;
        Place place;
    };

    double wholeSince_;
    double anySince_;
    int file_ = 0;
    std::map<std::pair<std::string, std::string>, std::unordered_map<std::int64_t, Highest>> hours_;
    std::vector<Place> dropped_;
};

} // namespace vellmark
