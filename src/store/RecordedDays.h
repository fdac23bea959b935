#pragma once

#include "text/Instant.h"

#include <cstdint>
#include <set>

namespace vellmark {

/// The days on which a file was written, by its own dates: the evidence from which its age is
/// counted. The clock alone is none: it may be years ahead for one run of the program.
class RecordedDays {
public:
    void add(Instant instant);

    /// The moment from which age is counted: `now`, unless that is more than a week later than the
    /// last day that counts. After a gap of more than a week, days count only once there are seven
    /// of them: until then, a clock that was set wrong would explain them as well.
    Instant reference(Instant now) const;

    /// Whether there are days that are over at `instant`.
    bool reachBefore(Instant instant) const;

private:
    std::set<std::int64_t> days_; ///< since the reference date
    std::int64_t latest_ = 0;     ///< the one added last
};

/// The number of the day since the reference date, in UTC.
std::int64_t dayNumber(Instant instant);

} // namespace vellmark
