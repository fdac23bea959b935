#pragma once

#include "platform/FileWatch.h"
#include "platform/Machine.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vellmark {

/// The user's settings, by key ("AppLanguage", "PopoverSelectedTab" …). Main thread. A setter
/// writes through; a value of another type than asked for counts as absent. Keys that this version
/// does not know are kept.
///
/// Both programs may change settings at any time: a change touches its own key alone, whatever
/// another process has written since, and of a list its own member alone.
class Preferences {
public:
    virtual ~Preferences() = default;
    virtual std::optional<bool> boolean(std::string_view key) const = 0;
    virtual std::optional<double> number(std::string_view key) const = 0;
    virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual std::optional<std::vector<std::string>> strings(std::string_view key) const = 0;

    virtual void setBoolean(std::string_view key, bool value) = 0;
    virtual void setNumber(std::string_view key, double value) = 0;
    virtual void setString(std::string_view key, std::string value) = 0;
    virtual void setStrings(std::string_view key, std::vector<std::string> value) = 0;
    /// Adds `member` to the list at its end, or removes it; the other members stay as they are on
    /// disk.
    virtual void setMember(std::string_view key, std::string_view member, bool isIn) = 0;
    virtual void remove(std::string_view key) = 0;

    /// Takes over what other processes have changed.
    virtual void reload() = 0;

    /// Why the last change is not on disk (full, read-only …), or why the settings could not be
    /// read; absent otherwise. The values hold for this run all the same, and the next change and
    /// `retry` try again to write everything.
    virtual std::optional<std::error_code> writeError() const = 0;
    /// Tries again what `writeError` tells of; costs nothing when that is nothing.
    virtual void retry() = 0;
};

/// The settings of the user: CFPreferences on macOS, "Vellmark/preferences.json" below the
/// machine's configuration directory on Linux and in every sandbox.
std::unique_ptr<Preferences> makePreferences(const Machine& machine);

/// Calls `changed` after any process, including this one, has changed the machine's settings;
/// `Preferences::reload` then brings the new values in. Costs nothing while nobody changes them.
/// Null where the system cannot tell.
std::unique_ptr<FileWatch> watchPreferences(DescriptorWatcher& loop, const Machine& machine,
                                            std::function<void()> changed);

} // namespace vellmark
