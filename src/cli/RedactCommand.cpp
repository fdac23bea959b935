#include "cli/InputText.h"
#include "cli/Subcommands.h"
#include "platform/SystemDirectories.h"
#include "report/RedactionStream.h"

#include <optional>
#include <string>
#include <string_view>

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
        options.flag("--include-emails", rules_.includeEmails, "cli.option.includeEmails");
        options.flag("--strict-rules", rules_.strictRules, "cli.redact.strictRules");
    }

    bool startsChildren() const override { return false; }
    bool hasDemo() const override { return false; }

    int run(const CommandContext& context) override {
        const std::string home = home_ && !rules_.strictRules
                                     ? normalized(*home_).string()
                                     : home_.value_or(context.machine.home.string());
        RedactionStream stream(home, rules_);
        bool isRedacted = true;
        const auto write = [&](const std::optional<std::string>& text) {
            isRedacted = text.has_value();
            context.output.writeData(text.value_or(""));
            return isRedacted && !context.output.error();
        };
        const bool isRead = readInputPieces(
            file_, context, [&](std::string_view piece) { return write(stream.add(piece)); });
        if (isRedacted) {
            write(stream.finish());
        }
        if (!isRedacted) {
            context.report(context.words.text("cli.error.redactionStopped"));
        }
        return isRead && isRedacted ? ExitStatus::done : ExitStatus::failed;
    }

private:
    std::optional<std::string> file_;
    std::optional<std::string> home_;
    RedactionOptions rules_;
};

} // namespace

std::unique_ptr<Subcommand> makeRedactCommand() {
    return std::make_unique<RedactCommand>();
}

} // namespace vellmark
