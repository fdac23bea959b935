#include "screenshots/SampleStates.h"

#include <algorithm>
#include <map>

namespace vellmark::samples {

namespace {

constexpr double minute = 60;
constexpr double hour = 60 * minute;
constexpr double day = 24 * hour;
constexpr double sessionMinutes = 5 * 60;
constexpr double weekMinutes = 7 * 24 * 60;

Instant in(double seconds) {
    return now() + Seconds(seconds);
}

UsageWindow window(std::string id, double left, double minutes, double resetsIn) {
    return {std::move(id), 100 - left, minutes, in(resetsIn)};
}

AgentUsageSnapshot agent(AgentProviderID id, std::string plan, std::vector<UsageWindow> windows) {
    AgentUsageSnapshot snapshot;
    snapshot.id = std::move(id);
    snapshot.accountLabel = "name@example.org";
    if (!plan.empty()) {
        snapshot.plan = std::move(plan);
    }
    snapshot.windows = std::move(windows);
    snapshot.source = SnapshotSource::live;
    snapshot.updatedAt = in(-2 * minute);
    return snapshot;
}

AgentUsageSnapshot codex() {
    return agent(AgentProviderID::codex(), "Plus",
                 {window("session", 78, sessionMinutes, 87 * minute + 20),
                  window("weekly", 71, weekMinutes, 3 * day + 18 * hour + 22 * minute)});
}

AgentUsageSnapshot claude() {
    const double saturday = day + 19 * hour + 12 * minute;
    return agent(AgentProviderID::claude(), "Max 20x",
                 {window("session", 46, sessionMinutes, 2 * hour + 12 * minute),
                  window("weekly", 29, weekMinutes, saturday),
                  window("fable-weekly", 16, weekMinutes, saturday)});
}

AgentUsageSnapshot antigravity() {
    const double tuesday = 4 * day + 11 * hour + 12 * minute;
    return agent(AgentProviderID::antigravity(), "",
                 {window("pool:Gemini Models|5h", 7, sessionMinutes, 86 * minute + 20),
                  window("pool:Gemini Models|weekly", 70, weekMinutes, tuesday),
                  window("pool:Claude and GPT Models|weekly", 88, weekMinutes, tuesday)});
}

/// The two windows of Claude that last.
AgentUsageSnapshot calmClaude() {
    AgentUsageSnapshot snapshot = claude();
    snapshot.windows.pop_back();
    return snapshot;
}

UsageState stateOf(std::vector<AgentUsageSnapshot> snapshots) {
    UsageState state;
    for (const AgentUsageSnapshot& snapshot : snapshots) {
        state.enabledProviderIDs.insert(snapshot.id);
        state.providerOrder.push_back(snapshot.id);
        if (!snapshot.error && snapshot.source == SnapshotSource::live) {
            state.lastSuccess[snapshot.id] = snapshot.updatedAt;
        }
    }
    state.snapshots = std::move(snapshots);
    state.lastRefreshCompletedAt = in(-2 * minute);
    return state;
}

AgentUsageSnapshot failure(AgentProviderID id, UsageProviderError error) {
    AgentUsageSnapshot snapshot;
    snapshot.id = std::move(id);
    snapshot.source = SnapshotSource::stale;
    snapshot.updatedAt = in(-2 * minute);
    snapshot.error = std::move(error);
    return snapshot;
}

} // namespace

Instant now() {
    return instantFromUnixSeconds(1763646480);
}

Localization words(const std::string& languageCode) {
    static const std::map<std::string, const char*> regions{
        {"de", "de_DE"}, {"es", "es_ES"}, {"fr", "fr_FR"}, {"it", "it_IT"}};
    const auto region = regions.find(languageCode);
    return Localization(languageCode, region == regions.end() ? "en_US" : region->second,
                        "Europe/Berlin");
}

UsageState normal() {
    return stateOf({codex(), claude(), antigravity()});
}

UsageState credited() {
    AgentUsageSnapshot snapshot = claude();
    snapshot.credit = CreditInfo::line("$3.20 / $20.00 spent");
    return stateOf({codex(), snapshot, antigravity()});
}

UsageState healthy() {
    return stateOf({codex(), calmClaude()});
}

UsageState loading() {
    UsageState state =
        stateOf({{.id = AgentProviderID::codex()}, {.id = AgentProviderID::claude()}});
    state.isRefreshing = true;
    state.reading = state.enabledProviderIDs;
    state.lastRefreshCompletedAt.reset();
    return state;
}

UsageState refreshing() {
    UsageState state = normal();
    state.isRefreshing = true;
    state.refreshProgress = 1.0 / 3;
    return state;
}

UsageState stale() {
    AgentUsageSnapshot old = codex();
    old.source = SnapshotSource::stale;
    old.error = UsageProviderError::timeout("Codex");
    old.windows.front().resetsAt = in(-33 * minute);
    UsageState state = stateOf({old, calmClaude()});
    state.lastSuccess[old.id] = in(-34 * minute);
    return state;
}

UsageState overdue() {
    UsageState state = stateOf({codex(), calmClaude()});
    AgentUsageSnapshot& old = state.snapshots.front();
    old.source = SnapshotSource::stale;
    old.error = UsageProviderError::timeout("Codex");
    for (UsageWindow& window : old.windows) {
        window.resetsAt = in(-3 * hour);
    }
    state.lastSuccess[old.id] = in(-11 * hour);
    return state;
}

UsageState allFailed() {
    UsageState state = stateOf({codex(), antigravity()});
    for (AgentUsageSnapshot& snapshot : state.snapshots) {
        snapshot.source = SnapshotSource::stale;
        state.lastSuccess[snapshot.id] = in(-34 * minute);
    }
    state.snapshots[0].error = UsageProviderError::timeout("Codex");
    state.snapshots[1].error = UsageProviderError::antigravityReadFailed("no connection");
    state.restsUntil[AgentProviderID::antigravity()] = in(18 * minute);
    return state;
}

UsageState usedUp() {
    AgentUsageSnapshot spent = claude();
    spent.windows[1].usedPercent = 100;
    return stateOf({codex(), spent});
}

UsageState incomplete() {
    AgentUsageSnapshot half = claude();
    half.isIncomplete = true;
    half.windows[2].readAt = in(-48 * minute);
    return stateOf({codex(), half});
}

UsageState failed() {
    AgentUsageSnapshot calm = antigravity();
    calm.windows.erase(calm.windows.begin());
    return stateOf(
        {failure(AgentProviderID::codex(), UsageProviderError::executableMissing("Codex CLI")),
         failure(AgentProviderID::claude(),
                 UsageProviderError(UsageProviderError::Kind::claudeNotLoggedIn)),
         calm});
}

UsageState noAgents() {
    return {};
}

UsageState unwritten() {
    UsageState state = normal();
    state.unwritten = {.kind = StorageTrouble::Kind::foreign,
                       .error = {},
                       .file = "/home/alexandra/.local/share/Vellmark/usage-history.json",
                       .part = {}};
    return state;
}

UsageState balances() {
    AgentUsageSnapshot snapshot = calmClaude();
    snapshot.balances = {{"credits", 16.8, "USD", 20.0}};
    snapshot.credit = CreditInfo::line("$3.20 / $20.00 spent");
    AgentUsageSnapshot credited = codex();
    credited.credit = CreditInfo::available();
    return stateOf({credited, snapshot});
}

UsageState refusing() {
    AgentUsageSnapshot snapshot = codex();
    snapshot.plan = "Prolite";
    snapshot.windows.front().usedPercent = 100;
    const auto addLimit = [&snapshot](const char* side, double left, double minutes, double in) {
        snapshot.windows.push_back(window(std::string("limit:spark|") + side, left, minutes, in));
        snapshot.windows.back().label = "GPT-5.3-Codex-Spark";
    };
    addLimit("primary", 95, sessionMinutes, 3 * hour);
    addLimit("secondary", 98, weekMinutes, 6 * day);
    snapshot.allowance = UsageAllowance{.ordinaryUsageAllowed = false,
                                        .reachedType = "rate_limit_reached",
                                        .bankedResets = 2,
                                        .bankedResetExpiresAt = in(9 * day)};
    return stateOf({snapshot});
}

UsageState longTexts() {
    AgentUsageSnapshot snapshot = antigravity();
    snapshot.plan = "Ultra für Unternehmen mit erweitertem Kontingent";
    snapshot.accountLabel = "vorname.nachname-doppelname@abteilung.unternehmen.example.org";
    UsageWindow preview{"Experimental Preview Models · monatlich", 0, std::nullopt, std::nullopt};
    snapshot.windows = {preview,
                        window("pool:Claude and GPT Models|5h", 24, sessionMinutes, 102 * minute)};
    std::string reason = "Antwort des Programms:";
    for (int repetition = 0; repetition < 12; ++repetition) {
        reason += " unerwartete Ausgabe in Zeile " + std::to_string(40 + repetition) + ",";
    }
    return stateOf(
        {codex(), snapshot,
         failure(AgentProviderID("wordy"), UsageProviderError::other(reason + " Ende.")),
         failure(AgentProviderID("unbroken"), UsageProviderError::other(std::string(300, 'x')))});
}

UsageState inspected() {
    UsageState state = normal();
    AgentUsageSnapshot& snapshot = state.snapshots[1];
    snapshot.balances = {{"credits", 16.8, "USD", 20.0}};
    snapshot.notes = {{SnapshotNote::ReadingWay{"session", 6400}},
                      {SnapshotNote::ClaudeTiming{.waitMs = 0,
                                                  .startMs = 1100,
                                                  .statusMs = 600,
                                                  .usageMs = 2900,
                                                  .quietMs = 1200,
                                                  .endMs = 600}}};
    return state;
}

UsageState readAlone() {
    UsageState state = inspected();
    state.isRefreshing = true;
    state.reading = {AgentProviderID::claude()};
    return state;
}

UsageState oneWindow() {
    AgentUsageSnapshot snapshot = codex();
    snapshot.windows.pop_back();
    UsageState state = stateOf({snapshot});
    state.readByHandOnly = {snapshot.id};
    state.readingTook[snapshot.id] = Seconds(1.4);
    return state;
}

AgentFacts facts(const AgentProviderID& agent) {
    if (agent == AgentProviderID::claude()) {
        return {.id = agent,
                .toolPath = "/home/name/.local/bin/claude",
                .toolVersion = "2.1.170 (Claude Code)",
                .loggedIn = true};
    }
    if (agent == AgentProviderID::codex()) {
        return {.id = agent,
                .toolPath = "/opt/homebrew/Caskroom/codex/0.58.0/codex-x86_64-apple-darwin",
                .toolVersion = "codex-cli 0.58.0",
                .loggedIn = true};
    }
    return {
        .id = agent, .toolPath = "/usr/local/bin/agy", .toolVersion = "1.1.11", .loggedIn = false};
}

UsageState manyAgents() {
    std::vector<AgentUsageSnapshot> snapshots{codex(), claude(), antigravity()};
    for (const char* name : {"helper", "reviewer", "planner"}) {
        AgentUsageSnapshot more = codex();
        more.id = AgentProviderID(name);
        snapshots.push_back(more);
    }
    return stateOf(std::move(snapshots));
}

} // namespace vellmark::samples
