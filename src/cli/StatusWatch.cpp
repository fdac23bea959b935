#include "cli/StatusWatch.h"

#include "cli/LastState.h"
#include "cli/Subcommand.h"
#include "cli/TerminalLoop.h"
#include "platform/FileWatch.h"
#include "platform/Preferences.h"
#include "probes/ProviderRegistry.h"
#include "process/ChildWatcher.h"
#include "store/AgentUsageStore.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark {
namespace {

/// How late another program's reading may be before it counts as missing.
constexpr Seconds mostLate{60};
/// Bars on several screens start at the same time; only the first of them is to read.
constexpr Seconds startSpread{0.25};
constexpr int startPlaces = 16;

bool isPipe(int descriptor) {
    struct stat facts {};
    return fstat(descriptor, &facts) == 0 && (S_ISFIFO(facts.st_mode) || S_ISSOCK(facts.st_mode));
}

class StatusWatch {
public:
    StatusWatch(const CommandContext& context, const StatusForm& form,
                std::optional<Seconds> interval)
        : words_(context.words),
          context_{context.machine, words_, context.output, context.errors, context.currentWords},
          form_(form), interval_(interval), preferences_(makePreferences(context.machine)) {}

    int run() {
        context_.output.writeData(form_.streamHead());
        filesWatch_ = watchFiles(loop_, context_.machine.supportDirectory(),
                                 {context_.machine.lastSnapshotsFile().filename(),
                                  context_.machine.statusLineFile().filename()},
                                 [this] { reload(); });
        settingsWatch_ = watchPreferences(loop_, context_.machine, [this] { takeSettings(); });
        takeSettings(); // what changes from here is told
        std::unique_ptr<DescriptorWatch> reader;
        if (isPipe(STDOUT_FILENO)) {
            // Nobody writes there: it can only be that the other end was closed.
            reader = loop_.watch(STDOUT_FILENO, [this] { loop_.stop(ExitStatus::readerHasGone); });
        }
        tick();
        loop_.postAfter(startSpread * (getpid() % startPlaces), redrawTolerance,
                        [this] { check(); });
        const int status = loop_.run();
        if (store_) {
            store_->abortRefresh();
        }
        return status;
    }

private:
    Seconds interval() const { return interval_.value_or(readingInterval(*preferences_)); }

    void takeSettings() {
        preferences_->reload();
        if (store_) {
            store_->takeSettings();
        }
        words_ = context_.currentWords();
        reload();
    }

    void reload() {
        if (store_) {
            store_->takeStatusLine(); // so that it is recorded
        }
        state_ = lastState(*preferences_, context_, ReferenceClock::now());
        show();
    }

    void tick() {
        filesWatch_ ? show() : reload();
        loop_.postAfter(redrawInterval, redrawTolerance, [this] { tick(); });
    }

    void show() {
        const StatusReport report =
            statusReport(state_, form_.choice(), interval(), ReferenceClock::now(), context_.words);
        std::string text = form_.streamOutput(report);
        if (text != shown_) {
            context_.output.writeData(text);
            shown_ = std::move(text);
        }
        if (context_.output.error()) {
            loop_.stop(ExitStatus::failed); // nobody sees it any more
        }
    }

    /// When any program has last read the agents, well or not: each writes into the log.
    std::optional<Instant> lastSign() const {
        struct stat facts {};
        if (stat(context_.machine.activityLogFile().c_str(), &facts) != 0) {
            return std::nullopt;
        }
        return instantFromUnixSeconds(static_cast<double>(facts.st_mtime));
    }

    /// Reads the agents when nobody has done so for too long, and looks again when that may be.
    void check() {
        const Instant now = ReferenceClock::now();
        const std::optional<Instant> sign = lastSign();
        const bool isOurs = sign && readAt_ && *sign - *readAt_ < redrawTolerance;
        const Seconds patience =
            interval() + (isOurs ? Seconds(0) : std::min(mostLate, interval() / 4));
        const Seconds age = sign ? now - *sign : patience;
        Seconds next = interval();
        if (age >= patience || age < Seconds(0)) {
            readAgents();
        } else {
            next = patience - age;
        }
        loop_.postAfter(std::max(next, Seconds(1)), redrawTolerance, [this] { check(); });
    }

    void readAgents() {
        if (!store_) {
            if (!startChildWatcher()) {
                context_.report(context_.words.text("watcher.missing"));
            }
            store_ = std::make_unique<AgentUsageStore>(
                AgentUsageStore::Configuration{
                    .machine = context_.machine,
                    .registrations = providerRegistry(),
                    .words = [this] { return context_.words; },
                    .storageTrouble =
                        [this](const std::string& text) { context_.report(singleLine(text)); }},
                loop_, *preferences_);
            subscription_ = store_->observe({.willChange = {}, .didChange = [this] { follow(); }});
        }
        store_->refresh(RefreshTrigger::timer);
    }

    void follow() {
        if (store_->state().isRefreshing) {
            return;
        }
        readAt_ = ReferenceClock::now();
        if (!filesWatch_) {
            reload();
        }
    }

    Localization words_;
    const CommandContext context_; ///< with our words
    const StatusForm& form_;
    std::optional<Seconds> interval_;
    TerminalLoop loop_;
    std::unique_ptr<Preferences> preferences_;
    UsageState state_;
    std::string shown_;
    /// The end of the last reading of this program's own.
    std::optional<Instant> readAt_;
    std::unique_ptr<FileWatch> filesWatch_;
    std::unique_ptr<FileWatch> settingsWatch_;
    std::unique_ptr<AgentUsageStore> store_; ///< once it has to read
    std::shared_ptr<AgentUsageStore::Subscription> subscription_;
};

} // namespace

int watchStatus(const CommandContext& context, const StatusForm& form,
                std::optional<Seconds> interval) {
    return StatusWatch(context, form, interval).run();
}

} // namespace vellmark
