#include "probes/LaunchFailure.h"

#include "platform/RegularFile.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace vellmark {

namespace {

/// The interpreter of a script; empty for another program.
std::string interpreterOf(const std::filesystem::path& program) {
    constexpr std::size_t longestLine = 256;
    constexpr std::string_view blanks = " \t";
    std::error_code unreadable;
    const std::string start =
        readRegularFile(program, unreadable, longestLine).value_or(std::string());
    if (!start.starts_with("#!")) {
        return {};
    }
    std::string_view line = std::string_view(start).substr(2);
    line = line.substr(0, line.find('\n'));
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    return std::string(line.substr(0, line.find_first_of(blanks)));
}

} // namespace

std::string launchFailureReason(std::error_code error, const std::filesystem::path& program) {
    std::string reason = error.message();
    if (error != std::errc::no_such_file_or_directory) {
        return reason;
    }
    std::string interpreter = interpreterOf(program);
    return interpreter.empty() ? reason : interpreter + ": " + reason;
}

} // namespace vellmark
