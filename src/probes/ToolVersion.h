#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vellmark {

/// The first line that `executable --version` prints, at most 120 characters; absent when it is no
/// executable file or prints nothing within 5 s. Blocks.
std::optional<std::string> toolVersion(const Machine& machine,
                                       const std::filesystem::path& executable);

} // namespace vellmark
