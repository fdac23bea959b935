#include "cli/ArgumentValues.h"
#include "cli/InputText.h"
#include "cli/Sparkline.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "cli/WrongArguments.h"
#include "model/UsageHistoryReader.h"
#include "model/UsageTexts.h"
#include "platform/RegularFile.h"
#include "platform/SystemError.h"
#include "platform/UnnamedFile.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/HistoryExport.h"
#include "presentation/UsageMetrics.h"
#include "probes/ProviderRegistry.h"
#include "store/HistoryImport.h"
#include "store/LastSnapshots.h"
#include "store/OrderedHistory.h"
#include "store/UsageHistory.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

constexpr std::size_t leastCourse = 10;
/// Of what comes by a pipe; years of history.
constexpr std::size_t largestImport = std::size_t{256} << 20;

/// What is to be told of the history.
struct Selection {
    std::optional<std::string> agent;
    std::optional<std::string> window;
    std::optional<Instant> since;
    std::optional<Instant> until;

    bool contains(const StoredHistorySample& sample) const {
        return (!agent || sample.provider == *agent) && (!window || sample.windowID == *window) &&
               (!since || sample.capturedAt >= since->time_since_epoch().count()) &&
               (!until || sample.capturedAt < until->time_since_epoch().count());
    }
};

/// Collects small pieces of data into larger writes.
class Stream {
public:
    explicit Stream(TerminalOutput& output) : output_(output) {}
    ~Stream() { output_.writeData(text_); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    Stream& operator<<(std::string_view text) {
        text_ += text;
        if (text_.size() >= largest) {
            output_.writeData(text_);
            text_.clear();
        }
        return *this;
    }

private:
    static constexpr std::size_t largest = std::size_t{64} << 10;
    TerminalOutput& output_;
    std::string text_;
};

void writeJSON(const HistorySource& source, TerminalOutput& output) {
    Stream stream(output);
    stream << "[";
    bool isFirst = true;
    visitInOrder(source, HistoryOrder::time, [&](const StoredHistorySample& sample) {
        stream << (std::exchange(isFirst, false) ? "\n" : ",\n") << sample.text;
    });
    stream << "\n]\n";
}

void writeCSV(const HistorySource& source, TerminalOutput& output) {
    Stream stream(output);
    stream << historyCSVHead;
    visitInOrder(source, HistoryOrder::time, [&](const StoredHistorySample& sample) {
        stream << historyCSVLine(Instant(Seconds(sample.capturedAt)), sample.provider,
                                 sample.windowID, sample.usedPercent,
                                 sample.resetsAt ? std::optional(Instant(Seconds(*sample.resetsAt)))
                                                 : std::nullopt);
    });
}

/// One family after the other, and in each one window after the other, as the format wants it.
void writeMetrics(const HistorySource& source, TerminalOutput& output) {
    using Value = std::function<std::optional<double>(const StoredHistorySample&)>;
    const std::pair<const MetricFamily&, Value> families[] = {
        {UsageMetrics::windowLeft,
         [](const auto& sample) { return std::max(1 - sample.usedPercent / 100, 0.0); }},
        {UsageMetrics::windowUsed, [](const auto& sample) { return sample.usedPercent / 100; }},
        {UsageMetrics::windowReset,
         [](const auto& sample) -> std::optional<double> {
             if (!sample.resetsAt) {
                 return std::nullopt;
             }
             return unixSeconds(Instant(Seconds(std::round(*sample.resetsAt * 1'000) / 1'000)));
         }},
    };
    Stream stream(output);
    for (const auto& [family, valueOf] : families) {
        stream << UsageMetrics::head(family);
        std::string last;
        visitInOrder(source, HistoryOrder::windowAndTime, [&](const StoredHistorySample& sample) {
            const auto value = valueOf(sample);
            if (!value) {
                return;
            }
            const UsageMetrics::Labels labels{{"agent", std::string(sample.provider)},
                                              {"window", std::string(sample.windowID)}};
            // Of two samples of one moment the later one would contradict the first.
            std::string moment =
                UsageMetrics::sample(family, labels, 0, Instant(Seconds(sample.capturedAt)));
            if (moment != last) {
                stream << UsageMetrics::sample(family, labels, *value,
                                               Instant(Seconds(sample.capturedAt)));
                last = std::move(moment);
            }
        });
    }
    stream << UsageMetrics::end;
}

/// What was recorded, as a table with a sparkline per window, or in full for other programs, from
/// the file alone: nothing is started. Or takes another history in.
class HistoryCommand final : public Subcommand {
public:
    std::string name() const override { return "history"; }
    std::string summaryKey() const override { return "cli.history.summary"; }
    std::string detailKey() const override { return "cli.history.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("ACTION", action_, "cli.history.action");
        options.optionalPositional("FILE", file_, "cli.history.file");
        options.value("--agent", agent_, "ID", "cli.history.agent");
        options.value("--window", window_, "ID", "cli.history.window");
        options.value("--days", days_, "N", "cli.history.days");
        options.value("--since", since_, "T", "cli.history.since");
        options.value("--until", until_, "T", "cli.history.until");
        options.value("--format", format_, "FORMAT", "cli.history.format");
        options.value("--now", now_, "T", "cli.option.now");
    }
    std::vector<std::string> choices(const std::string& name) const override {
        if (name == "ACTION") {
            return {"export", "import"};
        }
        return name == "--format" ? formats() : std::vector<std::string>();
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        const bool imports = action_ == "import";
        if (action_ && !imports && action_ != "export") {
            throw WrongArguments("cli.error.unexpected", singleLine(*action_));
        }
        const Instant now = now_ ? instantArgument("--now", *now_) : ReferenceClock::now();
        if (imports) {
            return import(now, context);
        }
        if (file_) {
            throw WrongArguments("cli.error.unexpected", singleLine(*file_));
        }
        const std::string format = format_.value_or(action_ ? "json" : "table");
        if (std::ranges::find(formats(), format) == formats().end()) {
            throw WrongArguments("cli.error.unknownFormat", singleLine(format));
        }
        const Selection selection = selected(now, context.words);
        int status = ExitStatus::done;
        Descriptor opened;
        const HistorySource source = open(selection, opened, status, context);
        if (format == "json") {
            writeJSON(source, context.output);
        } else if (format == "csv") {
            writeCSV(source, context.output);
        } else if (format == "openmetrics") {
            writeMetrics(source, context.output);
        } else {
            writeTable(source, status, now, context);
        }
        return status;
    }

private:
    static const std::vector<std::string>& formats() {
        static const std::vector<std::string> all{"table", "json", "csv", "openmetrics"};
        return all;
    }

    Selection selected(Instant now, const Localization& words) const {
        Selection selection{.agent = agent_, .window = window_, .since = {}, .until = {}};
        if (agent_) {
            agentArgument(*agent_);
        }
        if (days_ && since_) {
            throw WrongArguments("cli.error.noEffect", "--days", "--since");
        }
        if (days_) {
            selection.since =
                now - static_cast<double>(integerArgument("--days", *days_, 1, 100'000)) * oneDay;
        }
        if (since_) {
            selection.since =
                momentArgument("--since", *since_, now, words.timeZone(), DayEdge::begin);
        }
        if (until_) {
            selection.until =
                momentArgument("--until", *until_, now, words.timeZone(), DayEdge::end);
        }
        return selection;
    }

    /// The samples that are wanted. A file that does not exist is an empty history.
    HistorySource open(const Selection& selection, Descriptor& opened, int& status,
                       const CommandContext& context) const {
        const auto nothing = [](const UsageHistoryReader::Visitor&) {};
        const auto file = context.machine.usageHistoryFile();
        std::error_code error;
        opened = openRegularFile(file, O_RDONLY, error);
        if (error == std::errc::no_such_file_or_directory) {
            return nothing;
        }
        HistoryFileScan scan;
        if (opened.isOpen()) {
            scan = UsageHistoryReader::read(opened.get(), [](const StoredHistorySample&) {});
            error = scan.error;
        }
        if (error) {
            context.reportUnreadable(singleLine(file.string()), error);
            status = ExitStatus::failed;
            return nothing;
        }
        const int descriptor = opened.get();
        if (scan.form != HistoryFileScan::Form::foreign) {
            return [descriptor, selection](const UsageHistoryReader::Visitor& visit) {
                UsageHistoryReader::read(descriptor, wanted(selection, visit));
            };
        }
        if (!action_) {
            context.report(
                context.words.format("cli.history.foreign", {singleLine(file.string())}));
            status = ExitStatus::failed;
            return nothing;
        }
        const HistorySource salvaged = [descriptor,
                                        selection](const UsageHistoryReader::Visitor& visit) {
            std::error_code ignored;
            UsageHistoryReader::salvage(descriptor, wanted(selection, visit), ignored);
        };
        const auto found = UsageHistoryReader::salvage(
            descriptor, [](const StoredHistorySample&) {}, error);
        context.report(context.words.format(
            "cli.history.salvaged", {singleLine(file.string()), static_cast<std::int64_t>(found)}));
        status = found > 0 ? ExitStatus::done : ExitStatus::failed;
        return salvaged;
    }

    static UsageHistoryReader::Visitor wanted(const Selection& selection,
                                              const UsageHistoryReader::Visitor& visit) {
        return [&](const StoredHistorySample& sample) {
            if (selection.contains(sample)) {
                visit(sample);
            }
        };
    }

    // --- taking in

    int import(Instant now, const CommandContext& context) const {
        if (!file_) {
            throw WrongArguments("cli.error.argumentMissing", "FILE");
        }
        for (const auto& [option, value] :
             {std::pair("--agent", &agent_), std::pair("--window", &window_),
              std::pair("--days", &days_), std::pair("--since", &since_),
              std::pair("--until", &until_), std::pair("--format", &format_)}) {
            if (value->has_value()) {
                throw WrongArguments("cli.error.noEffect", option, "import");
            }
        }
        const Descriptor input = openInput(context);
        if (!input.isOpen()) {
            return ExitStatus::failed;
        }
        const auto history = context.machine.usageHistoryFile();
        return tell(importHistory(history, input.get(), now), singleLine(history.string()),
                    context);
    }

    std::string inputName(const Localization& words) const {
        return *file_ == "-" ? words.text("cli.standardInput") : singleLine(*file_);
    }

    /// What can be read several times: a pipe is copied first. Not open when it cannot be, which
    /// has been reported.
    Descriptor openInput(const CommandContext& context) const {
        if (*file_ != "-") {
            std::error_code error;
            Descriptor regular = openRegularFile(*file_, O_RDONLY, error);
            if (regular.isOpen()) {
                return regular;
            }
            if (error != notRegularFile()) {
                context.reportUnreadable(inputName(context.words), error);
                return {};
            }
        }
        Descriptor copy = openUnnamedFile(context.machine.temporary);
        std::error_code error = copy.isOpen() ? std::error_code() : lastSystemError();
        std::size_t size = 0;
        const bool isRead = !error && readInputPieces(file_, context, [&](std::string_view piece) {
            size += piece.size();
            if (size > largestImport) {
                error = std::make_error_code(std::errc::file_too_large);
            } else {
                error = writeAll(copy, piece);
            }
            return !error;
        });
        if (error) {
            context.reportUnreadable(inputName(context.words), error);
        }
        return isRead && !error ? std::move(copy) : Descriptor();
    }

    static std::error_code writeAll(const Descriptor& file, std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
            if (count < 0 && errno != EINTR) {
                return lastSystemError();
            }
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return {};
    }

    int tell(const HistoryImport& result, const std::string& history,
             const CommandContext& context) const {
        using State = HistoryImport::State;
        const Localization& words = context.words;
        if (!result.aside.empty()) {
            context.report(
                words.format("cli.history.repaired", {history, singleLine(result.aside.string())}));
        }
        switch (result.state) {
        case State::done:
            break;
        case State::unreadable:
            context.reportUnreadable(inputName(words), result.error);
            return ExitStatus::failed;
        case State::busy:
            context.report(result.error == std::errc::resource_unavailable_try_again
                               ? words.text("cli.history.busy")
                               : words.format("cli.error.notSaved",
                                              {history, systemErrorText(result.error, words)}));
            return ExitStatus::failed;
        case State::notWritten:
            context.report(words.format("cli.error.notSaved",
                                        {history, systemErrorText(result.error, words)}));
            return ExitStatus::failed;
        case State::foreign:
            context.report(words.format("cli.history.foreign", {history}));
            return ExitStatus::failed;
        }
        const auto found = result.taken + result.known;
        if (result.form == HistoryFileScan::Form::foreign && found + result.refused == 0) {
            context.report(words.format("cli.history.noHistory", {inputName(words)}));
            return ExitStatus::failed;
        }
        if (result.form != HistoryFileScan::Form::whole) {
            context.report(words.format("cli.history.damagedInput", {inputName(words)}));
        }
        const auto count = [&](std::uint64_t number) {
            return integerText(static_cast<std::int64_t>(number), words);
        };
        context.output.write(
            words.format("cli.history.imported",
                         {count(result.taken), count(result.known), count(result.refused)}) +
            "\n");
        if (result.refused > 0) {
            context.output.write(words.text("cli.history.refused") + "\n");
        }
        return ExitStatus::done;
    }

    // --- the table

    struct Recorded {
        HistorySeries series;
        /// The windows and where each begins: the time, and the place among those of that time.
        std::map<WindowKey, std::pair<double, std::size_t>> since;
        double first = std::numeric_limits<double>::infinity();
        double last = -std::numeric_limits<double>::infinity();
    };

    static Recorded recorded(const HistorySource& source) {
        Recorded all;
        source([&](const StoredHistorySample& sample) {
            all.series.add(
                sample.provider, sample.windowID,
                HistoryPoint(Instant(Seconds(sample.capturedAt)), sample.usedPercent, {}));
            all.first = std::min(all.first, sample.capturedAt);
            all.last = std::max(all.last, sample.capturedAt);
            const auto [window, isNew] = all.since.try_emplace(
                {AgentProviderID(std::string(sample.provider)), std::string(sample.windowID)},
                sample.capturedAt, all.since.size());
            window->second.first = std::min(window->second.first, sample.capturedAt);
        });
        return all;
    }

    /// The windows by agent in the registry's order, each agent's as they were first recorded.
    static std::vector<WindowKey>
    inOrder(const std::map<WindowKey, std::pair<double, std::size_t>>& since) {
        std::vector<WindowKey> keys;
        for (const auto& [key, first] : since) {
            keys.push_back(key);
        }
        std::ranges::stable_sort(keys, {}, [&](const WindowKey& key) { return since.at(key); });
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

    static void writeTable(const HistorySource& source, int status, Instant now,
                           const CommandContext& context) {
        const Localization& words = context.words;
        Recorded all = recorded(source);
        if (all.since.empty()) {
            if (status == ExitStatus::done) {
                context.note(words.text("cli.history.empty"));
            }
            return;
        }
        const Instant from(Seconds(all.first));
        const Instant until(Seconds(all.last));
        const auto keys = inOrder(all.since);
        const auto names = namesOf(keys, context);
        UsageHistory history;
        history.replace(std::move(all.series));

        Table table({{words.text("cli.history.column.agent")},
                     {words.text("cli.history.column.window")},
                     {.title = words.text("cli.history.column.course"), .leastWidth = leastCourse},
                     {words.text("cli.history.column.last")},
                     {.title = words.text("cli.history.column.samples"),
                      .alignment = Alignment::right,
                      .isDispensable = true},
                     {words.text("cli.history.column.since")}});
        for (const WindowKey& key : keys) {
            const auto points = history.recent(key, from, until);
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
    std::optional<std::string> file_;
    std::optional<std::string> agent_;
    std::optional<std::string> window_;
    std::optional<std::string> days_;
    std::optional<std::string> since_;
    std::optional<std::string> until_;
    std::optional<std::string> format_;
    std::optional<std::string> now_;
};

} // namespace

std::unique_ptr<Subcommand> makeHistoryCommand() {
    return std::make_unique<HistoryCommand>();
}

} // namespace vellmark
