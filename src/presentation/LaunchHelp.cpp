#include "presentation/LaunchHelp.h"

#include "presentation/WrappedText.h"

namespace vellmark {
namespace {

constexpr LaunchOptionHelp optionHelp[] = {
    {"--show-window", "", "man.desktop.showWindow"},
    {"--show-about", "", "man.desktop.showAbout"},
    {"--show-popover", "", "man.desktop.showPopover"},
    {"--demo", "", "cli.help.demo"},
    {"--sandbox", "DIR", "cli.help.sandbox"},
    {"--notices", "", "man.desktop.notices"},
    {"--language", "LANG", "man.desktop.language"},
    {"--render-glyph", "USED ELAPSED SIZE FILE.png", "man.desktop.renderGlyph"},
    {"-h, --help", "", "cli.help.help"},
    {"-V, --version", "", "cli.help.version"},
};

} // namespace

std::span<const LaunchOptionHelp> launchOptionHelp() {
    return optionHelp;
}

std::string launchHelp(const Localization& words, std::size_t columns) {
    const std::string call = "vellmark-desktop [" + words.text("cli.help.label.options") + "]";
    std::string text = words.format("cli.help.label.usage", {call}) + "\n\n" +
                       words.text("cli.help.group.options");
    for (const LaunchOptionHelp& option : optionHelp) {
        const std::string value = option.placeholder;
        text += std::string("\n  ") + option.names + (value.empty() ? "" : " " + value) +
                "\n      " + words.text(option.textKey);
    }
    WrappedText wrapped(text);
    wrapped.wrap(columns);
    std::string help;
    for (std::size_t index = 0; index < wrapped.rowCount(); ++index) {
        const WrappedText::Row row = wrapped.row(index);
        const std::string line = text.substr(row.begin, row.end - row.begin);
        help +=
            std::string(row.column, ' ') + line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return help;
}

} // namespace vellmark
