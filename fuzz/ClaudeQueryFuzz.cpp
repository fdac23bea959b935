// Any answer, of any version, is a snapshot or a UsageProviderError; so is any login status.

#include "probes/claude/ClaudeQuery.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace vellmark;
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    static const std::array<std::optional<VersionNumber>, 3> versions = {
        std::nullopt, VersionNumber{{2, 1, 235}}, VersionNumber{{2, 1, 330}}};
    parseClaudeQueryReply(output, "r1");
    const ClaudeQueryReply reply = parseClaudeQueryReply(output, std::nullopt);
    if (reply.kind != ClaudeQueryReply::Kind::answered) {
        parseClaudeLogin(output);
        return 0;
    }
    for (const auto& version : versions) {
        try {
            claudeQuerySnapshot(reply.answer, {}, version, Instant(Seconds(785000000)));
        } catch (const UsageProviderError&) {
        }
    }
    return 0;
}
