#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// What is to go into a file that cannot be written now, kept on disk so that nothing is lost when
/// the program ends: whole lines in "x.waiting" beside "x.json".
///
/// All processes add to the same file. Whoever can write the real one next takes the lines over. It
/// has a lock of its own, held only while writing, and at most 4 MB.
class WaitingFile {
public:
    static constexpr std::size_t mostBytes = std::size_t{4} << 20;

    explicit WaitingFile(const std::filesystem::path& file);

    /// Adds lines, each with its end; all of them or none. Synced.
    std::error_code add(std::string_view lines) const;
    /// The lines that wait; empty when there are none.
    std::string lines() const;
    /// Passes the lines to `take`, and removes them if it returns that they are safe elsewhere.
    /// Does nothing when none wait. Call it while holding the lock of the file that they are for.
    /// False when somebody is adding to them right now, and nothing was done.
    bool takeOver(const std::function<bool(std::string_view lines)>& take) const;

private:
    std::filesystem::path path_;
};

} // namespace vellmark
