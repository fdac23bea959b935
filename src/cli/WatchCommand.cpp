#include "cli/ArgumentValues.h"
#include "cli/DisplayWidth.h"
#include "cli/Subcommands.h"
#include "cli/TerminalLoop.h"
#include "cli/TerminalScreen.h"
#include "cli/UsageRefresh.h"
#include "platform/Preferences.h"
#include "presentation/UsageVerdict.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentUsageStore.h"

#include <array>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>

namespace vellmark {
namespace {

/// Spans and ages are told in minutes.
constexpr Seconds redrawInterval{30};
constexpr Seconds tolerance{5};

/// Keeps refreshing and shows the agents: in place on a terminal, else one block a refresh.
class Watch {
public:
    Watch(const CommandContext& context, Seconds interval)
        : context_(context), interval_(interval), preferences_(makePreferences(context.machine)),
          store_({.machine = context.machine,
                  .registrations = providerRegistry(),
                  .words = [&context] { return context.words; }},
                 loop_, *preferences_) {}

    int run() {
        if (context_.output.canRedraw()) {
            screen_.emplace(context_.output, STDIN_FILENO);
        }
        if (screen_ && screen_->hasKeyboard()) {
            keys_ = loop_.watch(STDIN_FILENO, [this] { readKeys(); });
        }
        loop_.onResize([this] { show(); });
        const auto subscription =
            store_.observe({.willChange = {}, .didChange = [this] { show(); }});
        tick();
        store_.refresh(RefreshTrigger::launch);
        scheduleRefresh();
        const int status = loop_.run();
        store_.abortRefresh();
        return status;
    }

private:
    void scheduleRefresh() {
        loop_.postAfter(interval_, tolerance, [this] {
            store_.refresh(RefreshTrigger::timer);
            scheduleRefresh();
        });
    }

    void tick() {
        show();
        if (screen_) {
            loop_.postAfter(redrawInterval, tolerance, [this] { tick(); });
        }
    }

    void show() {
        const UsageState& state = store_.state();
        if (screen_) {
            const Instant now = ReferenceClock::now();
            const Localization& words = context_.words;
            const std::size_t width = context_.output.width() - 1;
            const StatusLine line = statusLine(state, now, words);
            const std::string head =
                cutToWidth(displayWidth(line.text) <= width ? line.text : line.briefText, width);
            const std::string foot = cutToWidth(words.text("cli.watch.keys"), width);
            screen_->draw(context_.output.styled(TextStyle::strong, head) + "\n\n" +
                              usageText(state, context_),
                          context_.output.styled(TextStyle::dim, foot));
        } else if (state.lastRefreshCompletedAt != shown_) {
            shown_ = state.lastRefreshCompletedAt;
            context_.output.write(usageText(state, context_) + "\n");
        }
        if (context_.output.error()) {
            loop_.stop(ExitStatus::failed); // nobody sees it any more
        }
    }

    void readKeys() {
        std::array<char, 16> keys{};
        const ssize_t count = ::read(STDIN_FILENO, keys.data(), keys.size());
        if (count <= 0) {
            keys_.reset(); // the keyboard has gone; signals still end the program
            return;
        }
        for (const char key : std::string_view(keys.data(), static_cast<std::size_t>(count))) {
            if (key == 'q' || key == 'Q') {
                loop_.stop(ExitStatus::done);
            } else if (key == TerminalScreen::interrupt) {
                loop_.stop(128 + SIGINT);
            } else if (key == 'r' || key == 'R') {
                store_.refresh(RefreshTrigger::manual);
            }
        }
    }

    const CommandContext& context_;
    Seconds interval_;
    TerminalLoop loop_;
    std::unique_ptr<Preferences> preferences_;
    AgentUsageStore store_;
    std::unique_ptr<DescriptorWatch> keys_;
    std::optional<Instant> shown_;
    std::optional<TerminalScreen> screen_; ///< goes first: the terminal is itself again at once
};

class WatchCommand final : public Subcommand {
public:
    std::string name() const override { return "watch"; }
    std::string summaryKey() const override { return "cli.watch.summary"; }
    std::string detailKey() const override { return "cli.watch.detail"; }

    void declare(CommandOptions& options) override {
        options.value("--interval", interval_, "SECONDS", "cli.watch.interval");
    }

    int run(const CommandContext& context) override {
        const auto seconds = interval_ ? integerArgument("--interval", *interval_, 1, 86'400) : 300;
        return Watch(context, Seconds(static_cast<double>(seconds))).run();
    }

private:
    std::optional<std::string> interval_;
};

} // namespace

std::unique_ptr<Subcommand> makeWatchCommand() {
    return std::make_unique<WatchCommand>();
}

} // namespace vellmark
