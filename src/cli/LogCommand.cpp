#include "cli/ArgumentValues.h"
#include "cli/DisplayWidth.h"
#include "cli/Subcommands.h"
#include "cli/TerminalLoop.h"
#include "cli/WrongArguments.h"
#include "model/UsageJSON.h"
#include "presentation/AgentBlockContent.h"
#include "store/ActivityLog.h"
#include "store/ActivityTexts.h"
#include "text/Dates.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

using Level = ActivityEntry::Level;

constexpr Seconds lookInterval{1};
constexpr Seconds lookTolerance{0.2};
/// What is about no agent is about the program.
constexpr const char* programSubject = "vellmark";
/// Where the second line of an entry begins.
constexpr std::size_t hangingIndent = 4;

constexpr std::array<std::pair<Level, const char*>, 3> levelNames{
    {{Level::info, "info"}, {Level::notice, "notice"}, {Level::error, "error"}}};

const char* nameOf(Level level) {
    return std::ranges::find(levelNames, level, [](const auto& pair) { return pair.first; })
        ->second;
}

Level levelArgument(const std::string& text) {
    for (const auto& [level, name] : levelNames) {
        if (text == name) {
            return level;
        }
    }
    throw WrongArguments("cli.error.unknownLevel", singleLine(text));
}

TextStyle styleOf(Level level) {
    switch (level) {
    case Level::info:
        return TextStyle::dim;
    case Level::notice:
        return TextStyle::attention;
    case Level::error:
        return TextStyle::critical;
    }
    return TextStyle::plain;
}

/// Tells when a file has changed, without reading it.
class FileChanges {
public:
    explicit FileChanges(const std::filesystem::path& file) : file_(file) {}

    /// Since the last time that this was asked.
    bool happened() {
        struct stat now {};
        if (::stat(file_.c_str(), &now) != 0) {
            now = {};
        }
        const auto changes = std::tuple(now.st_ino, now.st_size, now.st_mtime);
        return std::exchange(seen_, changes) != changes;
    }

private:
    std::filesystem::path file_;
    std::optional<std::tuple<ino_t, off_t, time_t>> seen_;
};

/// The activity log, oldest first, one line for each entry.
class LogCommand final : public Subcommand {
public:
    std::string name() const override { return "log"; }
    std::string summaryKey() const override { return "cli.log.summary"; }

    void declare(CommandOptions& options) override {
        options.value("--days", days_, "N", "cli.log.days");
        options.value("--agent", agent_, "ID", "cli.log.agent");
        options.value("--level", level_, "LEVEL", "cli.log.level");
        options.flag("-f,--follow", follows_, "cli.log.follow");
        options.flag("--json", json_, "cli.option.json");
    }

    std::vector<std::string> choices(const std::string& name) const override {
        return name == "--level" ? std::vector<std::string>{"info", "notice", "error"}
                                 : std::vector<std::string>();
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        if (follows_ && json_) {
            throw WrongArguments("cli.error.noEffect", "--follow", "--json");
        }
        const auto days =
            days_ ? integerArgument("--days", *days_, 1, 100'000) : ActivityLog::daysKept;
        since_ = ReferenceClock::now() - static_cast<double>(days) * oneDay;
        least_ = level_ ? levelArgument(*level_) : Level::info;
        if (agent_ && *agent_ != programSubject) {
            agentArgument(*agent_);
        }
        FileChanges changes(context.machine.activityLogFile());
        changes.happened();
        auto entries = read(context);
        if (!entries) {
            return ExitStatus::failed;
        }
        if (json_) {
            writeJSON(*entries, context);
        } else {
            writeText(*entries, context);
        }
        return follows_ ? follow(std::move(changes), *std::move(entries), context)
                        : ExitStatus::done;
    }

private:
    /// All entries of the days asked for; absent when the file cannot be read, which has been
    /// reported then.
    std::optional<std::vector<ActivityEntry>> read(const CommandContext& context) const {
        const auto file = context.machine.activityLogFile();
        std::error_code error;
        auto entries = ActivityLog(file).entries(since_, context.words.timeZone(), error);
        if (error) {
            context.reportUnreadable(singleLine(file.string()), error);
            return std::nullopt;
        }
        ActivityTexts::tell(entries, context.words);
        return entries;
    }

    bool isWanted(const ActivityEntry& entry) const {
        const std::string subject = entry.agent ? entry.agent->rawValue : programSubject;
        return entry.level >= least_ && (!agent_ || *agent_ == subject);
    }

    void writeText(const std::vector<ActivityEntry>& entries, const CommandContext& context) const {
        std::string text;
        for (const ActivityEntry& entry : entries) {
            if (isWanted(entry)) {
                text += entryText(entry, context);
            }
        }
        if (text.empty() && !follows_) {
            context.note(context.words.text("cli.log.empty"));
        }
        context.output.write(text);
    }

    void writeJSON(const std::vector<ActivityEntry>& entries, const CommandContext& context) const {
        JSON list = JSON::array();
        for (const ActivityEntry& entry : entries) {
            if (!isWanted(entry)) {
                continue;
            }
            JSON one{{"time", entry.time.time_since_epoch().count()},
                     {"level", nameOf(entry.level)},
                     {"text", entry.text}};
            if (entry.agent) {
                one["agent"] = entry.agent->rawValue;
            }
            if (!entry.message.key.empty()) {
                one["key"] = entry.message.key;
            }
            list.push_back(std::move(one));
        }
        context.output.writeData(serialized(list) + "\n");
    }

    /// "2026-11-20 14:31:20 notice Codex: Trying again in 20 s after a time-out", with a hanging
    /// indentation where a terminal is too narrow for it.
    static std::string entryText(const ActivityEntry& entry, const CommandContext& context) {
        const TerminalOutput& output = context.output;
        const std::string stamp =
            formatDate(entry.time, "yyyy-MM-dd HH:mm:ss", context.words.timeZone());
        const std::string level = nameOf(entry.level);
        const std::string subject =
            entry.agent ? agentName(*entry.agent, context.words) : programSubject;
        const std::string head = stamp + " " + level;
        const std::string line = head + " " + subject + ": " + output.shown(entry.text);
        const std::size_t width = output.width();
        const bool isCramped = output.isTerminal() && displayWidth(line) > width;
        std::string text;
        for (const std::string& part : isCramped
                                           ? wrapped(line, width - std::min(width, hangingIndent))
                                           : std::vector{line}) {
            text += (text.empty() ? "" : std::string(hangingIndent, ' ')) + part + "\n";
        }
        if (text.starts_with(head)) {
            text.replace(0, head.size(), stamp + " " + output.styled(styleOf(entry.level), level));
        }
        return text;
    }

    /// Shows what is added to the log until the user or the reader leaves.
    int follow(FileChanges changes, std::vector<ActivityEntry> known,
               const CommandContext& context) const {
        TerminalLoop loop;
        const std::function<void()> look = [&] {
            if (changes.happened()) {
                auto entries = read(context);
                if (!entries) {
                    loop.stop(ExitStatus::failed);
                    return;
                }
                writeText({firstNew(*entries, known), entries->end()}, context);
                known = *std::move(entries);
            }
            if (context.output.error()) {
                loop.stop(ExitStatus::failed); // nobody reads it any more
            } else {
                loop.postAfter(lookInterval, lookTolerance, look);
            }
        };
        look();
        return loop.run();
    }

    /// Behind the last entry that is known: old ones may have been dropped meanwhile.
    static std::vector<ActivityEntry>::iterator firstNew(std::vector<ActivityEntry>& entries,
                                                         const std::vector<ActivityEntry>& known) {
        if (known.empty()) {
            return entries.begin();
        }
        const bool isLonger = entries.size() >= known.size();
        const auto place = entries.begin() + static_cast<std::ptrdiff_t>(known.size());
        if (isLonger && *(place - 1) == known.back()) {
            return place;
        }
        return std::find(entries.rbegin(), entries.rend(), known.back()).base();
    }

    std::optional<std::string> days_;
    std::optional<std::string> agent_;
    std::optional<std::string> level_;
    bool follows_ = false;
    bool json_ = false;
    Instant since_{};
    Level least_ = Level::info;
};

} // namespace

std::unique_ptr<Subcommand> makeLogCommand() {
    return std::make_unique<LogCommand>();
}

} // namespace vellmark
