#include "cli/ArgumentValues.h"
#include "cli/LastState.h"
#include "cli/OutputFile.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "platform/Preferences.h"
#include "presentation/UsageMetrics.h"

#include <optional>
#include <string>

namespace vellmark {
namespace {

/// The last readings for a monitoring system. Starts nothing.
class MetricsCommand final : public Subcommand {
public:
    std::string name() const override { return "metrics"; }
    std::string summaryKey() const override { return "cli.metrics.summary"; }
    std::string detailKey() const override { return "cli.metrics.detail"; }

    void declare(CommandOptions& options) override {
        options.value("-o,--output", output_, "FILE", "cli.metrics.output");
        options.flag("--accounts", withAccounts_, "cli.metrics.accounts");
        options.value("--now", now_, "T", "cli.option.now");
    }

    bool startsChildren() const override { return false; }
    /// Nothing was read in a demonstration before.
    bool hasDemo() const override { return false; }

    int run(const CommandContext& context) override {
        const Instant now = now_ ? instantArgument("--now", *now_) : ReferenceClock::now();
        const auto preferences = makePreferences(context.machine);
        reportUnreadable(*preferences, context);
        const UsageState state = lastState(*preferences, context, now);
        const std::string text = UsageMetrics::text(state, now, withAccounts_);
        // A collector often runs as another user.
        return deliver(text, output_, ReplacementFile::Mode::readableByAll, context) ==
                       Delivery::failed
                   ? ExitStatus::failed
                   : ExitStatus::done;
    }

private:
    std::optional<std::string> output_;
    std::optional<std::string> now_;
    bool withAccounts_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeMetricsCommand() {
    return std::make_unique<MetricsCommand>();
}

} // namespace vellmark
