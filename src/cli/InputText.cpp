#include "cli/InputText.h"

#include "cli/Subcommand.h"
#include "platform/WholeFile.h"
#include "text/TerminalText.h"

#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

constexpr std::size_t largestInput = std::size_t{64} << 20;

} // namespace

std::optional<std::string> readInputText(const std::optional<std::string>& file,
                                         const CommandContext& context) {
    const bool isStandardInput = !file || *file == "-";
    std::error_code error;
    const auto text = isStandardInput ? readToEnd(STDIN_FILENO, error, largestInput + 1)
                                      : readWholeFile(*file, error, largestInput + 1);
    if (text && text->size() > largestInput)
        error = std::make_error_code(std::errc::file_too_large);
    if (!error)
        return text;
    const std::string name =
        isStandardInput ? context.words.text("cli.standardInput") : singleLine(*file);
    context.report(context.words.format("cli.error.unreadable", {name, error.message()}));
    return std::nullopt;
}

} // namespace vellmark
