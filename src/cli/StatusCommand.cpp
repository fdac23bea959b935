#include "cli/ArgumentValues.h"
#include "cli/DisplayWidth.h"
#include "cli/InputText.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "cli/UsageRefresh.h"
#include "cli/UsageView.h"
#include "cli/WrongArguments.h"
#include "model/UsageJSON.h"
#include "model/UsageTexts.h"
#include "platform/Preferences.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/MenuBarGlyph.h"
#include "presentation/StatusItemContent.h"
#include "presentation/UsageVerdict.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "store/AppSettings.h"
#include "store/LastSnapshots.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {
namespace {

/// The dot and the blank after it.
constexpr std::size_t dotWidth = 2;

const char* nameOf(UsageHealth health) {
    switch (health) {
    case UsageHealth::healthy:
        return "healthy";
    case UsageHealth::attention:
        return "attention";
    case UsageHealth::critical:
        return "critical";
    case UsageHealth::unavailable:
        return "unavailable";
    }
    return "";
}

AgentUsageSnapshot neverRead(const AgentProviderID& id) {
    AgentUsageSnapshot snapshot;
    snapshot.id = id;
    return snapshot;
}

/// The last good readings of the enabled agents, as files have them. Starts nothing.
UsageState lastState(const CommandContext& context) {
    const auto preferences = makePreferences(context.machine);
    reportUnreadable(*preferences, context);
    const AgentSettings settings(*preferences, providerRegistry());
    const auto contents = LastSnapshots(context.machine.lastSnapshotsFile()).contents();
    reportUnreadable(contents, context);
    const auto& readings = contents.readings;
    UsageState state;
    state.firstFigure = valueOf(*preferences, setting::firstFigure);
    state.providerOrder = settings.order();
    state.enabledProviderIDs = settings.enabled();
    for (const AgentProviderID& id : state.providerOrder) {
        if (!state.enabledProviderIDs.contains(id)) {
            continue;
        }
        const auto reading = std::ranges::find(readings, id, &AgentUsageSnapshot::id);
        state.snapshots.push_back(reading == readings.end() ? neverRead(id) : *reading);
        if (reading != readings.end()) {
            state.snapshots.back().source = SnapshotSource::stale;
            state.lastSuccess[id] = reading->updatedAt;
        }
    }
    return state;
}

/// One line, or one JSON object, about the most pressing window: for status bars and prompts.
class StatusCommand final : public Subcommand {
public:
    std::string name() const override { return "status"; }
    std::string summaryKey() const override { return "cli.status.summary"; }
    std::string detailKey() const override { return "cli.status.detail"; }

    void declare(CommandOptions& options) override {
        options.flag("--cached", cached_, "cli.status.cached");
        options.value("--snapshots", snapshots_, "FILE", "cli.status.snapshots");
        options.value("--now", now_, "T", "cli.option.now");
        options.flag("--json", json_, "cli.option.json");
    }

    bool startsChildren() const override { return !cached_ && !snapshots_; }

    int run(const CommandContext& context) override {
        if (cached_ && snapshots_) {
            throw WrongArguments("cli.error.noEffect", "--cached", "--snapshots");
        }
        std::optional<Instant> now;
        if (now_) {
            now = instantArgument("--now", *now_);
        }
        UsageState state;
        if (const int status = gather(context, state); status != ExitStatus::done) {
            return status;
        }
        const Instant moment = now.value_or(ReferenceClock::now());
        if (json_) {
            writeJSON(state, moment, context);
        } else {
            writeLine(state, moment, context);
        }
        return ExitStatus::done;
    }

private:
    int gather(const CommandContext& context, UsageState& state) const {
        if (snapshots_) {
            return readSnapshots(context, state);
        }
        if (cached_) {
            state = lastState(context);
            return ExitStatus::done;
        }
        return refreshUsage(context, {}, state);
    }

    /// All agents of the file count as enabled.
    int readSnapshots(const CommandContext& context, UsageState& state) const {
        const auto text = readInputText(snapshots_, context);
        if (!text) {
            return ExitStatus::failed;
        }
        try {
            state.snapshots = snapshotsFromDocument(*text);
            for (const AgentUsageSnapshot& snapshot : state.snapshots) {
                if (!state.enabledProviderIDs.insert(snapshot.id).second) {
                    throw JSONDecodingError("more than one snapshot of " + snapshot.id.rawValue);
                }
                state.providerOrder.push_back(snapshot.id);
            }
        } catch (const JSONDecodingError& error) {
            context.report(
                context.words.format("cli.status.notSnapshots", {singleLine(error.what())}));
            return ExitStatus::failed;
        }
        return ExitStatus::done;
    }

    static void writeJSON(const UsageState& state, Instant now, const CommandContext& context) {
        const StatusItemContent item = statusItemContent(state, now, context.words);
        JSON glyph = JSON::object();
        if (item.glyph.usedPercent) {
            glyph["usedPercent"] = *item.glyph.usedPercent;
        }
        if (item.glyph.elapsedPercent) {
            glyph["elapsedPercent"] = *item.glyph.elapsedPercent;
        }
        if (item.glyph.providerID) {
            glyph["providerID"] = item.glyph.providerID->rawValue;
        }
        if (item.glyph.windowID) {
            glyph["windowID"] = *item.glyph.windowID;
        }
        JSON agents = JSON::array();
        for (const AgentUsageSnapshot& snapshot : state.snapshots) {
            agents.push_back({{"id", snapshot.id.rawValue},
                              {"health", nameOf(standingOf(snapshot, state, now).health)}});
        }
        const JSON document{{"health", nameOf(worstHealth(state, now))},
                            {"tooltip", item.toolTip},
                            {"glyph", std::move(glyph)},
                            {"agents", std::move(agents)}};
        context.output.writeData(serialized(document) + "\n");
    }

    static void writeLine(const UsageState& state, Instant now, const CommandContext& context) {
        const TerminalOutput& output = context.output;
        const std::string dot =
            output.styled(styleOf(worstHealth(state, now)), output.shapes().dot) + " ";
        std::size_t column = dotWidth;
        std::string text = dot;
        for (const std::string& part : lineParts(state, now, context.words)) {
            const std::string shown = column > dotWidth ? " · " + part : part;
            // One line, unless a terminal would break it where it likes.
            if (output.isTerminal() && column > dotWidth &&
                column + displayWidth(shown) > output.width()) {
                text += "\n" + std::string(dotWidth, ' ') + part;
                column = dotWidth + displayWidth(part);
            } else {
                text += shown;
                column += displayWidth(shown);
            }
        }
        context.output.write(text + "\n");
    }

    /// "Critical", "Claude Code", "Session 4% left", "Resets in 1 h 27 min · 16:15".
    static std::vector<std::string> lineParts(const UsageState& state, Instant now,
                                              const Localization& words) {
        const auto glyph = MenuBarGlyph::compute(state.snapshots, state.enabledProviderIDs, now);
        if (!glyph.providerID || !glyph.windowID) {
            return {verdictText(state, now, words, AgentNames::full)};
        }
        const auto snapshot =
            std::ranges::find(state.snapshots, *glyph.providerID, &AgentUsageSnapshot::id);
        const auto window = std::ranges::find(snapshot->windows, *glyph.windowID, &UsageWindow::id);
        const AgentStanding standing = standingOf(*snapshot, state, now);
        const UsageRowContent row = usageRowContent(
            *window, standing.windows[static_cast<std::size_t>(window - snapshot->windows.begin())],
            state.recentPointsOf(snapshot->id, window->id), state.firstFigure, now, words);
        std::vector<std::string> parts{healthText(worstHealth(state, now), words),
                                       agentName(snapshot->id, words),
                                       singleLine(row.fullLabel) + " " + row.value, row.reset};
        if (std::string age = ageText(*snapshot, standing, now, words); !age.empty()) {
            parts.push_back(std::move(age));
        }
        return parts;
    }

    std::optional<std::string> snapshots_;
    std::optional<std::string> now_;
    bool cached_ = false;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeStatusCommand() {
    return std::make_unique<StatusCommand>();
}

} // namespace vellmark
