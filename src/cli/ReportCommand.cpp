#include "cli/InterruptibleWork.h"
#include "cli/OutputFile.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "report/SupportReportFacts.h"
#include "text/TerminalText.h"

#include <optional>
#include <string>

namespace vellmark {
namespace {

/// Prints or saves the support report of this machine.
class ReportCommand final : public Subcommand {
public:
    std::string name() const override { return "report"; }
    std::string summaryKey() const override { return "cli.report.summary"; }
    std::string detailKey() const override { return "cli.report.detail"; }

    void declare(CommandOptions& options) override {
        options.flag("--include-emails", includeEmails_, "cli.option.includeEmails");
        options.value("--what-happened", whatHappened_, "TEXT", "cli.report.whatHappened");
        options.value("-o,--output", output_, "FILE", "cli.report.output");
    }

    int run(const CommandContext& context) override {
        SupportReportInput input;
        const int status =
            runInterruptibly(context, context.words.text("cli.agents.progress"), [&] {
                input = gatherSupportReport(context.machine, context.words, ReferenceClock::now());
            });
        if (status != ExitStatus::done) {
            return status;
        }
        input.whatHappened = whatHappened_.value_or(std::string());
        reportUnreadable(LastSnapshots(context.machine.lastSnapshotsFile()).contents(), context);
        const auto text =
            supportReportText(input, context.machine.home.string(), includeEmails_, context.words);
        if (!text) {
            context.report(context.words.text("cli.error.notRedacted"));
            return ExitStatus::failed;
        }
        switch (deliver(*text + "\n", output_, ReplacementFile::Mode::ownerAlone, context)) {
        case Delivery::failed:
            return ExitStatus::failed;
        case Delivery::saved:
            context.output.write(context.words.format("report.saved", {singleLine(*output_)}) +
                                 "\n");
            break;
        case Delivery::printed:
            break;
        }
        return ExitStatus::done;
    }

private:
    bool includeEmails_ = false;
    std::optional<std::string> whatHappened_;
    std::optional<std::string> output_;
};

} // namespace

std::unique_ptr<Subcommand> makeReportCommand() {
    return std::make_unique<ReportCommand>();
}

} // namespace vellmark
