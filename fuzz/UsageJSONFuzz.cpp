// Bytes of a document to snapshots or history: any document is read or refused, and what was read
// is written and read again as the same.

#include "model/UsageJSON.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

template<typename Read, typename Write>
void checkRoundTrip(std::string_view document, Read read, Write write) {
    try {
        const auto values = read(document);
        if (read(write(values)) != values) {
            std::abort();
        }
    } catch (const vellmark::JSONDecodingError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    checkRoundTrip(document, vellmark::snapshotsFromDocument, vellmark::snapshotsDocument);
    checkRoundTrip(document, vellmark::historyFromDocument, vellmark::historyDocument);
    return 0;
}
