#include "platform/UserTerminal.h"

#include "platform/SystemDirectories.h"
#include "platform/WholeFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

/// A settings file of a desktop is much smaller.
constexpr std::size_t largestSettings = 1u << 20;

/// How a terminal is told what to show. Most follow xterm, whose "-e" is followed by the program
/// and its arguments.
struct Convention {
    std::string_view terminal;
    std::array<std::string_view, 2> arguments;
};

/// Where "-e" is not the way, or takes one text instead of words. The common terminals, those of
/// the desktops first.
constexpr std::array knownTerminals{
    Convention{"ptyxis", {"--new-window", "--"}},
    Convention{"kgx", {"--", ""}},
    Convention{"gnome-terminal", {"--", ""}},
    Convention{"konsole", {"-e", ""}},
    Convention{"xfce4-terminal", {"-x", ""}},
    Convention{"mate-terminal", {"-x", ""}},
    Convention{"cosmic-term", {"-e", ""}},
    Convention{"io.elementary.terminal", {"-x", ""}},
    Convention{"deepin-terminal", {"-e", ""}},
    Convention{"qterminal", {"-e", ""}},
    Convention{"lxterminal", {"-e", ""}},
    Convention{"terminator", {"-x", ""}},
    Convention{"ghostty", {"-e", ""}},
    Convention{"kitty", {"", ""}},
    Convention{"wezterm", {"start", "--"}},
    Convention{"alacritty", {"-e", ""}},
    Convention{"foot", {"", ""}},
    Convention{"footclient", {"", ""}},
    Convention{"urxvt", {"-e", ""}},
    Convention{"st", {"-e", ""}},
    Convention{"xterm", {"-e", ""}},
    Convention{"uxterm", {"-e", ""}},
};

std::string variable(const Machine& machine, const std::string& name) {
    const auto found = machine.environment.find(name);
    return found == machine.environment.end() ? std::string() : found->second;
}

bool isProgram(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && access(path.c_str(), X_OK) == 0;
}

/// Where the shell would find it; a path is taken as it is.
std::optional<fs::path> lookUp(const std::string& name, const Machine& machine) {
    if (name.find('/') != std::string::npos) {
        return isProgram(name) ? std::optional<fs::path>(name) : std::nullopt;
    }
    std::istringstream directories(variable(machine, "PATH"));
    for (std::string directory; std::getline(directories, directory, ':');) {
        const fs::path path = fs::path(directory) / name;
        if (path.is_absolute() && isProgram(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::vector<std::string> conventionOf(const fs::path& terminal) {
    const std::string name = terminal.filename().string();
    const auto known = std::ranges::find(knownTerminals, name, &Convention::terminal);
    std::vector<std::string> arguments;
    if (known == knownTerminals.end()) {
        return {"-e"};
    }
    for (const std::string_view argument : known->arguments) {
        if (!argument.empty()) {
            arguments.emplace_back(argument);
        }
    }
    return arguments;
}

/// The value of "key=value" in a settings file of a desktop; of its last line where there are more.
std::string settingIn(const fs::path& file, std::string_view key) {
    std::error_code ignored;
    std::istringstream lines(readRegularFile(file, largestSettings, ignored).value_or(""));
    std::string value;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(key) && line.size() > key.size() && line[key.size()] == '=') {
            value = line.substr(key.size() + 1);
        }
    }
    return value;
}

/// The terminal that the user has chosen in the settings of his desktop, or that comes with it.
std::vector<std::string> namesOfDesktop(const Machine& machine) {
    const std::string desktops = ':' + variable(machine, "XDG_CURRENT_DESKTOP") + ':';
    const auto isDesktop = [&](std::string_view name) {
        return desktops.find(':' + std::string(name) + ':') != std::string::npos;
    };
    const fs::path& settings = machine.configuration;
    if (isDesktop("KDE")) {
        return {settingIn(settings / "kdeglobals", "TerminalApplication"), "konsole"};
    }
    if (isDesktop("XFCE")) {
        return {settingIn(settings / "xfce4/helpers.rc", "TerminalEmulator"), "xfce4-terminal"};
    }
    if (isDesktop("LXQt")) {
        return {settingIn(settings / "lxqt/session.conf", "terminal_emulator"), "qterminal"};
    }
    if (isDesktop("MATE")) {
        return {"mate-terminal"};
    }
    if (isDesktop("LXDE")) {
        return {"lxterminal"};
    }
    if (isDesktop("COSMIC")) {
        return {"cosmic-term"};
    }
    if (isDesktop("X-Cinnamon")) {
        return {"gnome-terminal"};
    }
    return {}; // GNOME's come first among the common ones
}

class FoundTerminals {
public:
    explicit FoundTerminals(const Machine& machine) : machine_(machine) {}

    /// `command` may have arguments of its own: "kitty --single-instance".
    void add(const std::string& command) {
        std::istringstream words(command);
        std::string name;
        words >> name;
        const auto program = name.empty() ? std::nullopt : lookUp(name, machine_);
        if (!program) {
            return;
        }
        UserTerminal terminal{.program = *program, .arguments = {}};
        for (std::string word; words >> word;) {
            terminal.arguments.push_back(word);
        }
        for (std::string& argument : conventionOf(*program)) {
            terminal.arguments.push_back(std::move(argument));
        }
        add(std::move(terminal));
    }

    /// The desktops' common way to their default: takes the program as it is.
    void addDefault() {
        if (const auto program = lookUp("xdg-terminal-exec", machine_)) {
            add(UserTerminal{.program = *program, .arguments = {}});
        }
    }

    std::vector<UserTerminal> take() { return std::move(terminals_); }

private:
    void add(UserTerminal terminal) {
        if (std::ranges::find(terminals_, terminal) == terminals_.end()) {
            terminals_.push_back(std::move(terminal));
        }
    }

    const Machine& machine_;
    std::vector<UserTerminal> terminals_;
};

} // namespace

std::vector<UserTerminal> userTerminals(const Machine& machine) {
    if (variable(machine, "DISPLAY").empty() && variable(machine, "WAYLAND_DISPLAY").empty()) {
        return {};
    }
    FoundTerminals found(machine);
    found.add(variable(machine, "TERMINAL"));
    found.addDefault();
    for (const std::string& name : namesOfDesktop(machine)) {
        found.add(name);
    }
    found.add("x-terminal-emulator");
    for (const Convention& known : knownTerminals) {
        found.add(std::string(known.terminal));
    }
    return found.take();
}

} // namespace vellmark
