#include "cli/ArgumentValues.h"
#include "cli/Subcommands.h"
#include "platform/WholeFile.h"
#include "store/ActivityLog.h"
#include "text/Dates.h"

#include <optional>
#include <string>

namespace vellmark {
namespace {

constexpr Seconds day{86'400};

TextStyle styleOf(ActivityEntry::Level level) {
    switch (level) {
    case ActivityEntry::Level::info:
        return TextStyle::plain;
    case ActivityEntry::Level::notice:
        return TextStyle::attention;
    case ActivityEntry::Level::error:
        return TextStyle::strong;
    }
    return TextStyle::plain;
}

/// The activity log, oldest first, one line for each entry.
class LogCommand final : public Subcommand {
public:
    std::string name() const override { return "log"; }
    std::string summaryKey() const override { return "cli.log.summary"; }

    void declare(CommandOptions& options) override {
        options.value("--days", days_, "N", "cli.log.days");
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        const auto days =
            days_ ? integerArgument("--days", *days_, 1, 100'000) : ActivityLog::daysKept;
        const auto file = context.machine.activityLogFile();
        std::error_code error;
        if (!readWholeFile(file, error) && error != std::errc::no_such_file_or_directory) {
            context.report(
                context.words.format("cli.error.unreadable", {file.string(), error.message()}));
            return ExitStatus::failed;
        }
        const TimeZone zone = context.words.timeZone();
        const Instant since = ReferenceClock::now() - static_cast<double>(days) * day;
        std::string text;
        for (const ActivityEntry& entry : ActivityLog(file).entries(since, zone)) {
            text +=
                context.output.styled(styleOf(entry.level), ActivityLog::line(entry, zone)) + "\n";
        }
        if (text.empty()) {
            context.errors.write(context.words.text("cli.log.empty") + "\n");
        }
        context.output.write(text);
        return ExitStatus::done;
    }

private:
    std::optional<std::string> days_;
};

} // namespace

std::unique_ptr<Subcommand> makeLogCommand() {
    return std::make_unique<LogCommand>();
}

} // namespace vellmark
