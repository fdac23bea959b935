#include "cli/InputText.h"

#include "cli/Subcommand.h"
#include "text/TerminalText.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr std::size_t largestInput = std::size_t{64} << 20;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Appends everything up to the end of `descriptor`, or a little more than is allowed.
std::error_code readAll(int descriptor, std::string& text) {
    std::array<char, 64 * 1024> block{};
    while (text.size() <= largestInput) {
        const ssize_t count = read(descriptor, block.data(), block.size());
        if (count == 0)
            break;
        if (count > 0)
            text.append(block.data(), static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return lastError();
    }
    return {};
}

} // namespace

std::optional<std::string> readInputText(const std::optional<std::string>& file,
                                         const CommandContext& context) {
    const bool isStandardInput = !file || *file == "-";
    const int descriptor =
        isStandardInput ? STDIN_FILENO : open(file->c_str(), O_RDONLY | O_CLOEXEC);
    std::string text;
    std::error_code error = descriptor < 0 ? lastError() : readAll(descriptor, text);
    if (descriptor >= 0 && !isStandardInput)
        close(descriptor);
    if (!error && text.size() > largestInput)
        error = std::make_error_code(std::errc::file_too_large);
    if (!error)
        return text;
    const std::string name =
        isStandardInput ? context.words.text("cli.standardInput") : singleLine(*file);
    context.report(context.words.format("cli.error.unreadable", {name, error.message()}));
    return std::nullopt;
}

} // namespace vellmark
