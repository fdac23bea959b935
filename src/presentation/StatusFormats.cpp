#include "presentation/StatusFormats.h"

#include "model/UsageJSON.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace vellmark {
namespace {

struct FormatName {
    std::string_view name;
    StatusFormat format;
};

constexpr std::array formats{
    FormatName{"text", StatusFormat::text},         FormatName{"waybar", StatusFormat::waybar},
    FormatName{"i3blocks", StatusFormat::i3blocks}, FormatName{"i3bar", StatusFormat::i3bar},
    FormatName{"polybar", StatusFormat::polybar},   FormatName{"tmux", StatusFormat::tmux},
    FormatName{"starship", StatusFormat::starship}, FormatName{"swiftbar", StatusFormat::swiftbar},
    FormatName{"json", StatusFormat::json},
};

/// Stands between two parts.
constexpr const char* separator = " · ";
/// Stands before the span until the reset.
constexpr const char* resetMark = " ↻ ";

std::string replaced(std::string_view text,
                     std::initializer_list<std::pair<char, std::string_view>> replacements) {
    std::string result;
    for (const char character : text) {
        const auto found =
            std::ranges::find(replacements, character, &std::pair<char, std::string_view>::first);
        if (found == replacements.end()) {
            result += character;
        } else {
            result += found->second;
        }
    }
    return result;
}

std::string escapedForMenuLine(std::string_view text) {
    // A bar divides the text from its parameters; dashes at the start are levels of the menu.
    std::string result = replaced(text, {{'|', "¦"}});
    result.erase(0, std::min(result.find_first_not_of(' '), result.size()));
    return result.starts_with('-') ? "–" + result.substr(1) : result;
}

/// The colour of a health where the reader has no names for any: those of the status dots.
std::string hexColor(UsageHealth health, bool onDark = true) {
    switch (health) {
    case UsageHealth::healthy:
        return onDark ? "#26d173" : "#0f8540";
    case UsageHealth::attention:
        return onDark ? "#fab333" : "#b87500";
    case UsageHealth::critical:
        return onDark ? "#ed4047" : "#cc242e";
    case UsageHealth::unavailable:
        break;
    }
    return onDark ? "#9c9ea6" : "#6e7078";
}

/// "Claude 7% left ↻ 1 h 26 min · 34 min old", for a reader of that format.
std::string line(const StatusReport& report, StatusFormat format) {
    if (!report.window) {
        return escapedFor(format, report.verdict);
    }
    const StatusWindow& window = *report.window;
    std::string text = window.shortAgentName + " " + window.value;
    if (!window.obstacle.empty()) {
        text = window.shortAgentName + " · " + window.label + separator + window.obstacle;
    } else if (!window.resetIn.empty()) {
        text += resetMark + window.resetIn;
    }
    if (!window.ageText.empty()) {
        text += separator + window.ageText;
    }
    return escapedFor(format, text);
}

/// "Claude 7%", with the age all the same.
std::string shortLine(const StatusReport& report, StatusFormat format) {
    if (!report.window) {
        return escapedFor(format, "Vellmark –");
    }
    const StatusWindow& window = *report.window;
    const bool isKnown = window.obstacle.empty();
    std::string text = window.shortAgentName + " " + (isKnown ? window.figure : "–");
    if (!window.ageText.empty()) {
        text += " (" + window.ageText + ")";
    }
    return escapedFor(format, text);
}

/// "Claude · Pro", then "Session: 4% left · Resets in …" for each window.
struct AgentLines {
    std::string head;
    struct Window {
        std::string text;
        UsageHealth health;
    };
    std::vector<Window> windows;
};

std::vector<AgentLines> agentLines(const StatusReport& report, StatusFormat format) {
    std::vector<AgentLines> all;
    for (const AgentBlockContent& agent : report.agents) {
        AgentLines lines{escapedFor(format, agent.name + separator + agent.statusText), {}};
        for (const UsageRowContent& row : agent.rows) {
            const std::string outlook = row.forecast ? separator + row.forecast->briefText : "";
            lines.windows.push_back({escapedFor(format, row.fullLabel + ": " + row.value +
                                                            separator + row.reset + outlook),
                                     row.bar.health});
        }
        if (agent.failure) {
            lines.windows.push_back(
                {escapedFor(format, agent.failure->reason), UsageHealth::unavailable});
        }
        all.push_back(std::move(lines));
    }
    return all;
}

std::string waybarOutput(const StatusReport& report) {
    std::string toolTip;
    for (const AgentLines& agent : agentLines(report, StatusFormat::waybar)) {
        toolTip += (toolTip.empty() ? "<b>" : "\n<b>") + agent.head + "</b>";
        for (const AgentLines::Window& window : agent.windows) {
            toolTip += "\n" + window.text;
        }
    }
    const std::string name(healthName(report.health));
    JSON classes = JSON::array({name});
    if (report.window && !report.window->ageText.empty()) {
        classes.push_back("old");
    }
    JSON document{
        {"text", line(report, StatusFormat::waybar)},
        {"alt", name},
        {"tooltip", toolTip.empty() ? escapedFor(StatusFormat::waybar, report.verdict) : toolTip},
        {"class", std::move(classes)}};
    if (report.window && report.window->obstacle.empty()) {
        document["percentage"] = std::lround(report.window->leftPercent);
    }
    return serialized(document, -1) + "\n";
}

JSON i3barBlock(const StatusReport& report) {
    JSON block{{"name", "vellmark"}};
    if (report.window) {
        block["instance"] =
            singleLine(report.window->agent.rawValue + "/" + report.window->windowID);
    }
    block["full_text"] = line(report, StatusFormat::i3bar);
    block["short_text"] = shortLine(report, StatusFormat::i3bar);
    block["color"] = hexColor(report.health);
    block["urgent"] = report.health == UsageHealth::critical;
    block["markup"] = "none";
    return block;
}

std::string polybarOutput(const StatusReport& report) {
    const std::string text = line(report, StatusFormat::polybar);
    return report.health == UsageHealth::healthy
               ? text + "\n"
               : "%{F" + hexColor(report.health) + "}" + text + "%{F-}\n";
}

/// The terminal's own colours, which go with its ground.
std::string tmuxOutput(const StatusReport& report) {
    const std::string text = line(report, StatusFormat::tmux);
    switch (report.health) {
    case UsageHealth::healthy:
        return text + "\n";
    case UsageHealth::attention:
        return "#[fg=yellow]" + text + "#[default]\n";
    case UsageHealth::critical:
        return "#[fg=red]" + text + "#[default]\n";
    case UsageHealth::unavailable:
        break;
    }
    return "#[dim]" + text + "#[default]\n";
}

/// For a title on both grounds of a menu bar.
std::string menuColors(UsageHealth health) {
    return health == UsageHealth::healthy
               ? std::string()
               : " color=" + hexColor(health, false) + "," + hexColor(health, true);
}

/// A program that is to be started; nothing where its path could not be told.
std::string menuAction(const std::string& title, const std::string& program,
                       const std::string& argument) {
    const bool isPlain = program.find_first_of("\"|\n") == std::string::npos;
    return program.empty() || !isPlain
               ? std::string()
               : escapedFor(StatusFormat::swiftbar, title) + " | bash=\"" + program +
                     "\" param1=" + argument + " terminal=false refresh=true\n";
}

std::string swiftbarOutput(const StatusReport& report, const StatusPrograms& programs) {
    // Names of symbols between colons, and codes of colours, are no pictures of ours.
    constexpr const char* plain = " emojize=false symbolize=false ansi=false";
    const auto menuLine = [&](const std::string& text, UsageHealth health) {
        return text + " |" + menuColors(health) + plain + "\n";
    };
    std::string text = menuLine(line(report, StatusFormat::swiftbar), report.health) + "---\n";
    for (const AgentLines& agent : agentLines(report, StatusFormat::swiftbar)) {
        text += menuLine(agent.head, UsageHealth::healthy);
        for (const AgentLines::Window& window : agent.windows) {
            text += menuLine(window.text, window.health);
        }
        text += "---\n";
    }
    return text + menuAction(report.refreshTitle, programs.terminal, "usage") +
           menuAction(report.openTitle, programs.desktop, "--show-popover");
}

double instantJSON(Instant instant) {
    return instant.time_since_epoch().count();
}

JSON windowJSON(const StatusWindow& window) {
    JSON json{{"agent", window.agent.rawValue},
              {"id", window.windowID},
              {"label", window.label},
              {"usedPercent", window.usedPercent},
              {"leftPercent", window.leftPercent},
              {"health", healthName(window.health)}};
    if (window.resetsAt) {
        json["resetsAt"] = instantJSON(*window.resetsAt);
    }
    json["readAt"] = instantJSON(window.readAt);
    json["age"] = window.age.count();
    json["isOld"] = !window.ageText.empty();
    if (window.forecast) {
        JSON forecast{{"lasts", !window.forecast->emptyAt}};
        if (window.forecast->emptyAt) {
            forecast["emptyAt"] = instantJSON(*window.forecast->emptyAt);
        }
        forecast["text"] = window.outlook;
        json["forecast"] = std::move(forecast);
    }
    return json;
}

std::string jsonOutput(const StatusReport& report, int indent) {
    const MenuBarGlyph& drawn = report.item.glyph;
    JSON glyph = JSON::object();
    if (drawn.usedPercent) {
        glyph["usedPercent"] = *drawn.usedPercent;
    }
    if (drawn.elapsedPercent) {
        glyph["elapsedPercent"] = *drawn.elapsedPercent;
    }
    if (drawn.providerID) {
        glyph["providerID"] = drawn.providerID->rawValue;
    }
    if (drawn.windowID) {
        glyph["windowID"] = *drawn.windowID;
    }
    JSON agents = JSON::array();
    for (std::size_t index = 0; index < report.agents.size(); ++index) {
        const AgentBlockContent& agent = report.agents[index];
        JSON entry{{"id", agent.id.rawValue}, {"health", healthName(agent.health)}};
        if (report.ages[index]) {
            entry["age"] = report.ages[index]->count();
        }
        agents.push_back(std::move(entry));
    }
    JSON document{{"health", healthName(report.health)},
                  {"tooltip", report.item.toolTip},
                  {"glyph", std::move(glyph)}};
    if (report.window) {
        document["window"] = windowJSON(*report.window);
    }
    document["agents"] = std::move(agents);
    return serialized(document, indent) + "\n";
}

std::string textOutput(const StatusReport& report) {
    std::string text;
    for (const std::string& part : statusTextParts(report)) {
        text += (text.empty() ? "" : separator) + part;
    }
    return text + "\n";
}

// --- templates

struct Field {
    std::string_view name;
    std::string (*value)(const StatusReport&);
};

template<std::string StatusWindow::*member>
std::string ofWindow(const StatusReport& report) {
    return report.window ? (*report.window).*member : std::string();
}

constexpr std::array fields{
    Field{"agent", ofWindow<&StatusWindow::agentName>},
    Field{"short-agent", ofWindow<&StatusWindow::shortAgentName>},
    Field{"account", ofWindow<&StatusWindow::account>},
    Field{"plan", ofWindow<&StatusWindow::plan>},
    Field{"window", ofWindow<&StatusWindow::label>},
    Field{"short-window", ofWindow<&StatusWindow::shortLabel>},
    Field{"left", ofWindow<&StatusWindow::left>},
    Field{"used", ofWindow<&StatusWindow::used>},
    Field{"value", ofWindow<&StatusWindow::value>},
    Field{"reset", ofWindow<&StatusWindow::reset>},
    Field{"reset-in", ofWindow<&StatusWindow::resetIn>},
    Field{"reset-at", ofWindow<&StatusWindow::resetAt>},
    Field{"forecast", ofWindow<&StatusWindow::outlook>},
    Field{"age", ofWindow<&StatusWindow::ageText>},
    Field{"health", [](const StatusReport& report) { return report.healthText; }},
    Field{"class",
          [](const StatusReport& report) { return std::string(healthName(report.health)); }},
    Field{"color", [](const StatusReport& report) { return hexColor(report.health); }},
    Field{"line", [](const StatusReport& report) { return line(report, StatusFormat::text); }},
};

const Field* fieldNamed(std::string_view name) {
    const auto found = std::ranges::find(fields, name, &Field::name);
    return found == fields.end() ? nullptr : &*found;
}

} // namespace

const std::vector<std::string>& statusFormatNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const FormatName& entry : formats) {
            all.emplace_back(entry.name);
        }
        return all;
    }();
    return names;
}

std::optional<StatusFormat> statusFormatNamed(std::string_view name) {
    const auto found = std::ranges::find(formats, name, &FormatName::name);
    return found == formats.end() ? std::nullopt : std::optional(found->format);
}

bool listsAgents(StatusFormat format) {
    return format == StatusFormat::waybar || format == StatusFormat::swiftbar ||
           format == StatusFormat::json;
}

std::string escapedFor(StatusFormat format, std::string_view text) {
    const std::string plain = singleLine(text);
    switch (format) {
    case StatusFormat::waybar:
        return replaced(
            plain,
            {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&apos;"}});
    case StatusFormat::polybar:
        // There is no way to write what begins a tag, so it is taken apart.
        return replacedText(plain, "%{", "% {");
    case StatusFormat::tmux:
        return replaced(plain, {{'#', "##"}});
    case StatusFormat::starship:
        // Shells look for these in a prompt once more.
        return replaced(plain, {{'$', ""}, {'`', ""}, {'\\', ""}, {'!', ""}});
    case StatusFormat::swiftbar:
        return escapedForMenuLine(plain);
    case StatusFormat::text:
    case StatusFormat::i3blocks:
    case StatusFormat::i3bar:
    case StatusFormat::json:
        break;
    }
    return plain;
}

std::string statusOutput(const StatusReport& report, StatusFormat format,
                         const StatusPrograms& programs) {
    switch (format) {
    case StatusFormat::text:
        break;
    case StatusFormat::waybar:
        return waybarOutput(report);
    case StatusFormat::i3blocks:
        return line(report, format) + "\n" + shortLine(report, format) + "\n" +
               hexColor(report.health) + "\n";
    case StatusFormat::i3bar:
        return serialized(i3barBlock(report), -1) + "\n";
    case StatusFormat::polybar:
        return polybarOutput(report);
    case StatusFormat::tmux:
        return tmuxOutput(report);
    case StatusFormat::starship:
        return shortLine(report, format) + "\n";
    case StatusFormat::swiftbar:
        return swiftbarOutput(report, programs);
    case StatusFormat::json:
        return jsonOutput(report, 2);
    }
    return textOutput(report);
}

std::string statusStreamHead(StatusFormat format) {
    return format == StatusFormat::i3bar ? "{\"version\":1}\n[\n" : std::string();
}

std::string statusStreamOutput(const StatusReport& report, StatusFormat format,
                               const StatusPrograms& programs) {
    switch (format) {
    case StatusFormat::i3bar:
        return "[" + serialized(i3barBlock(report), -1) + "],\n";
    case StatusFormat::i3blocks:
        return line(report, format) + "\n"; // a reader of lines takes each for the whole text
    case StatusFormat::json:
        return jsonOutput(report, -1);
    case StatusFormat::swiftbar:
        return "~~~\n" + swiftbarOutput(report, programs);
    default:
        return statusOutput(report, format, programs);
    }
}

std::vector<std::string> statusTextParts(const StatusReport& report) {
    if (!report.window) {
        return {report.verdict};
    }
    const StatusWindow& window = *report.window;
    std::vector<std::string> parts{report.healthText, window.agentName,
                                   window.label + " " + window.value, window.reset};
    if (!window.ageText.empty()) {
        parts.push_back(window.ageText);
    }
    return parts;
}

StatusTemplate::StatusTemplate(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        const char next = at + 1 < text.size() ? text[at + 1] : '\0';
        if ((character == '{' || character == '}') && next == character) {
            plain += character;
            ++at;
        } else if (character == '\\' && (next == 'n' || next == 't')) {
            plain += next == 'n' ? '\n' : '\t';
            ++at;
        } else if (character == '{') {
            const std::size_t end = text.find('}', at);
            if (end == std::string_view::npos) {
                throw Fault{};
            }
            const std::string name(text.substr(at + 1, end - at - 1));
            if (fieldNamed(name) == nullptr) {
                throw Fault{name};
            }
            pieces_.push_back({std::exchange(plain, {}), false});
            pieces_.push_back({name, true});
            at = end;
        } else if (character == '}') {
            throw Fault{};
        } else {
            plain += character;
        }
    }
    pieces_.push_back({plain, false});
}

std::vector<std::string> StatusTemplate::fieldNames() {
    std::vector<std::string> names;
    for (const Field& field : fields) {
        names.emplace_back(field.name);
    }
    return names;
}

std::string StatusTemplate::filled(const StatusReport& report, StatusFormat reader) const {
    std::string text;
    for (const Piece& piece : pieces_) {
        text +=
            piece.isField ? escapedFor(reader, fieldNamed(piece.text)->value(report)) : piece.text;
    }
    return text;
}

int statusExitStatus(UsageHealth health) {
    switch (health) {
    case UsageHealth::healthy:
        return 0;
    case UsageHealth::attention:
        return 10;
    case UsageHealth::critical:
        return 11;
    case UsageHealth::unavailable:
        break;
    }
    return 12;
}

std::string_view healthName(UsageHealth health) {
    switch (health) {
    case UsageHealth::healthy:
        return "healthy";
    case UsageHealth::attention:
        return "attention";
    case UsageHealth::critical:
        return "critical";
    case UsageHealth::unavailable:
        break;
    }
    return "unavailable";
}

} // namespace vellmark
