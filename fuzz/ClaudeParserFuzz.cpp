// Any capture, with any exit status, is a snapshot or a UsageProviderError.

#include "probes/claude/ClaudeDiagnostics.h"
#include "probes/claude/ClaudeSessionInterpretation.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace vellmark;
    const std::int32_t status = size > 0 ? data[0] : 0;
    const std::string_view capture(reinterpret_cast<const char*>(data), size);
    const ClaudeScreen screen(capture.substr(size > 0 ? 1 : 0));
    try {
        interpretClaudeSession(screen, {status, false}, Instant(Seconds(785000000)));
    } catch (const UsageProviderError&) {
    }
    claudeTimingNote(screen, {});
    redactedClaudeScreen(screen.text(), "/home/someone");
    return 0;
}
