#include "probes/ExecutableIdentity.h"

#include <system_error>

namespace vellmark {

ExecutableIdentity ExecutableIdentity::of(const std::filesystem::path& path) {
    std::error_code ignored;
    ExecutableIdentity identity;
    identity.path = path;
    identity.size = std::filesystem::file_size(path, ignored);
    identity.changedAt = std::filesystem::last_write_time(path, ignored);
    return identity;
}

} // namespace vellmark
