#include "cli/UsageRefresh.h"

#include "cli/LivePage.h"
#include "cli/Subcommand.h"
#include "cli/TerminalLoop.h"
#include "cli/UsageView.h"
#include "platform/Preferences.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentUsageStore.h"
#include "text/TerminalText.h"

#include <string>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

/// The agents that the running refresh has not read yet, by name.
std::string namesBeingRead(const UsageState& state, Instant start, const Localization& words) {
    std::string names;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const bool isRead =
            snapshot.source != SnapshotSource::loading && snapshot.updatedAt >= start;
        if (!isRead) {
            names += (names.empty() ? "" : ", ") + agentName(snapshot.id, words);
        }
    }
    return names;
}

/// What a running refresh shows.
class RefreshProgress {
public:
    RefreshProgress(const CommandContext& context, bool showsFigures)
        : context_(context), start_(ReferenceClock::now()), line_(context.errors) {
        if (showsFigures && context.output.canRedraw()) {
            page_.emplace(context.output);
        }
    }

    void show(const UsageState& state) {
        const std::string names = namesBeingRead(state, start_, context_.words);
        // With the last reading there, the refresh may still have to end.
        if (names.empty()) {
            return;
        }
        const std::string text = context_.words.format("cli.usage.progress", {names});
        if (page_) {
            page_->show(figures(state, true), text);
        } else {
            line_.show(text);
        }
    }

    /// Ended before its time: the figures stay.
    void keep(const UsageState& state) {
        if (!page_) {
            return;
        }
        page_->show(figures(state, false), {});
        page_->keep();
    }

private:
    std::string figures(const UsageState& state, bool withLoading) const {
        auto blocks = agentBlocks(state, ReferenceClock::now(), context_.words);
        if (!withLoading) {
            std::erase_if(blocks, [](const AgentBlockContent& block) {
                return block.state == AgentBlockContent::State::loading;
            });
        }
        return UsageView(context_.output, context_.words).text(blocks);
    }

    const CommandContext& context_;
    Instant start_;
    ProgressLine line_;
    std::optional<LivePage> page_;
};

int refresh(AgentUsageStore& store, TerminalLoop& loop, const CommandContext& context,
            bool showsFigures) {
    RefreshProgress progress(context, showsFigures);
    const auto follow = [&] {
        if (store.state().isRefreshing) {
            progress.show(store.state());
        } else {
            loop.stop(ExitStatus::done);
        }
    };
    const auto subscription = store.observe({.willChange = {}, .didChange = follow});
    store.refresh(RefreshTrigger::manual);
    follow();
    const int status = loop.run();
    if (loop.endingSignal() != 0) {
        progress.keep(store.state());
        store.abortRefresh();
    }
    return status;
}

/// What there is to tell about the files that this refresh has written is told.
void awaitStorageNews(AgentUsageStore& store, TerminalLoop& loop) {
    store.flush();
    loop.post([&loop] { loop.stop(ExitStatus::done); });
    loop.run();
}

} // namespace

int refreshUsage(const CommandContext& context, RefreshWish wish, UsageState& state) {
    const auto preferences = makePreferences(context.machine);
    TerminalLoop loop;
    std::vector<std::string> troubles;
    AgentUsageStore store(
        {.machine = context.machine,
         .registrations = providerRegistry(),
         .words = [&context] { return context.words; },
         .agents = std::move(wish.agents),
         .way = std::move(wish.way),
         .storageTrouble = [&](const std::string& text) { troubles.push_back(text); },
         .givesMemoryBack = false},
        loop, *preferences);
    const int status = refresh(store, loop, context, wish.showsFigures);
    if (wish.show && status == ExitStatus::done) {
        wish.show(store.state());
    }
    awaitStorageNews(store, loop);
    for (const std::string& text : troubles) {
        context.report(singleLine(text));
    }
    state = store.state();
    return status;
}

std::vector<AgentBlockContent> agentBlocks(const UsageState& state, Instant now,
                                           const Localization& words) {
    std::vector<AgentBlockContent> blocks;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        blocks.push_back(agentBlockContent(snapshot, state, now, words));
    }
    return blocks;
}

} // namespace vellmark
