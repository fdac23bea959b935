// Bytes of a document to snapshots, to one sample of a history and to a history file: any document
// is read or refused, and what was read is written and read again as the same.

#include "model/HistorySampleParser.h"
#include "model/UsageHistoryReader.h"
#include "model/UsageJSON.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

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

/// A history file is read to its end, and reading on from there finds nothing more.
void checkFile(std::string_view document) {
    static std::FILE* const file = std::tmpfile();
    require(file != nullptr);
    const int descriptor = ::fileno(file);
    require(::ftruncate(descriptor, 0) == 0 &&
            ::pwrite(descriptor, document.data(), document.size(), 0) ==
                static_cast<ssize_t>(document.size()));
    std::uint64_t visited = 0;
    const auto visit = [&visited](const StoredHistorySample&) { ++visited; };
    const HistoryFileScan scan = UsageHistoryReader::read(descriptor, visit);
    require(!scan.error && visited == scan.sampleCount && scan.samplesEnd <= document.size());
    if (scan.form == HistoryFileScan::Form::whole && scan.samplesEnd > 0) {
        const HistoryFileScan again = UsageHistoryReader::readOn(descriptor, scan, visit);
        require(visited == scan.sampleCount && again.sampleCount == visited &&
                again.form == HistoryFileScan::Form::whole && again.samplesEnd == scan.samplesEnd);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    checkSnapshots(document);
    checkSample(document);
    checkFile(document);
    return 0;
}
