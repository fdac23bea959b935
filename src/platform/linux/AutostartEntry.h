#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <memory>

namespace vellmark {

/// The login item of desktops by the XDG autostart convention: a desktop entry in `directory`. What
/// a desktop's own settings write into it ("Hidden", "X-GNOME-Autostart-enabled") counts.
std::unique_ptr<LoginItem> makeAutostartEntry(const std::filesystem::path& directory,
                                              const std::filesystem::path& program);

} // namespace vellmark
