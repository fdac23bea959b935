#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>

namespace vellmark {

/// What is to go into a file that cannot be written now, kept on disk so that the end of the
/// program loses none of it: whole lines in "x.waiting" beside "x.json".
///
/// Every process adds to the same one. Whoever can write the file next takes the lines over. It has
/// a lock of its own, held for the moment of a write, and at most 4 MB.
class WaitingFile {
public:
    static constexpr std::size_t mostBytes = std::size_t{4} << 20;

    explicit WaitingFile(const std::filesystem::path& file);

    /// Adds lines, each with its end; all of them or none. Synced.
    std::error_code add(std::string_view lines) const;
    /// The lines that wait; empty when there are none.
    std::string lines() const;
    /// Hands the lines to `take`, and removes them when that answers that they are safe elsewhere.
    /// Does nothing where none wait, or where somebody is just adding to them. For whoever holds
    /// the lock of the file that they are for. False when somebody is just adding to them.
    bool takeOver(const std::function<bool(std::string_view lines)>& take) const;

private:
    std::filesystem::path path_;
};

} // namespace vellmark
