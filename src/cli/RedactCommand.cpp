#include "cli/InputText.h"
#include "cli/Subcommands.h"
#include "report/Redaction.h"

#include <optional>
#include <string>

namespace vellmark {
namespace {

/// Prints a text without secrets, byte for byte as it was elsewhere.
class RedactCommand final : public Subcommand {
public:
    std::string name() const override { return "redact"; }
    std::string summaryKey() const override { return "cli.redact.summary"; }
    std::string detailKey() const override { return "cli.redact.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("FILE", file_, "cli.redact.file");
        options.value("--home", home_, "DIR", "cli.redact.home");
        options.flag("--include-emails", includeEmails_, "cli.option.includeEmails");
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        const auto text = readInputText(file_, context);
        if (!text)
            return ExitStatus::failed;
        const auto result =
            redacted(*text, home_.value_or(context.machine.home.string()), includeEmails_);
        if (!result) {
            context.report(context.words.text("cli.error.notRedacted"));
            return ExitStatus::failed;
        }
        context.output.write(*result);
        return ExitStatus::done;
    }

private:
    std::optional<std::string> file_;
    std::optional<std::string> home_;
    bool includeEmails_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeRedactCommand() {
    return std::make_unique<RedactCommand>();
}

} // namespace vellmark
