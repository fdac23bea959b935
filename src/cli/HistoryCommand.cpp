#include "cli/ArgumentValues.h"
#include "cli/Sparkline.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "cli/WrongArguments.h"
#include "model/UsageHistoryReader.h"
#include "model/UsageTexts.h"
#include "platform/Descriptor.h"
#include "platform/SystemError.h"
#include "presentation/AgentBlockContent.h"
#include "probes/ProviderRegistry.h"
#include "store/UsageHistory.h"
#include "text/Dates.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fcntl.h>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

constexpr Seconds day{86'400};
constexpr std::size_t sparklineWidth = 32;

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
        options.value("--agent", agent_, "ID", "cli.history.agent");
        options.value("--window", window_, "ID", "cli.history.window");
        options.value("--days", days_, "N", "cli.history.days");
        options.value("--format", format_, "table|json|csv", "cli.history.format");
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        const std::string format = format_.value_or("table");
        if (format != "table" && format != "json" && format != "csv") {
            throw WrongArguments("cli.error.unknownFormat", singleLine(format));
        }
        if (agent_) {
            agentArgument(*agent_);
        }
        const Instant now = ReferenceClock::now();
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
            context.output.write(context.words.text("cli.history.empty") + "\n");
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
        const Descriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
        std::error_code error;
        if (!opened.isOpen()) {
            error = lastSystemError();
            if (error == std::errc::no_such_file_or_directory) {
                return ExitStatus::done;
            }
        } else {
            const auto scan =
                UsageHistoryReader::read(opened.get(), [&](const StoredHistorySample& sample) {
                    if (isWanted(sample, since)) {
                        rows.push_back({std::string(sample.provider), std::string(sample.windowID),
                                        sample.capturedAt, sample.usedPercent, sample.resetsAt,
                                        std::string(sample.text)});
                    }
                });
            error = scan.error;
            if (!error && scan.form == HistoryFileScan::Form::foreign) {
                context.report(context.words.format("cli.history.foreign", {file.string()}));
                return ExitStatus::failed;
            }
        }
        if (error) {
            context.report(
                context.words.format("cli.error.unreadable", {file.string(), error.message()}));
            return ExitStatus::failed;
        }
        return ExitStatus::done;
    }

    static void writeJSON(const std::vector<Row>& rows, const CommandContext& context) {
        std::string text = "[";
        for (const Row& row : rows) {
            text += (text.size() == 1 ? "\n" : ",\n") + row.text;
        }
        context.output.write(text + "\n]\n");
    }

    static void writeCSV(const std::vector<Row>& rows, const CommandContext& context) {
        std::string text = "capturedAt,provider,windowID,usedPercent,resetsAt\n";
        for (const Row& row : rows) {
            text += isoText(row.capturedAt) + "," + csvField(row.provider) + "," +
                    csvField(row.windowID) + "," + nlohmann::json(row.usedPercent).dump() + "," +
                    (row.resetsAt ? isoText(*row.resetsAt) : "") + "\n";
        }
        context.output.write(text);
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
        UsageHistory history;
        history.replace(std::move(series));

        Table table({{words.text("cli.history.column.agent")},
                     {words.text("cli.history.column.window")},
                     {words.text("cli.history.column.course")},
                     {words.text("cli.history.column.last")},
                     {words.text("cli.history.column.samples"), Alignment::right},
                     {words.text("cli.history.column.since")}});
        for (const WindowKey& key : keys) {
            const auto points = history.recent(key, from);
            const double left = std::max(100 - points.back().usedPercent, 0.0);
            table.addRow({{singleLine(agentName(key.first, words)), TextStyle::strong},
                          {singleLine(windowLabel(key.second, words))},
                          {sparkline(history, key, from, std::max(now, points.back().capturedAt),
                                     sparklineWidth)},
                          {words.format("usage.remaining", {percentText(left, words)})},
                          {integerText(static_cast<std::int64_t>(points.size()), words)},
                          {instantText(points.front().capturedAt, now, words)}});
        }
        table.write(context.output);
    }

    std::optional<std::string> agent_;
    std::optional<std::string> window_;
    std::optional<std::string> days_;
    std::optional<std::string> format_;
};

} // namespace

std::unique_ptr<Subcommand> makeHistoryCommand() {
    return std::make_unique<HistoryCommand>();
}

} // namespace vellmark
