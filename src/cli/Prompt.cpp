#include "cli/Prompt.h"

#include "cli/Subcommand.h"
#include "cli/TerminalLoop.h"
#include "text/TerminalText.h"

#include <array>
#include <unistd.h>

namespace vellmark {

std::optional<std::string> Prompt::ask(const std::string& question) {
    context_.output.write(question);
    TerminalLoop loop;
    std::optional<std::string> line;
    // The terminal hands out whole lines, each with its end.
    const auto watch = loop.watch(STDIN_FILENO, [&] {
        std::array<char, 4096> buffer{};
        const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count > 0) {
            line = std::string(trimmed({buffer.data(), static_cast<std::size_t>(count)}));
        }
        loop.stop(ExitStatus::done);
    });
    const int status = loop.run();
    endingStatus_ = loop.endingSignal() != 0 ? status : 0;
    if (!line) {
        context_.output.write("\n");
    }
    return line;
}

} // namespace vellmark
