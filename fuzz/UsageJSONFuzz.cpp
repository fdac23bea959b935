// Bytes of a document to snapshots, and to one sample of a history: any document is read or
// refused, and what was read is written and read again as the same.

#include "model/HistorySampleParser.h"
#include "model/UsageJSON.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace vellmark;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void checkSnapshots(std::string_view document) {
    try {
        const auto snapshots = snapshotsFromDocument(document);
        require(snapshotsFromDocument(snapshotsDocument(snapshots)) == snapshots);
    } catch (const JSONDecodingError&) {
    }
}

/// The reader's own way through a sample finds what the JSON library finds.
void checkSample(std::string_view text) {
    HistorySampleParser parser;
    StoredHistorySample found;
    if (parser.parse(text, found) != HistorySampleParser::Result::sample) {
        return;
    }
    UsageHistorySample sample;
    fromJSON(parsedJSON(found.text), sample);
    require(found.provider == sample.provider.rawValue && found.windowID == sample.windowID &&
            Instant(Seconds(found.capturedAt)) == sample.capturedAt &&
            found.usedPercent == sample.usedPercent &&
            found.resetsAt.has_value() == sample.resetsAt.has_value() &&
            (!found.resetsAt || Instant(Seconds(*found.resetsAt)) == *sample.resetsAt));
    UsageHistorySample again;
    fromJSON(parsedJSON(serialized(toJSON(sample))), again);
    require(again == sample);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    checkSnapshots(document);
    checkSample(document);
    return 0;
}
