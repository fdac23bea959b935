#include "cli/ArgumentValues.h"
#include "cli/Sparkline.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "cli/WrongArguments.h"
#include "model/UsageHistoryReader.h"
#include "model/UsageTexts.h"
#include "platform/RegularFile.h"
#include "presentation/AgentBlockContent.h"
#include "probes/ProviderRegistry.h"
#include "store/LastSnapshots.h"
#include "store/UsageHistory.h"
#include "text/Dates.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

constexpr Seconds day{86'400};
constexpr std::size_t leastCourse = 10;

/// A sample with its persisted text.
struct Row {
    std::string provider;
    std::string windowID;
    double capturedAt = 0;
    double usedPercent = 0;
    std::optional<double> resetsAt;
    std::string text;
};

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char character : text) {
        quoted += character == '"' ? "\"\"" : std::string(1, character);
    }
    return quoted + "\"";
}

std::string isoText(double seconds) {
    return formatDate(Instant(Seconds(seconds)), "yyyy-MM-dd'T'HH:mm:ss'Z'", TimeZone::utc());
}

/// What was recorded, as a table with a sparkline per window, or in full for other programs. Reads
/// the file alone: nothing is started and nothing written.
class HistoryCommand final : public Subcommand {
public:
    std::string name() const override { return "history"; }
    std::string summaryKey() const override { return "cli.history.summary"; }
    std::string detailKey() const override { return "cli.history.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("export", action_, "cli.history.export");
        options.value("--agent", agent_, "ID", "cli.history.agent");
        options.value("--window", window_, "ID", "cli.history.window");
        options.value("--days", days_, "N", "cli.history.days");
        options.value("--format", format_, "table|json|csv", "cli.history.format");
        options.value("--now", now_, "T", "cli.option.now");
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        if (action_ && *action_ != "export") {
            throw WrongArguments("cli.error.unexpected", singleLine(*action_));
        }
        const std::string format = format_.value_or(action_ ? "json" : "table");
        if (format != "table" && format != "json" && format != "csv") {
            throw WrongArguments("cli.error.unknownFormat", singleLine(format));
        }
        if (agent_) {
            agentArgument(*agent_);
        }
        const Instant now = now_ ? instantArgument("--now", *now_) : ReferenceClock::now();
        std::optional<Instant> since;
        if (days_) {
            since = now - static_cast<double>(integerArgument("--days", *days_, 1, 100'000)) * day;
        }
        std::vector<Row> rows;
        const int status = read(context, since, rows);
        std::ranges::stable_sort(rows, {}, &Row::capturedAt);
        if (format == "json") {
            writeJSON(rows, context);
        } else if (format == "csv") {
            writeCSV(rows, context);
        } else if (!rows.empty()) {
            writeTable(rows, now, context);
        } else if (status == ExitStatus::done) {
            context.note(context.words.text("cli.history.empty"));
        }
        return status;
    }

private:
    bool isWanted(const StoredHistorySample& sample, std::optional<Instant> since) const {
        return (!agent_ || sample.provider == *agent_) &&
               (!window_ || sample.windowID == *window_) &&
               (!since || sample.capturedAt >= since->time_since_epoch().count());
    }

    /// A file that does not exist is an empty history.
    int read(const CommandContext& context, std::optional<Instant> since,
             std::vector<Row>& rows) const {
        const auto file = context.machine.usageHistoryFile();
        std::error_code error;
        const Descriptor opened = openRegularFile(file, O_RDONLY, error);
        if (error == std::errc::no_such_file_or_directory) {
            return ExitStatus::done;
        }
        HistoryFileScan scan;
        const auto take = [&](const StoredHistorySample& sample) {
            if (isWanted(sample, since)) {
                rows.push_back({std::string(sample.provider), std::string(sample.windowID),
                                sample.capturedAt, sample.usedPercent, sample.resetsAt,
                                std::string(sample.text)});
            }
        };
        if (opened.isOpen()) {
            scan = UsageHistoryReader::read(opened.get(), take);
            error = scan.error;
        }
        if (error) {
            context.reportUnreadable(singleLine(file.string()), error);
            return ExitStatus::failed;
        }
        if (scan.form != HistoryFileScan::Form::foreign) {
            return ExitStatus::done;
        }
        if (!action_) {
            context.report(
                context.words.format("cli.history.foreign", {singleLine(file.string())}));
            return ExitStatus::failed;
        }
        const auto found = UsageHistoryReader::salvage(opened.get(), take, error);
        context.report(context.words.format(
            "cli.history.salvaged", {singleLine(file.string()), static_cast<std::int64_t>(found)}));
        return found > 0 ? ExitStatus::done : ExitStatus::failed;
    }

    static void writeJSON(const std::vector<Row>& rows, const CommandContext& context) {
        std::string text = "[";
        for (const Row& row : rows) {
            text += (text.size() == 1 ? "\n" : ",\n") + row.text;
        }
        context.output.writeData(text + "\n]\n");
    }

    static void writeCSV(const std::vector<Row>& rows, const CommandContext& context) {
        std::string text = "capturedAt,provider,windowID,usedPercent,resetsAt\n";
        for (const Row& row : rows) {
            text += isoText(row.capturedAt) + "," + csvField(singleLine(row.provider)) + "," +
                    csvField(singleLine(row.windowID)) + "," +
                    nlohmann::json(row.usedPercent).dump() + "," +
                    (row.resetsAt ? isoText(*row.resetsAt) : "") + "\n";
        }
        context.output.writeData(text);
    }

    /// The windows by agent in the registry's order, each agent's as they were first recorded.
    static std::vector<WindowKey> inOrder(const std::vector<Row>& rows) {
        std::vector<WindowKey> keys;
        for (const Row& row : rows) {
            WindowKey key(AgentProviderID(row.provider), row.windowID);
            if (std::ranges::find(keys, key) == keys.end()) {
                keys.push_back(std::move(key));
            }
        }
        const auto rank = [](const WindowKey& key) {
            const auto& all = providerRegistry();
            return std::ranges::find(all, key.first,
                                     [](const auto& one) { return one.descriptor.id; }) -
                   all.begin();
        };
        std::ranges::stable_sort(keys, {}, rank);
        return keys;
    }

    /// The windows' names, by what was read of them last: a sample holds the identifier alone.
    static std::map<WindowKey, std::string> knownLabels(const CommandContext& context) {
        std::map<WindowKey, std::string> labels;
        for (const auto& snapshot : LastSnapshots(context.machine.lastSnapshotsFile()).read()) {
            for (const UsageWindow& window : snapshot.windows) {
                labels[{snapshot.id, window.id}] = windowLabel(window, context.words);
            }
        }
        return labels;
    }

    /// The names of `keys`; where two windows of an agent have one, their identifiers tell which is
    /// which.
    static std::map<WindowKey, std::string> namesOf(const std::vector<WindowKey>& keys,
                                                    const CommandContext& context) {
        const auto labels = knownLabels(context);
        std::map<WindowKey, std::string> names;
        for (const WindowKey& key : keys) {
            const auto known = labels.find(key);
            names[key] = singleLine(known != labels.end() ? known->second
                                                          : windowLabel(key.second, context.words));
        }
        std::map<std::pair<AgentProviderID, std::string>, int> bearers;
        for (const auto& [key, name] : names) {
            ++bearers[{key.first, name}];
        }
        for (auto& [key, name] : names) {
            if (bearers[{key.first, name}] > 1) {
                name += " (" + singleLine(key.second) + ")";
            }
        }
        return names;
    }

    /// With the year where it is another than this.
    static std::string sinceText(Instant since, Instant now, const Localization& words) {
        const TimeZone zone = words.timeZone();
        return zone.calendarDate(since).year == zone.calendarDate(now).year
                   ? instantText(since, now, words)
                   : momentText(since, words);
    }

    /// Of one row at least.
    static void writeTable(const std::vector<Row>& rows, Instant now,
                           const CommandContext& context) {
        const Localization& words = context.words;
        HistorySeries series;
        for (const Row& row : rows) {
            series.add(row.provider, row.windowID,
                       HistoryPoint(Instant(Seconds(row.capturedAt)), row.usedPercent, {}));
        }
        const Instant from(Seconds(rows.front().capturedAt));
        const auto keys = inOrder(rows);
        const auto names = namesOf(keys, context);
        UsageHistory history;
        history.replace(std::move(series));

        Table table({{words.text("cli.history.column.agent")},
                     {words.text("cli.history.column.window")},
                     {.title = words.text("cli.history.column.course"), .leastWidth = leastCourse},
                     {words.text("cli.history.column.last")},
                     {.title = words.text("cli.history.column.samples"),
                      .alignment = Alignment::right,
                      .isDispensable = true},
                     {words.text("cli.history.column.since")}});
        for (const WindowKey& key : keys) {
            const auto points = history.recent(key, from, Instant(Seconds(rows.back().capturedAt)));
            // A clock that was ahead has left samples that lie in the future.
            const auto last = history.last(key, now);
            const UsagePoint newest =
                last ? UsagePoint{last->capturedAt, last->usedPercent} : points.back();
            const double left = std::max(100 - newest.usedPercent, 0.0);
            const Instant to = std::max(now, newest.capturedAt);
            const auto course = [&, to](std::size_t width) {
                return sparkline(history, key, from, to, width, context.output.shapes());
            };
            table.addRow({{singleLine(agentName(key.first, words)), TextStyle::strong},
                          {names.at(key)},
                          {.text = {}, .picture = course},
                          {words.format("usage.remaining", {percentText(left, words)})},
                          {integerText(static_cast<std::int64_t>(points.size()), words)},
                          {sinceText(points.front().capturedAt, now, words)}});
        }
        context.output.write(table.text(context.output));
    }

    std::optional<std::string> action_;
    std::optional<std::string> agent_;
    std::optional<std::string> window_;
    std::optional<std::string> days_;
    std::optional<std::string> format_;
    std::optional<std::string> now_;
};

} // namespace

std::unique_ptr<Subcommand> makeHistoryCommand() {
    return std::make_unique<HistoryCommand>();
}

} // namespace vellmark
