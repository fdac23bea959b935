#pragma once

#include <filesystem>

namespace vellmark {

/// The file that this program runs from, with symbolic links resolved, so that what lies beside it
/// can be found; empty when the system does not tell.
std::filesystem::path programPath();

} // namespace vellmark
