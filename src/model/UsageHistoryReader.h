#pragma once

#include "model/UUID.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// A sample as it stands in a history file. The views are UTF-8 and valid during the visit only.
struct StoredHistorySample {
    UUID id;
    std::string_view provider;
    std::string_view windowID;
    /// Seconds since the reference date.
    double capturedAt = 0;
    double usedPercent = 0;
    std::optional<double> resetsAt;
    /// A newer version has written more than this one knows; `text` has it.
    bool hasUnknownFields = false;
    /// The sample's own JSON text, and where it stands in the file.
    std::string_view text;
    std::uint64_t offset = 0;
};

/// A JSON object in a history file that is no sample of the form that this version knows.
struct HistoryObjectForm {
    /// Its members' names and kinds of value.
    std::string signature;
    /// A sample with one spoilt character would look like this.
    bool isDamagedSample = false;
    /// Its text; valid during the visit only.
    std::string_view text;
};

/// What a history file turned out to be.
struct HistoryFileScan {
    enum class Form {
        whole,   ///< a JSON array of samples; an empty file counts as one without samples
        damaged, ///< one that was cut off or spoilt; what can be read of it was visited
        foreign, ///< something else: nothing in it is a sample, and no damage explains that
    };
    Form form = Form::whole;
    /// Where the next sample goes: behind the last complete one, or behind the opening bracket.
    std::uint64_t samplesEnd = 0;
    std::uint64_t sampleCount = 0;
    /// With the objects that are no samples.
    std::uint64_t elementCount = 0;
    /// The file could not be read to its end.
    std::error_code error;

    /// Whether an object that is no sample was written that way by a newer version: other objects
    /// in the file have the same form, which damage cannot bring about. Such objects belong in the
    /// file.
    bool isNewerForm(const HistoryObjectForm& object) const {
        const auto found = unreadForms.find(object.signature);
        return !object.isDamagedSample && found != unreadForms.end() && found->second > 1;
    }
    /// How often each form that is no sample's was met, by signature; only the first hundred forms.
    std::map<std::string, int> unreadForms;
};

/// Reads a file of history samples: a JSON array of objects in the persisted form of
/// UsageHistorySample. Streams, so that a file of any size costs one buffer; several times as fast
/// as building a JSON document.
namespace UsageHistoryReader {

using Visitor = std::function<void(const StoredHistorySample&)>;
/// Called for the objects that are no samples, in the order of the file.
using UnreadVisitor = std::function<void(const HistoryObjectForm&)>;

/// Reads the open file from its beginning.
HistoryFileScan read(int descriptor, const Visitor& visit, const UnreadVisitor& visitUnread = {});

/// Continues from the `samplesEnd` of an earlier scan of the same file: reads what was appended
/// since.
HistoryFileScan readOn(int descriptor, const HistoryFileScan& earlier, const Visitor& visit);

/// Looks through the open file, whatever it is, for samples at any place. Returns how many it
/// visited; sets `error` when the file could not be read to its end.
std::uint64_t salvage(int descriptor, const Visitor& visit, std::error_code& error);

} // namespace UsageHistoryReader

} // namespace vellmark
