#include "platform/linux/AutostartEntry.h"

#include "platform/WholeFile.h"

#include <map>
#include <string_view>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestEntry = std::size_t{1} << 20;

using Members = std::map<std::string, std::string, std::less<>>;

/// A value of type string, as it stands in the file.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '\\':
            result += "\\\\";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\t':
            result += "\\t";
            break;
        case '\r':
            result += "\\r";
            break;
        case ' ':
            // A blank at the beginning would belong to the "=".
            result += result.empty() ? "\\s" : " ";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\' || at + 1 == text.size()) {
            result += text[at];
            continue;
        }
        const char code = text[++at];
        result += code == 'n'   ? '\n'
                  : code == 't' ? '\t'
                  : code == 'r' ? '\r'
                  : code == 's' ? ' '
                                : code;
    }
    return result;
}

/// One argument of a command line, before the escapes of the file.
std::string quotedArgument(std::string_view text) {
    std::string result = "\"";
    for (const char character : text) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos) {
            result += '\\';
        }
        result += character == '%' ? "%%" : std::string(1, character);
    }
    return result + '"';
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The members of the group "Desktop Entry".
Members membersIn(std::string_view contents) {
    Members members;
    bool isOurGroup = false;
    while (!contents.empty()) {
        const auto end = std::min(contents.find('\n'), contents.size());
        const std::string_view line = trimmed(contents.substr(0, end));
        contents.remove_prefix(std::min(end + 1, contents.size()));
        const auto equals = line.find('=');
        if (line.starts_with('[')) {
            isOurGroup = line == "[Desktop Entry]";
        } else if (isOurGroup && !line.starts_with('#') && equals != std::string_view::npos) {
            members.emplace(trimmed(line.substr(0, equals)),
                            unescaped(trimmed(line.substr(equals + 1))));
        }
    }
    return members;
}

class AutostartEntry final : public LoginItem {
public:
    AutostartEntry(const fs::path& directory, fs::path program)
        : file_(directory / "app.vellmark.Vellmark.desktop"), program_(std::move(program)) {}

    State state() const override {
        const auto members = read();
        if (!members || valueOf(*members, "Hidden") == "true" ||
            valueOf(*members, "X-GNOME-Autostart-enabled") == "false") {
            return State::off;
        }
        return valueOf(*members, "Exec").empty() ? State::off : State::on;
    }

    std::string setEnabled(bool enabled) override {
        std::error_code error;
        if (enabled) {
            error = replaceWholeFile(file_, contents());
        } else {
            fs::remove(file_, error);
        }
        return error ? error.message() : std::string();
    }

    fs::path program() const override { return program_; }

    std::optional<fs::path> registeredProgram() const override {
        const auto members = read();
        std::string path = members ? valueOf(*members, "TryExec") : std::string();
        return path.empty() ? std::nullopt : std::optional<fs::path>(std::move(path));
    }

private:
    std::optional<Members> read() const {
        std::error_code ignored;
        const auto contents = readRegularFile(file_, longestEntry, ignored);
        return contents ? std::optional(membersIn(*contents)) : std::nullopt;
    }

    static std::string valueOf(const Members& members, std::string_view key) {
        const auto found = members.find(key);
        return found == members.end() ? std::string() : found->second;
    }

    /// "TryExec" keeps a desktop silent when the program has been removed.
    std::string contents() const {
        return "[Desktop Entry]\n"
               "Type=Application\n"
               "Name=Vellmark\n"
               "Exec=" +
               escaped(quotedArgument(program_.string())) +
               "\nTryExec=" + escaped(program_.string()) +
               "\n"
               "Icon=app.vellmark.Vellmark\n"
               "Terminal=false\n"
               "X-GNOME-Autostart-enabled=true\n";
    }

    fs::path file_;
    fs::path program_;
};

} // namespace

std::unique_ptr<LoginItem> makeAutostartEntry(const fs::path& directory, const fs::path& program) {
    return std::make_unique<AutostartEntry>(directory, program);
}

} // namespace vellmark
