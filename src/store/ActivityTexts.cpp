#include "store/ActivityTexts.h"

#include "model/UsageJSON.h"
#include "model/UsageTexts.h"
#include "probes/ProviderRegistry.h"
#include "text/Formatting.h"
#include "text/SystemErrorText.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace vellmark::ActivityTexts {

namespace {

using Level = ActivityEntry::Level;

/// A kind of argument: the member that names it, and how it is told. Nothing where the value is
/// none of that kind.
struct ArgumentKind {
    std::string_view name;
    std::optional<std::string> (*text)(const JSON& value, const Localization& words);
};

std::string secondsText(double seconds, const Localization& words) {
    return words.format("log.seconds", {decimalText(seconds, words)});
}

std::optional<std::string> toldSeconds(const JSON& value, const Localization& words) {
    return value.is_number() ? std::optional(secondsText(value.get<double>(), words))
                             : std::nullopt;
}

std::optional<std::string> toldWholeSeconds(const JSON& value, const Localization& words) {
    return value.is_number_integer()
               ? std::optional(
                     words.format("log.seconds", {integerText(value.get<std::int64_t>(), words)}))
               : std::nullopt;
}

/// A text of the catalog by its key.
std::optional<std::string> toldWord(const JSON& value, const Localization& words) {
    if (!value.is_string()) {
        return std::nullopt;
    }
    const auto key = value.get<std::string>();
    std::string text = words.text(key);
    return text == key ? std::nullopt : std::optional(std::move(text));
}

/// The name of a way of reading, or its identifier when it has no name.
std::optional<std::string> toldWay(const JSON& value, const Localization& words) {
    if (!value.is_string()) {
        return std::nullopt;
    }
    const std::string key = "log.agent.way." + value.get<std::string>();
    std::string text = words.text(key);
    return text == key ? value.get<std::string>() : text;
}

std::string shortName(const AgentProviderID& id, const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    return descriptor ? words.text(descriptor->shortNameKey) : id.rawValue;
}

std::optional<std::string> toldAgents(const JSON& value, const Localization& words) {
    std::string names;
    for (const JSON& id : value) {
        if (!id.is_string()) {
            return std::nullopt;
        }
        names +=
            (names.empty() ? "" : ", ") + shortName(AgentProviderID(id.get<std::string>()), words);
    }
    return names;
}

std::string remainingText(const UsageWindow& window, const Localization& words) {
    const double remaining = std::max(remainingPercent(window), 0.0);
    return words.format("usage.remaining", {percentText(remaining, words)});
}

/// What `windowJSON` makes.
std::optional<UsageWindow> windowOf(const JSON& value) {
    if (!value.is_array() || value.size() < 2 || !value[0].is_string() || !value[1].is_number()) {
        return std::nullopt;
    }
    UsageWindow window;
    window.id = value[0].get<std::string>();
    window.usedPercent = value[1].get<double>();
    if (value.size() > 2 && value[2].is_number()) {
        window.windowDurationMinutes = value[2].get<double>();
    }
    if (value.size() > 3 && value[3].is_string()) {
        window.label = value[3].get<std::string>();
    }
    return window;
}

std::optional<std::string> toldWindow(const JSON& value, const Localization& words) {
    const auto window = windowOf(value);
    return window ? std::optional(windowLabel(*window, words)) : std::nullopt;
}

std::optional<std::string> toldRemaining(const JSON& value, const Localization& words) {
    const auto window = windowOf(value);
    return window ? std::optional(remainingText(*window, words)) : std::nullopt;
}

/// What is left in each window, or that there are none.
std::optional<std::string> toldFigures(const JSON& value, const Localization& words) {
    std::string figures;
    for (const JSON& one : value) {
        const auto window = windowOf(one);
        if (!window) {
            return std::nullopt;
        }
        figures += (figures.empty() ? "" : ", ") + windowLabel(*window, words, true) + " " +
                   remainingText(*window, words);
    }
    return figures.empty() ? words.text("log.agent.noWindows") : figures;
}

std::optional<std::string> toldError(const JSON& value, const Localization& words) {
    auto error = UsageProviderError::other({});
    try {
        fromJSON(value, error);
    } catch (const JSONDecodingError&) {
        return std::nullopt;
    }
    return error.message(words);
}

std::optional<std::string> toldSystemReason(const JSON& value, const Localization& words) {
    return value.is_string() ? std::optional(systemReasonText(value.get<std::string>(), words))
                             : std::nullopt;
}

constexpr std::array argumentKinds{
    ArgumentKind{"seconds", toldSeconds}, ArgumentKind{"wholeSeconds", toldWholeSeconds},
    ArgumentKind{"word", toldWord},       ArgumentKind{"way", toldWay},
    ArgumentKind{"agents", toldAgents},   ArgumentKind{"window", toldWindow},
    ArgumentKind{"left", toldRemaining},  ArgumentKind{"figures", toldFigures},
    ArgumentKind{"error", toldError},     ArgumentKind{"systemReason", toldSystemReason},
};

std::optional<TextArgument> toldArgument(const JSON& argument, const Localization& words) {
    if (argument.is_string()) {
        return argument.get<std::string>();
    }
    if (argument.is_number_integer()) {
        return argument.get<std::int64_t>();
    }
    if (!argument.is_object() || argument.size() != 1) {
        return std::nullopt;
    }
    const auto member = argument.begin();
    const auto kind = std::ranges::find(argumentKinds, member.key(), &ArgumentKind::name);
    return kind == argumentKinds.end()
               ? std::nullopt
               : std::optional<TextArgument>(kind->text(member.value(), words));
}

/// Absent where the key or a kind of argument is not known here.
std::optional<std::string> told(const std::string& key, const JSON& arguments,
                                const Localization& words) {
    if (!arguments.is_array() || words.text(key) == key) {
        return std::nullopt;
    }
    std::vector<TextArgument> texts;
    for (const JSON& argument : arguments) {
        auto text = toldArgument(argument, words);
        if (!text) {
            return std::nullopt;
        }
        texts.push_back(*std::move(text));
    }
    return words.format(key, texts);
}

JSON argument(const char* kind, JSON value) {
    return JSON{{kind, std::move(value)}};
}

JSON secondsArgument(Seconds span) {
    return argument("seconds", std::round(span.count() * 10) / 10);
}

JSON wholeSecondsArgument(Seconds span) {
    return argument("wholeSeconds", std::llround(span.count()));
}

/// With the file's name, unless it is a matter of its whole disk.
JSON storageReason(const StorageTrouble::News& news) {
    constexpr std::array ofTheDisk{std::errc::no_space_on_device, std::errc::read_only_file_system};
    const bool isOfTheDisk =
        std::ranges::any_of(ofTheDisk, [&](std::errc each) { return news.error == each; });
    return argument("systemReason", (isOfTheDisk ? "" : news.file.filename().string() + ": ") +
                                        news.error.message());
}

JSON triggerArgument(RefreshTrigger trigger) {
    switch (trigger) {
    case RefreshTrigger::launch:
        return argument("word", "log.trigger.launch");
    case RefreshTrigger::timer:
        return argument("word", "log.trigger.timer");
    case RefreshTrigger::manual:
        return argument("word", "log.trigger.manual");
    case RefreshTrigger::wake:
        return argument("word", "log.trigger.wake");
    case RefreshTrigger::window:
        return argument("word", "log.trigger.window");
    case RefreshTrigger::settings:
        return argument("word", "log.trigger.settings");
    }
    return {};
}

/// A number as short as it can be written.
JSON shortNumber(double value) {
    return value == std::round(value) && std::abs(value) < 1e9 ? JSON(std::llround(value))
                                                               : JSON(value);
}

/// What its name and what is left of it are made of: identifier, used per cent, minutes, label. In
/// an array, since a month holds tens of thousands.
JSON windowJSON(const UsageWindow& window) {
    JSON parts = JSON::array({window.id, shortNumber(std::round(window.usedPercent * 10) / 10)});
    if (window.windowDurationMinutes || window.label) {
        parts.push_back(window.windowDurationMinutes ? shortNumber(*window.windowDurationMinutes)
                                                     : JSON());
    }
    if (window.label) {
        parts.push_back(*window.label);
    }
    return parts;
}

JSON figuresArgument(const AgentUsageSnapshot& snapshot) {
    JSON figures = JSON::array();
    for (const UsageWindow& window : snapshot.windows) {
        figures.push_back(windowJSON(window));
    }
    return argument("figures", std::move(figures));
}

ActivityEntry made(Level level, std::optional<AgentProviderID> agent, std::string_view key,
                   const JSON& arguments, const Localization& words) {
    std::string name(key);
    std::string text = told(name, arguments, words).value_or(name);
    return {.level = level,
            .agent = std::move(agent),
            .text = std::move(text),
            .time = {},
            .message = {.key = std::move(name),
                        .language = words.languageCode(),
                        .arguments = serialized(arguments, -1)}};
}

ActivityEntry aboutAgent(Level level, const AgentProviderID& id, std::string_view key,
                         const Localization& words, const JSON& arguments = JSON::array()) {
    return made(level, id, key, arguments, words);
}

ActivityEntry aboutProgram(Level level, std::string_view key, const Localization& words,
                           const JSON& arguments = JSON::array()) {
    return made(level, std::nullopt, key, arguments, words);
}

} // namespace

void tell(ActivityEntry& entry, const Localization& words) {
    ActivityMessage& message = entry.message;
    if (message.key.empty() || message.language == words.languageCode()) {
        return;
    }
    std::optional<std::string> text;
    try {
        text = told(message.key, parsedJSON(message.arguments), words);
    } catch (const JSONDecodingError&) {
        return;
    }
    if (text) {
        entry.text = singleLine(*text);
        message.language = words.languageCode();
    }
}

void tell(std::vector<ActivityEntry>& entries, const Localization& words) {
    for (ActivityEntry& entry : entries) {
        tell(entry, words);
    }
}

ActivityEntry entry(Level level, std::optional<AgentProviderID> agent, std::string_view key,
                    const std::vector<TextArgument>& arguments, const Localization& words) {
    JSON list = JSON::array();
    for (const TextArgument& argument : arguments) {
        std::visit([&](const auto& value) { list.push_back(value); }, argument);
    }
    return made(level, std::move(agent), key, list, words);
}

ActivityEntry refreshStarted(RefreshTrigger trigger, const Localization& words) {
    return aboutProgram(Level::info, "log.refresh.started", words,
                        JSON::array({triggerArgument(trigger)}));
}

ActivityEntry refreshFinished(RefreshTrigger trigger, std::size_t read, std::size_t asked,
                              Seconds elapsed, const Localization& words) {
    return aboutProgram(
        Level::info, "log.refresh.finished", words,
        JSON::array({triggerArgument(trigger), read, asked, secondsArgument(elapsed)}));
}

ActivityEntry refreshAborted(const Localization& words) {
    return aboutProgram(Level::notice, "log.refreshAborted.terminated", words);
}

ActivityEntry agentRead(const AgentUsageSnapshot& snapshot, Seconds elapsed,
                        const Localization& words) {
    return aboutAgent(Level::info, snapshot.id, "log.agent.read", words,
                      JSON::array({figuresArgument(snapshot), secondsArgument(elapsed)}));
}

ActivityEntry agentFailed(const AgentProviderID& id, const UsageProviderError& error,
                          const Localization& words) {
    return aboutAgent(Level::error, id, "log.agent.failed", words,
                      JSON::array({argument("error", toJSON(error))}));
}

ActivityEntry agentRecovered(const AgentProviderID& id, int failedAttempts,
                             const Localization& words) {
    return words.takesSingular(failedAttempts)
               ? aboutAgent(Level::info, id, "log.agent.recovered", words)
               : aboutAgent(Level::info, id, "log.agent.recovered.several", words,
                            JSON::array({failedAttempts}));
}

ActivityEntry agentRetried(const AgentProviderID& id, Seconds delay, const Localization& words) {
    return aboutAgent(Level::notice, id, "log.agent.retry", words,
                      JSON::array({wholeSecondsArgument(delay)}));
}

std::vector<ActivityEntry> notes(const AgentUsageSnapshot& snapshot, const Localization& words) {
    std::vector<ActivityEntry> entries;
    const auto add = [&](Level level, std::string_view key, const JSON& arguments) {
        entries.push_back(aboutAgent(level, snapshot.id, key, words, arguments));
    };
    for (const SnapshotNote& note : snapshot.notes) {
        if (const auto* missing = std::get_if<SnapshotNote::ClaudeEndMarkerMissing>(&note.value)) {
            add(Level::notice, "log.claude.endMarkerMissing", JSON::array({missing->variant}));
        } else if (const auto* timing = std::get_if<SnapshotNote::ClaudeTiming>(&note.value)) {
            add(Level::info, "log.claude.timing",
                JSON::array({timing->waitMs, timing->startMs, timing->statusMs, timing->usageMs,
                             timing->quietMs, timing->endMs}));
        } else if (const auto* way = std::get_if<SnapshotNote::ReadingWay>(&note.value)) {
            const Seconds took(static_cast<double>(way->tookMs) / 1000);
            add(Level::info, "log.agent.way",
                JSON::array({argument("way", way->way), secondsArgument(took)}));
        } else if (const auto* untold = std::get_if<SnapshotNote::AgeNotTold>(&note.value)) {
            add(Level::notice, "log.agent.ageNotTold", JSON::array({singleLine(untold->version)}));
        } else if (std::holds_alternative<SnapshotNote::ReadingCosts>(note.value)) {
            add(Level::notice, "log.agent.readingCosts", JSON::array());
        } else if (const auto* said = std::get_if<SnapshotNote::AgentSays>(&note.value)) {
            add(Level::info, "log.agent.says", JSON::array({singleLine(said->text)}));
        }
    }
    return entries;
}

ActivityEntry implausible(const AgentProviderID& id, const ImplausibleFigure& figure,
                          const Localization& words) {
    using Kind = ImplausibleFigure::Kind;
    const char* const key = figure.kind == Kind::used       ? "log.figure.used"
                            : figure.kind == Kind::duration ? "log.figure.duration"
                                                            : "log.figure.reset";
    return aboutAgent(Level::notice, id, key, words,
                      JSON::array({argument("window", windowJSON(figure.window))}));
}

std::vector<ActivityEntry> turnedCritical(const AgentUsageSnapshot* before,
                                          const AgentUsageSnapshot& after, Instant now,
                                          const Localization& words) {
    std::vector<ActivityEntry> entries;
    for (const UsageWindow& window : after.windows) {
        if (severity(window, now) != Severity::critical) {
            continue;
        }
        const UsageWindow* earlier = nullptr;
        if (before) {
            const auto found = std::ranges::find(before->windows, window.id, &UsageWindow::id);
            earlier = found == before->windows.end() ? nullptr : &*found;
        }
        if (!earlier || severity(*earlier, before->updatedAt) != Severity::critical) {
            const JSON figures = windowJSON(window);
            entries.push_back(
                aboutAgent(Level::notice, after.id, "log.window.critical", words,
                           JSON::array({argument("window", figures), argument("left", figures)})));
        }
    }
    return entries;
}

std::vector<ActivityEntry> allowanceChanged(const AgentUsageSnapshot* before,
                                            const AgentUsageSnapshot& after,
                                            const Localization& words) {
    const bool isUsed = isUsedUp(after);
    if (isUsed == (before && isUsedUp(*before))) {
        return {};
    }
    // That it is back counts only when the agent says so itself.
    if (!isUsed && !(after.allowance && after.allowance->ordinaryUsageAllowed == true)) {
        return {};
    }
    return {aboutAgent(Level::notice, after.id, isUsed ? "log.agent.usedUp" : "log.agent.backAgain",
                       words)};
}

ActivityEntry agentSwitched(const AgentProviderID& id, bool enabled, const Localization& words) {
    return aboutAgent(Level::info, id,
                      enabled ? "log.settings.agentEnabled" : "log.settings.agentDisabled", words);
}

ActivityEntry orderChanged(const std::vector<AgentProviderID>& order, const Localization& words) {
    JSON agents = JSON::array();
    for (const AgentProviderID& id : order) {
        agents.push_back(id.rawValue);
    }
    return aboutProgram(Level::info, "log.settings.order", words,
                        JSON::array({argument("agents", std::move(agents))}));
}

ActivityEntry historyDeleted(const Localization& words) {
    return aboutProgram(Level::notice, "log.settings.historyDeleted", words);
}

ActivityEntry woke(Seconds hold, const Localization& words) {
    return aboutProgram(Level::info, "log.wake", words, JSON::array({wholeSecondsArgument(hold)}));
}

ActivityEntry storageTrouble(const StorageTrouble::News& news, const Localization& words) {
    const auto about = [&](Level level, std::string_view key, const JSON& arguments) {
        return aboutProgram(level, key, words, arguments);
    };
    switch (news.kind) {
    case StorageTrouble::Kind::failed:
        return about(Level::error, "log.storage.failed", JSON::array({storageReason(news)}));
    case StorageTrouble::Kind::inTheWay:
        return about(Level::error, "log.storage.inTheWay", JSON::array({news.file.string()}));
    case StorageTrouble::Kind::recovered:
        return about(Level::info, "log.storage.recovered", JSON::array());
    case StorageTrouble::Kind::repaired:
        return about(Level::notice, "log.storage.repaired",
                     JSON::array({news.file.filename().string()}));
    case StorageTrouble::Kind::foreign:
        return about(Level::error, "log.storage.foreign", JSON::array({news.file.string()}));
    case StorageTrouble::Kind::undecoded:
        return news.part.empty() ? about(Level::notice, "log.storage.undecodedFile",
                                         JSON::array({news.file.string()}))
                                 : about(Level::notice, "log.storage.undecoded",
                                         JSON::array({argument("agents", JSON::array({news.part})),
                                                      news.file.string()}));
    }
    return {};
}

std::string exportHeader(int days, Instant now, const TimeZone& zone, const Localization& words) {
    return words.format("log.export.title", {std::string(VELLMARK_VERSION)}) + "\n" +
           words.format("log.export.period",
                        {std::int64_t{days}, dateTimeText(now, words), zone.identifier()}) +
           "\n\n";
}

} // namespace vellmark::ActivityTexts
