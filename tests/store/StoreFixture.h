#pragma once

#include "platform/PreferencesFile.h"
#include "store/AgentUsageStore.h"
#include "store/StubProvider.h"
#include "support/HandTurnedExecutor.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace vellmark::tests {

/// A store over three stub agents, "codex" with a retry after 20 s, on a hand-turned clock.
class StoreFixture : public testing::Test {
protected:
    StoreFixture() { machine.applicationSupport = directory.path(); }

    /// A new run of the program: the store of the last one has gone before.
    void makeStore(std::optional<std::set<AgentProviderID>> only = std::nullopt) {
        store.reset();
        AgentUsageStore::Configuration configuration;
        configuration.machine = machine;
        configuration.registrations = {registration(codex, 20.0), registration(claude),
                                       registration(antigravity)};
        configuration.words = [] { return Localization("en", "en_US", "UTC"); };
        configuration.now = [this] { return executor.now(); };
        configuration.agents = std::move(only);
        configuration.drawingTime = drawingTime;
        configuration.storageTrouble = [this](const std::string& text) {
            troubles.push_back(text);
        };
        store = std::make_unique<AgentUsageStore>(std::move(configuration), executor, *preferences);
    }

    void TearDown() override {
        for (const auto& agent : {codex, claude, antigravity}) {
            agent->letGo();
        }
        store.reset();
    }

    const UsageState& state() const { return store->state(); }

    const AgentUsageSnapshot* snapshot(const std::shared_ptr<StubAgent>& agent) const {
        const auto found =
            std::ranges::find(state().snapshots, agent->id(), &AgentUsageSnapshot::id);
        return found == state().snapshots.end() ? nullptr : &*found;
    }
    std::optional<SnapshotSource> source(const std::shared_ptr<StubAgent>& agent) const {
        const auto* shown = snapshot(agent);
        return shown ? std::optional(shown->source) : std::nullopt;
    }

    [[nodiscard]] bool finishRefresh() {
        return executor.turnUntil([this] { return !state().isRefreshing; });
    }

    /// Refreshes and waits for the end.
    void refresh(RefreshTrigger trigger, const std::vector<AgentProviderID>& agents = {}) {
        store->refresh(trigger, agents);
        ASSERT_TRUE(finishRefresh());
    }
    /// What was read is in the files and in the state, and what is told of that in the log.
    void settle() {
        store->flush();
        executor.turn();
        store->flush();
    }
    /// A reading of Codex alone, and five minutes.
    void readCodex(double used) {
        codex->answersUsed(used, executor.now());
        refresh(RefreshTrigger::manual, {codex->id()});
        settle();
        executor.advance(Seconds(300));
    }
    /// Whether the log says that an agent is to be read once more after a time-out.
    bool isRetryAwaited() {
        const auto entries = store->activity(1);
        return std::ranges::any_of(
            entries, [](const auto& entry) { return entry.text.starts_with("Trying again"); });
    }
    /// How often the log says that files cannot be written.
    std::size_t complaints() {
        const auto entries = store->activity(1);
        return static_cast<std::size_t>(std::ranges::count_if(entries, [](const auto& entry) {
            return entry.text.starts_with("Files cannot be written");
        }));
    }

    TemporaryDirectory directory;
    Machine machine;
    HandTurnedExecutor executor;
    std::unique_ptr<Preferences> preferences = makePreferencesFile(directory / "preferences.json");
    std::shared_ptr<StubAgent> codex = std::make_shared<StubAgent>("codex");
    std::shared_ptr<StubAgent> claude = std::make_shared<StubAgent>("claude");
    std::shared_ptr<StubAgent> antigravity = std::make_shared<StubAgent>("antigravity");
    Seconds drawingTime{0};
    /// What was told of the files.
    std::vector<std::string> troubles;
    std::unique_ptr<AgentUsageStore> store;
};

} // namespace vellmark::tests
