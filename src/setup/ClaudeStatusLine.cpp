#include "setup/ClaudeStatusLine.h"

#include "platform/WholeFile.h"
#include "setup/SetupScript.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

using Fault = ClaudeSettingsFault;

constexpr std::string_view memberName = "statusLine";
constexpr std::string_view ourArguments = " statusline --color always";
constexpr std::string_view chaining = " --then ";
constexpr std::size_t largestSettings = std::size_t{16} << 20;
constexpr std::string_view blanks = " \t\r\n";

/// A member of the outermost object, by its place in the text.
struct Member {
    std::size_t begin = 0; ///< of its name
    std::size_t value = 0;
    std::size_t end = 0;
};

/// Past the string that begins at `at`.
std::size_t afterString(std::string_view text, std::size_t at) {
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\') {
            ++at;
        }
    }
    return std::min(at + 1, text.size());
}

std::size_t afterValue(std::string_view text, std::size_t at) {
    std::size_t depth = 0;
    while (at < text.size()) {
        const char character = text[at];
        if (character == '"') {
            at = afterString(text, at);
        } else if (character == '{' || character == '[') {
            ++depth;
            ++at;
        } else if (character == '}' || character == ']') {
            if (depth == 0) {
                return at;
            }
            --depth;
            ++at;
        } else if (depth == 0 &&
                   (character == ',' || blanks.find(character) != std::string_view::npos)) {
            return at;
        } else {
            ++at;
        }
        if (depth == 0 && (text[at - 1] == '}' || text[at - 1] == ']' || text[at - 1] == '"')) {
            return at;
        }
    }
    return at;
}

/// Of a text that is known to be a JSON object.
std::vector<Member> membersOf(std::string_view text) {
    std::vector<Member> members;
    const auto skipTo = [&](std::size_t at) {
        return std::min(text.find_first_not_of(blanks, at), text.size());
    };
    std::size_t at = skipTo(text.find('{') + 1);
    while (at < text.size() && text[at] == '"') {
        Member member{.begin = at};
        member.value = skipTo(skipTo(afterString(text, at)) + 1);
        member.end = afterValue(text, member.value);
        members.push_back(member);
        at = skipTo(member.end);
        if (at < text.size() && text[at] == ',') {
            at = skipTo(at + 1);
        }
    }
    return members;
}

/// The settings with the status line as it stands in them.
struct Settings {
    explicit Settings(std::string_view given)
        : text(given.find_first_not_of(blanks) == std::string_view::npos ? "{}" : given) {
        try {
            const JSON document = parsedJSON(text);
            if (!document.is_object()) {
                throw Fault(Fault::Kind::notJSON, "no object");
            }
        } catch (const JSONDecodingError& error) {
            throw Fault(Fault::Kind::notJSON, error.what());
        }
        members = membersOf(text);
        // The last one of a name counts.
        for (const Member& each : members) {
            const auto name = std::string_view(text).substr(each.begin, each.value - each.begin);
            if (parsedJSON("[" + std::string(name.substr(0, afterString(name, 0))) + "]")[0] ==
                memberName) {
                statusLine = each;
            }
        }
        if (statusLine) {
            value = parsedJSON(std::string_view(text).substr(statusLine->value,
                                                             statusLine->end - statusLine->value));
        }
    }

    /// The command that is run; absent where there is none.
    std::optional<std::string> command() const {
        if (!statusLine || value.is_null()) {
            return std::nullopt;
        }
        if (!value.is_object() || value.value("type", JSON()) != "command" ||
            !value.value("command", JSON()).is_string()) {
            throw Fault(Fault::Kind::unknownStatusLine, std::string(memberName));
        }
        return value["command"].get<std::string>();
    }

    bool isOneLine() const { return text.find('\n') == std::string::npos; }

    std::string valueText(const JSON& json, const std::string& indent) const {
        if (isOneLine() && text != "{}") {
            return serialized(json, -1);
        }
        std::string written;
        for (const char character : serialized(json)) {
            written += character;
            if (character == '\n') {
                written += indent;
            }
        }
        return written;
    }

    /// The blanks that the line of a place begins with.
    std::string indentAt(std::size_t place) const {
        const std::size_t line = text.rfind('\n', place) + 1;
        const std::size_t end = text.find_first_not_of(" \t", line);
        return text.substr(line, std::min(end, place) - line);
    }

    std::string withValue(const JSON& json) const {
        std::string changed = text;
        if (statusLine) {
            return changed.replace(statusLine->value, statusLine->end - statusLine->value,
                                   valueText(json, indentAt(statusLine->begin)));
        }
        if (members.empty()) {
            return "{\n  \"statusLine\": " + valueText(json, "  ") + "\n}\n";
        }
        const Member& last = members.back();
        const std::string indent = isOneLine() ? "" : indentAt(last.begin);
        const std::string gap = isOneLine() ? " " : "\n" + indent;
        return changed.insert(last.end, "," + gap + "\"statusLine\": " + valueText(json, indent));
    }

    std::string withoutMember() const {
        std::string changed = text;
        const auto at = std::ranges::find(members, statusLine->begin, &Member::begin);
        // The comma before it goes too, or the one behind it.
        const std::size_t begin = at != members.begin()            ? std::prev(at)->end
                                  : std::next(at) != members.end() ? statusLine->begin
                                                                   : text.find('{') + 1;
        const std::size_t end = at != members.begin()            ? statusLine->end
                                : std::next(at) != members.end() ? std::next(at)->begin
                                                                 : text.rfind('}');
        return changed.erase(begin, end - begin);
    }

    std::string text;
    std::vector<Member> members;
    std::optional<Member> statusLine;
    JSON value;
};

/// `word` as the shell reads it; absent when it is not one word as shellQuoted writes it.
std::optional<std::string> unquoted(std::string_view word) {
    std::string text;
    while (!word.empty()) {
        if (word.starts_with("\\'")) {
            text += '\'';
            word.remove_prefix(2);
            continue;
        }
        const std::size_t end =
            word.starts_with('\'') ? word.find('\'', 1) : std::string_view::npos;
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        text += word.substr(1, end - 1);
        word.remove_prefix(end + 1);
    }
    return text;
}

/// A command of ours: what it runs after itself, which may be nothing.
struct OurCommand {
    std::optional<std::string> then;
};

std::optional<OurCommand> ourCommand(const std::string& command) {
    const std::size_t at = command.find(ourArguments);
    if (at == std::string::npos) {
        return std::nullopt;
    }
    const auto program = unquoted(std::string_view(command).substr(0, at));
    if (!program || fs::path(*program).filename() != "vellmark") {
        return std::nullopt;
    }
    const std::string_view rest = std::string_view(command).substr(at + ourArguments.size());
    if (rest.empty()) {
        return OurCommand{};
    }
    const auto then = rest.starts_with(chaining) ? unquoted(rest.substr(chaining.size()))
                                                 : std::optional<std::string>();
    return then ? std::optional(OurCommand{then}) : std::nullopt;
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.emplace_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

/// The bytes of the whole lines with which both texts begin.
std::size_t commonLinesLength(std::string_view first, std::string_view second) {
    const auto [end, other] = std::ranges::mismatch(first, second);
    const std::string_view same(first.begin(), end);
    return same.size() == first.size() && other == second.end() ? same.size()
                                                                : same.rfind('\n') + 1;
}

/// The whole lines with which both texts end.
std::string_view commonLastLines(std::string_view first, std::string_view second) {
    const std::size_t most = std::min(first.size(), second.size());
    std::size_t length = 0;
    while (length < most &&
           first[first.size() - 1 - length] == second[second.size() - 1 - length]) {
        ++length;
    }
    const std::string_view same = first.substr(first.size() - length);
    const auto beginsLine = [length](std::string_view text) {
        return length == text.size() || text[text.size() - length - 1] == '\n';
    };
    if (beginsLine(first) && beginsLine(second)) {
        return same;
    }
    return same.substr(std::min(same.find('\n'), same.size() - 1) + 1);
}

constexpr int linesAround = 2;

std::string_view contextBefore(std::string_view text) {
    std::size_t begin = text.size();
    for (int line = 0; line < linesAround && begin > 0; ++line) {
        begin = begin < 2 ? 0 : text.rfind('\n', begin - 2) + 1;
    }
    return text.substr(begin);
}

std::string_view contextAfter(std::string_view text) {
    std::size_t end = 0;
    for (int line = 0; line < linesAround && end < text.size(); ++line) {
        end = std::min(text.find('\n', end), text.size() - 1) + 1;
    }
    return text.substr(0, end);
}

/// A name that nothing has yet.
fs::path backupName(const fs::path& file) {
    const std::string name = file.string() + ".before-vellmark";
    fs::path free = name;
    std::error_code ignored;
    for (int number = 2; fs::exists(fs::symlink_status(free, ignored)); ++number) {
        free = name + "-" + std::to_string(number);
    }
    return free;
}

/// Also behind a link. Throws std::system_error.
std::string settingsIn(const fs::path& file) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(file, error);
    const auto text = readRegularFile(target.empty() ? file : target, largestSettings, error);
    if (!text && error != std::errc::no_such_file_or_directory) {
        throw std::system_error(error, file.string());
    }
    return text.value_or(std::string());
}

} // namespace

fs::path claudeSettingsFile(const Machine& machine) {
    const auto chosen = machine.environment.find("CLAUDE_CONFIG_DIR");
    const bool isChosen = chosen != machine.environment.end() && !chosen->second.empty();
    return (isChosen ? fs::path(chosen->second) : machine.home / ".claude") / "settings.json";
}

std::optional<std::string> withStatusLine(std::string_view text, const fs::path& program) {
    const Settings settings(text);
    std::optional<std::string> then = settings.command();
    if (then) {
        if (const auto ours = ourCommand(*then)) {
            then = ours->then;
        }
    }
    const std::string command = shellQuoted(program.string()) + std::string(ourArguments) +
                                (then ? std::string(chaining) + shellQuoted(*then) : std::string());
    if (settings.command() == command) {
        return std::nullopt;
    }
    JSON value = settings.value.is_object() ? settings.value : JSON::object();
    value["type"] = "command";
    value["command"] = command;
    return settings.withValue(value);
}

std::optional<std::string> withoutStatusLine(std::string_view text) {
    const Settings settings(text);
    const auto command = settings.command();
    const auto ours = command ? ourCommand(*command) : std::nullopt;
    if (!ours) {
        return std::nullopt;
    }
    if (!ours->then) {
        return settings.withoutMember();
    }
    JSON value = settings.value;
    value["command"] = *ours->then;
    return settings.withValue(value);
}

std::vector<ChangedLine> changedLines(std::string_view before, std::string_view after) {
    const std::size_t head = commonLinesLength(before, after);
    std::string_view old = before.substr(head);
    std::string_view now = after.substr(head);
    const std::string_view tail = commonLastLines(old, now);
    old.remove_suffix(tail.size());
    now.remove_suffix(tail.size());

    std::vector<ChangedLine> lines;
    const auto add = [&lines](ChangedLine::Kind kind, std::string_view text) {
        for (std::string& line : linesOf(text)) {
            lines.push_back({kind, std::move(line)});
        }
    };
    add(ChangedLine::Kind::same, contextBefore(before.substr(0, head)));
    add(ChangedLine::Kind::removed, old);
    add(ChangedLine::Kind::added, now);
    add(ChangedLine::Kind::same, contextAfter(tail));
    return lines;
}

std::optional<ClaudeSettingsChange> ClaudeSettingsChange::of(const Machine& machine, Wish wish,
                                                             const fs::path& program) {
    ClaudeSettingsChange change{.file = claudeSettingsFile(machine)};
    change.before = settingsIn(change.file);
    const auto after = wish == Wish::install ? withStatusLine(change.before, program)
                                             : withoutStatusLine(change.before);
    if (!after) {
        return std::nullopt;
    }
    change.after = *after;
    return change;
}

ClaudeSettingsChange::Outcome ClaudeSettingsChange::make() const {
    Outcome outcome;
    try {
        outcome.hasChangedMeanwhile = settingsIn(file) != before;
    } catch (const std::system_error& error) {
        outcome.error = error.code();
    }
    if (outcome.error || outcome.hasChangedMeanwhile) {
        return outcome;
    }
    if (!before.empty()) {
        outcome.backup = backupName(file);
        outcome.error = replaceWholeFile(outcome.backup, before);
    }
    if (!outcome.error) {
        outcome.error = replaceWholeFile(file, after);
    }
    return outcome;
}

} // namespace vellmark
