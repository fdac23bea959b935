// Bytes from `codex app-server` to a snapshot: any input is read or refused, never more.

#include "probes/codex/CodexReading.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    try {
        vellmark::codexSnapshot(output, vellmark::Instant(), "/home/user");
    } catch (const vellmark::UsageProviderError&) {
    }
    return 0;
}
