#include "cli/InterruptibleWork.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "platform/Descriptor.h"
#include "platform/SystemError.h"
#include "report/SupportReportFacts.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

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
        return deliver(*text + "\n", context);
    }

private:
    int deliver(const std::string& text, const CommandContext& context) const {
        struct stat target {};
        struct stat output {};
        const bool exists = output_ && ::stat(output_->c_str(), &target) == 0;
        // "/dev/stdout", for instance; a second opening would write over what is there.
        const bool isOutput = exists && ::fstat(STDOUT_FILENO, &output) == 0 &&
                              output.st_dev == target.st_dev && output.st_ino == target.st_ino;
        if (!output_ || *output_ == "-" || isOutput) {
            context.output.writeData(text);
            return ExitStatus::done;
        }
        const bool isSpecial = exists && !S_ISREG(target.st_mode);
        if (const auto error =
                isSpecial ? writeTo(*output_, text) : saveSupportReport(*output_, text)) {
            context.report(context.words.format(
                "cli.error.notSaved",
                {singleLine(*output_), systemErrorText(error, context.words)}));
            return ExitStatus::failed;
        }
        context.output.write(context.words.format("report.saved", {singleLine(*output_)}) + "\n");
        return ExitStatus::done;
    }

    /// A pipe or a device, which stays what it is.
    static std::error_code writeTo(const std::string& file, std::string_view text) {
        const Descriptor opened(::open(file.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
        while (opened.isOpen() && !text.empty()) {
            const ssize_t count = ::write(opened.get(), text.data(), text.size());
            if (count < 0 && errno != EINTR) {
                return lastSystemError();
            }
            text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return opened.isOpen() ? std::error_code() : lastSystemError();
    }

    bool includeEmails_ = false;
    std::optional<std::string> whatHappened_;
    std::optional<std::string> output_;
};

} // namespace

std::unique_ptr<Subcommand> makeReportCommand() {
    return std::make_unique<ReportCommand>();
}

} // namespace vellmark
