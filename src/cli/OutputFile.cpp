#include "cli/OutputFile.h"

#include "cli/Subcommand.h"
#include "platform/Descriptor.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

/// A pipe or a device, which stays what it is.
std::error_code writeTo(const std::string& file, std::string_view text) {
    const Descriptor opened(::open(file.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    while (opened.isOpen() && !text.empty()) {
        const ssize_t count = ::write(opened.get(), text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            return lastSystemError();
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return opened.isOpen() ? std::error_code() : lastSystemError();
}

std::error_code save(const std::filesystem::path& file, std::string_view text,
                     ReplacementFile::Mode mode) {
    std::error_code error;
    const auto directory = file.has_parent_path() ? file.parent_path() : ".";
    if (!std::filesystem::is_directory(directory, error)) {
        return error ? error : std::make_error_code(std::errc::no_such_file_or_directory);
    }
    return replaceWholeFile(file, text, mode);
}

} // namespace

Delivery deliver(const std::string& text, const std::optional<std::string>& file,
                 ReplacementFile::Mode mode, const CommandContext& context) {
    struct stat target {};
    struct stat output {};
    const bool exists = file && ::stat(file->c_str(), &target) == 0;
    // "/dev/stdout", for instance; a second opening would write over what is there.
    const bool isOutput = exists && ::fstat(STDOUT_FILENO, &output) == 0 &&
                          output.st_dev == target.st_dev && output.st_ino == target.st_ino;
    if (!file || *file == "-" || isOutput) {
        context.output.writeData(text);
        return Delivery::printed;
    }
    const bool isSpecial = exists && !S_ISREG(target.st_mode);
    if (const auto error = isSpecial ? writeTo(*file, text) : save(*file, text, mode)) {
        context.report(context.words.format(
            "cli.error.notSaved", {singleLine(*file), systemErrorText(error, context.words)}));
        return Delivery::failed;
    }
    return Delivery::saved;
}

} // namespace vellmark
