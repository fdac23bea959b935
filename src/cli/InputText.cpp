#include "cli/InputText.h"

#include "cli/Subcommand.h"
#include "platform/Descriptor.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"
#include "text/TerminalText.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr std::size_t largestInput = std::size_t{64} << 20;
constexpr std::size_t pieceSize = std::size_t{1} << 20;

bool isStandardInput(const std::optional<std::string>& file) {
    return !file || *file == "-";
}

void report(const std::optional<std::string>& file, std::error_code error,
            const CommandContext& context) {
    context.reportUnreadable(
        isStandardInput(file) ? context.words.text("cli.standardInput") : singleLine(*file), error);
}

} // namespace

std::optional<std::string> readInputText(const std::optional<std::string>& file,
                                         const CommandContext& context) {
    std::error_code error;
    const auto text = isStandardInput(file) ? readToEnd(STDIN_FILENO, error, largestInput + 1)
                                            : readWholeFile(*file, error, largestInput + 1);
    if (text && text->size() > largestInput) {
        error = std::make_error_code(std::errc::file_too_large);
    }
    if (!error) {
        return text;
    }
    report(file, error, context);
    return std::nullopt;
}

bool readInputPieces(const std::optional<std::string>& file, const CommandContext& context,
                     const std::function<bool(std::string_view)>& take) {
    const Descriptor opened(isStandardInput(file) ? -1
                                                  : ::open(file->c_str(), O_RDONLY | O_CLOEXEC));
    std::error_code error;
    if (!isStandardInput(file) && !opened.isOpen()) {
        error = lastSystemError();
    }
    const int descriptor = isStandardInput(file) ? STDIN_FILENO : opened.get();
    std::string piece(pieceSize, '\0');
    while (!error) {
        const ssize_t count = ::read(descriptor, piece.data(), piece.size());
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            if (!take({piece.data(), static_cast<std::size_t>(count)})) {
                return true;
            }
        } else if (errno != EINTR) {
            error = lastSystemError();
        }
    }
    report(file, error, context);
    return false;
}

} // namespace vellmark
