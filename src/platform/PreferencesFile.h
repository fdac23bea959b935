#pragma once

#include "platform/Preferences.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace vellmark {

/// Settings in a file of their own: a JSON object, one member a setting. Every change replaces the
/// file atomically. A damaged file is kept aside as "preferences.damaged.json" beside it, and the
/// defaults hold; one that cannot be read is left alone. `written` is called after each change that
/// is on disk.
std::unique_ptr<Preferences> makePreferencesFile(const std::filesystem::path& file,
                                                 std::function<void()> written = {});

} // namespace vellmark
