#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>

namespace vellmark {

/// A sample as it stands in a history file. The views are UTF-8 and valid during the visit only.
struct StoredHistorySample {
    std::string_view provider;
    std::string_view windowID;
    /// Seconds since the reference date.
    double capturedAt = 0;
    double usedPercent = 0;
    std::optional<double> resetsAt;
    /// The sample's own JSON text, and where it stands in the file.
    std::string_view text;
    std::uint64_t offset = 0;
};

/// What a history file turned out to be.
struct HistoryFileScan {
    enum class Form {
        whole,   ///< a JSON array of samples; an empty file counts as one without samples
        damaged, ///< one that was cut off or spoilt; what can be read of it was visited
        foreign, ///< something else, or samples with fields that this version does not know
    };
    Form form = Form::whole;
    /// Where the next sample goes: behind the last complete one, or behind the opening bracket.
    std::uint64_t samplesEnd = 0;
    std::uint64_t sampleCount = 0;
    /// The file could not be read to its end.
    std::error_code error;
};

/// Reads a file of history samples: a JSON array of objects in the persisted form of
/// UsageHistorySample. Streams, so that a file of any size costs one buffer; several times as fast
/// as building a JSON document.
namespace UsageHistoryReader {

using Visitor = std::function<void(const StoredHistorySample&)>;

/// Reads the open file from its beginning.
HistoryFileScan read(int descriptor, const Visitor& visit);

/// Reads on from the `samplesEnd` of an earlier scan of the same file, to what was appended since.
HistoryFileScan readOn(int descriptor, const HistoryFileScan& earlier, const Visitor& visit);

} // namespace UsageHistoryReader

} // namespace vellmark
