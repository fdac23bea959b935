#include "platform/InstanceIdentifier.h"

#include <cstdint>
#include <system_error>

namespace vellmark {

std::string instanceIdentifier(const Machine& machine) {
    const std::string identifier = "app.vellmark.Vellmark";
    if (!machine.isSandbox()) {
        return identifier;
    }
    std::error_code ignored;
    const std::filesystem::path path = std::filesystem::weakly_canonical(machine.root, ignored);
    // 64-bit FNV-1a: a path has characters that a name on the bus may not have.
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char character : path.string()) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3U;
    }
    return identifier + ".Sandbox" + std::to_string(hash);
}

} // namespace vellmark
