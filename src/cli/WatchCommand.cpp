#include "cli/ArgumentValues.h"
#include "cli/CompactView.h"
#include "cli/DisplayWidth.h"
#include "cli/StatusForm.h"
#include "cli/StatusWatch.h"
#include "cli/Subcommands.h"
#include "cli/TerminalKeys.h"
#include "cli/TerminalLoop.h"
#include "cli/TerminalScreen.h"
#include "cli/UsageRefresh.h"
#include "cli/UsageView.h"
#include "cli/WrongArguments.h"
#include "platform/Preferences.h"
#include "presentation/UsageVerdict.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentUsageStore.h"
#include "store/AppSettings.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

/// Lines that may be more than the screen has, with the agents that they belong to.
struct Page {
    std::vector<std::string> head;
    std::vector<std::string> lines;
    /// The name of the agent that each line is about; empty between two.
    std::vector<std::string> subjects;
};

/// Each name of `subjects` once, in their order.
std::string namesIn(const std::vector<std::string>& subjects, std::size_t begin, std::size_t end) {
    std::string names;
    std::string last;
    for (std::size_t line = begin; line < end; ++line) {
        if (subjects[line].empty() || subjects[line] == last) {
            continue;
        }
        last = subjects[line];
        names += (names.empty() ? "" : ", ") + last;
    }
    return names;
}

/// Keeps refreshing and shows the agents: in place on a terminal, else one block a refresh.
class Watch {
public:
    /// Without an `interval` the setting holds.
    Watch(const CommandContext& context, std::optional<Seconds> interval, bool isCompact)
        : words_(context.words),
          context_{context.machine, words_, context.output, context.errors, context.currentWords},
          interval_(interval), isCompact_(isCompact),
          preferences_(makePreferences(context.machine)),
          store_({.machine = context.machine,
                  .registrations = providerRegistry(),
                  .words = [this] { return words_; },
                  .storageTrouble = [this](const std::string& text) { tell(text); }},
                 loop_, *preferences_) {}

    int run() {
        if (context_.output.canRedraw()) {
            screen_.emplace(context_.output, STDIN_FILENO);
            loop_.onSuspension([this] { screen_->hide(); },
                               [this] {
                                   screen_->show();
                                   show();
                               });
        }
        if (screen_ && screen_->hasKeyboard()) {
            keys_ = loop_.watch(STDIN_FILENO, [this] { readKeys(); });
        }
        loop_.onResize([this] { show(); });
        const auto subscription =
            store_.observe({.willChange = {}, .didChange = [this] { show(); }});
        settingsWatch_ = watchPreferences(loop_, context_.machine, [this] { takeSettings(); });
        takeSettings(); // what was changed before the watch
        tick();
        store_.refresh(RefreshTrigger::launch);
        scheduleRefresh();
        const int status = loop_.run();
        // The terminal is itself again before the children have been waited for.
        const bool hadPage = screen_.has_value();
        screen_.reset();
        store_.abortRefresh();
        if (hadPage) {
            for (const std::string& trouble : troubles_) {
                context_.report(trouble);
            }
        }
        return status;
    }

private:
    Seconds interval() const {
        return interval_.value_or(length(valueOf(*preferences_, setting::readingInterval)));
    }

    void takeSettings() {
        const Seconds before = interval();
        preferences_->reload();
        if (interval() != before) {
            scheduleRefresh();
        }
        store_.takeSettings();
        if (Localization words = context_.currentWords(); words != words_) {
            words_ = std::move(words);
            show();
        }
    }

    void scheduleRefresh() {
        if (refreshTimer_) {
            loop_.cancel(*refreshTimer_);
        }
        refreshTimer_ = loop_.postAfter(interval(), redrawTolerance, [this] {
            store_.refresh(RefreshTrigger::timer);
            scheduleRefresh();
        });
    }

    /// Of the files. The page has the last of it until it goes, and then the terminal all.
    void tell(const std::string& trouble) {
        troubles_.push_back(singleLine(trouble));
        if (screen_) {
            show();
        } else {
            context_.report(troubles_.back());
        }
    }

    void tick() {
        show();
        if (screen_) {
            loop_.postAfter(redrawInterval, redrawTolerance, [this] { tick(); });
        }
    }

    void show() {
        const UsageState& state = store_.state();
        if (screen_) {
            draw();
        } else if (state.lastRefreshCompletedAt != shown_) {
            shown_ = state.lastRefreshCompletedAt;
            context_.output.write(block() + "\n");
        }
        if (context_.output.error()) {
            loop_.stop(ExitStatus::failed); // nobody sees it any more
        }
    }

    std::vector<AgentBlockContent> blocks(Instant now) const {
        return agentBlocks(store_.state(), now, context_.words);
    }

    VerdictLine verdict(Instant now) const {
        return verdictLine(store_.state(), now, context_.words, AgentNames::full);
    }

    std::vector<std::string> compact() const {
        const Instant now = ReferenceClock::now();
        return compactRows(blocks(now), verdict(now), context_.output, context_.words);
    }

    std::string block() const {
        if (!isCompact_) {
            return UsageView(context_.output, context_.words).text(blocks(ReferenceClock::now()));
        }
        std::string text;
        for (const std::string& row : compact()) {
            text += row + "\n";
        }
        return text;
    }

    Page page() const {
        const TerminalOutput& output = context_.output;
        const Instant now = ReferenceClock::now();
        const auto agents = blocks(now);
        const VerdictLine line = verdict(now);
        const bool fits = displayWidth(line.text) <= output.width();
        Page page;
        for (const std::string& part : wrapped(fits ? line.text : line.briefText, output.width())) {
            page.head.push_back(output.styled(TextStyle::strong, part));
        }
        if (!troubles_.empty()) {
            for (const std::string& part : wrapped(troubles_.back(), output.width())) {
                page.head.push_back(output.styled(TextStyle::attention, part));
            }
        }
        page.head.emplace_back();
        const auto lines = UsageView(output, context_.words).lines(agents);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            if (index > 0) {
                page.lines.emplace_back();
                page.subjects.emplace_back();
            }
            page.lines.insert(page.lines.end(), lines[index].begin(), lines[index].end());
            page.subjects.resize(page.lines.size(), agentName(agents[index].id, context_.words));
        }
        return page;
    }

    void draw() {
        if (isCompact_) {
            screen_->draw(compact(), {});
            return;
        }
        Page page = this->page();
        // Where there is hardly room, it is for the agents.
        if (context_.output.height() < page.head.size() + leastLines) {
            page.head.clear();
        }
        const std::size_t taken = page.head.size() + 1;
        viewLines_ = std::max(context_.output.height(), taken + 1) - taken;
        const std::size_t most =
            page.lines.size() > viewLines_ ? page.lines.size() - viewLines_ : 0;
        firstLine_ = std::min(firstLine_, most);
        const std::size_t end = std::min(firstLine_ + viewLines_, page.lines.size());
        std::vector<std::string> shown = page.head;
        shown.insert(shown.end(), page.lines.begin() + static_cast<std::ptrdiff_t>(firstLine_),
                     page.lines.begin() + static_cast<std::ptrdiff_t>(end));
        screen_->draw(shown, context_.output.styled(TextStyle::dim, foot(page, end)));
    }

    /// What is out of sight, then what the keys do as far as there is room.
    std::string foot(const Page& page, std::size_t end) const {
        const Localization& words = context_.words;
        const std::size_t width = context_.output.width();
        const auto hidden = [&](const char* key, std::size_t from, std::size_t to) {
            const auto count = static_cast<std::int64_t>(to - from);
            return count == 0
                       ? std::string()
                       : words.format(std::string(key) + (words.takesSingular(count) ? ".one" : ""),
                                      {count, namesIn(page.subjects, from, to)});
        };
        std::string text;
        bool scrolls = false;
        const auto add = [&](const std::string& part) {
            const std::string longer = text.empty() ? part : text + "  " + part;
            if (!part.empty() && (text.empty() || displayWidth(longer) <= width)) {
                text = longer;
            }
        };
        for (const std::string& part : {hidden("cli.watch.below", end, page.lines.size()),
                                        hidden("cli.watch.above", 0, firstLine_)}) {
            scrolls |= !part.empty();
            add(part);
        }
        add(words.text(scrolls ? "cli.watch.keys.scroll" : "cli.watch.keys"));
        return context_.output.cut(context_.output.shown(text), width);
    }

    void readKeys() {
        std::array<char, 64> bytes{};
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) {
            keys_.reset(); // the keyboard has gone; signals still end the program
            return;
        }
        for (const TerminalKey& key :
             decoder_.take({bytes.data(), static_cast<std::size_t>(count)})) {
            press(key);
        }
    }

    void press(const TerminalKey& key) {
        using Kind = TerminalKey::Kind;
        switch (key.kind) {
        case Kind::character:
            press(key.character);
            break;
        case Kind::up:
            scrollTo(firstLine_ > 0 ? firstLine_ - 1 : 0);
            break;
        case Kind::down:
            scrollTo(firstLine_ + 1);
            break;
        case Kind::pageUp:
            scrollTo(firstLine_ > viewLines_ ? firstLine_ - viewLines_ : 0);
            break;
        case Kind::pageDown:
            scrollTo(firstLine_ + viewLines_);
            break;
        case Kind::home:
            scrollTo(0);
            break;
        case Kind::end:
            scrollTo(std::numeric_limits<std::size_t>::max() / 2);
            break;
        }
    }

    void press(char key) {
        using Kind = TerminalKey::Kind;
        switch (key) {
        case 'q':
        case 'Q':
            loop_.stop(ExitStatus::done);
            break;
        case TerminalScreen::interrupt:
            loop_.stop(128 + SIGINT);
            break;
        case TerminalScreen::suspend:
            loop_.suspend();
            break;
        case 'r':
        case 'R':
            store_.refresh(RefreshTrigger::manual);
            break;
        case 'k':
            press({Kind::up});
            break;
        case 'j':
            press({Kind::down});
            break;
        case 'b':
            press({Kind::pageUp});
            break;
        case ' ':
            press({Kind::pageDown});
            break;
        case 'g':
            press({Kind::home});
            break;
        case 'G':
            press({Kind::end});
            break;
        default:
            break;
        }
    }

    /// As far as the page goes.
    void scrollTo(std::size_t line) {
        firstLine_ = line;
        show();
    }

    /// The foot and some lines about agents.
    static constexpr std::size_t leastLines = 5;

    Localization words_;
    const CommandContext context_; ///< with our words
    std::optional<Seconds> interval_;
    std::vector<std::string> troubles_;
    bool isCompact_;
    TerminalLoop loop_;
    std::unique_ptr<Preferences> preferences_;
    AgentUsageStore store_;
    std::unique_ptr<DescriptorWatch> keys_;
    std::unique_ptr<FileWatch> settingsWatch_;
    std::optional<MainExecutor::Timer> refreshTimer_;
    TerminalKeys decoder_;
    std::optional<Instant> shown_;
    std::size_t firstLine_ = 0;
    std::size_t viewLines_ = 1;
    std::optional<TerminalScreen> screen_; ///< goes first: the terminal is itself again at once
};

class WatchCommand final : public Subcommand {
public:
    std::string name() const override { return "watch"; }
    std::string summaryKey() const override { return "cli.watch.summary"; }
    std::string detailKey() const override { return "cli.watch.detail"; }

    void declare(CommandOptions& options) override {
        options.value("--interval", interval_, "SECONDS", "cli.watch.interval");
        options.flag("--compact", isCompact_, "cli.watch.compact");
        form_.declare(options);
    }

    std::vector<std::string> choices(const std::string& option) const override {
        return StatusForm::choices(option);
    }

    /// Followed as lines, it reads agents only where nobody else does.
    bool startsChildren() const override { return !form_.isGiven(); }

    int run(const CommandContext& context) override {
        std::optional<Seconds> interval;
        if (interval_) {
            interval =
                Seconds(static_cast<double>(integerArgument("--interval", *interval_, 1, 86'400)));
        }
        if (!form_.isGiven()) {
            return Watch(context, interval, isCompact_).run();
        }
        if (isCompact_) {
            throw WrongArguments("cli.error.noEffect", "--compact", "--format");
        }
        form_.understand(false);
        return watchStatus(context, form_, interval);
    }

private:
    std::optional<std::string> interval_;
    bool isCompact_ = false;
    StatusForm form_;
};

} // namespace

std::unique_ptr<Subcommand> makeWatchCommand() {
    return std::make_unique<WatchCommand>();
}

} // namespace vellmark
