// What `agy` printed, and its log, to a snapshot. A zero byte separates the two.

#include "probes/antigravity/AntigravityReading.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\0'), size);
    vellmark::AntigravityRun run;
    run.output = vellmark::AntigravityOutput::read(input.substr(0, end), vellmark::TimeZone::utc());
    run.log = input.substr(std::min(end + 1, size));
    run.exitStatus = 1;
    try {
        vellmark::antigravitySnapshot(run, vellmark::Instant());
    } catch (const vellmark::UsageProviderError&) {
    }
    return 0;
}
