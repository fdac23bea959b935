#include "store/AgentUsageStore.h"

#include "platform/UnusedMemory.h"
#include "store/ActivityLines.h"
#include "store/ActivityTexts.h"
#include "store/AgentReadings.h"
#include "store/AgentSettings.h"
#include "store/AppSettings.h"
#include "store/PlausibleFigures.h"
#include "store/ReadingSchedule.h"
#include "store/ReadingTime.h"
#include "store/RefreshRun.h"
#include "store/StateObservers.h"
#include "store/StatusLineReadings.h"
#include "store/StoreFiles.h"
#include "store/UsageFetcher.h"
#include "store/UsageHistory.h"

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

constexpr Seconds windowRefreshPause{60};
/// How far back a forecast looks for a recent pace.
constexpr Seconds recentSpan{2 * 3600};

} // namespace

struct AgentUsageStore::State {
    State(Configuration configuration, MainExecutor& mainExecutor, Preferences& preferences);

    Localization words() const { return config.words(); }
    Instant now() const { return config.now(); }

    /// Puts an entry, dated now, into the activity log. Part of a change: called inside `around`.
    void note(ActivityEntry entry);
    void note(std::vector<ActivityEntry> entries);
    void noteTrouble(StoreFiles::File file, const StorageTrouble::News& news);
    /// The settings are written by whoever changes them; this checks whether that worked.
    void noteSettings();

    bool mayStart(RefreshTrigger trigger) const;
    bool isWithinPause(Instant ended) const;
    bool wasReadJustNow(const AgentProviderID& id) const;
    std::vector<AgentProviderID> askedFor(RefreshTrigger trigger,
                                          const std::vector<AgentProviderID>& named) const;
    bool mayRead(const AgentProviderID& id, RefreshTrigger trigger) const;
    void begin(RefreshTrigger trigger, const std::vector<AgentProviderID>& ids);
    void join(RefreshTrigger trigger, const std::vector<AgentProviderID>& ids);
    void startReading(RefreshTrigger trigger, const std::vector<AgentProviderID>& ids);
    void land(const AgentProviderID& id, const FetchOutcome& outcome, Seconds elapsed);
    void takeReading(AgentUsageSnapshot snapshot, Seconds elapsed);
    void takeKeptFigures(AgentUsageSnapshot snapshot);
    void recordNewFigures(const AgentUsageSnapshot& snapshot);
    void noteReading(const AgentUsageSnapshot& snapshot, Seconds elapsed);
    void takeFailure(const AgentProviderID& id, UsageProviderError error);
    void finishIfDone();

    RefreshRun::Agent madeAgent(const ProviderRegistration& registration);
    ReadingOptions readingOptions(const ProviderDescriptor& agent) const;
    std::vector<AgentProviderID> takeReadingSettings();
    void dropReading(const AgentProviderID& id);
    void show(const AgentProviderID& id, bool enabled);
    void arrange(std::vector<AgentProviderID> order);
    void takeLastSnapshots();
    void takeStatusLine();
    /// Makes `state.snapshots` of what is known, for the enabled agents in their order.
    void publishSnapshots();
    void publishSchedule();
    void publishRecentPoints();

    Configuration config;
    MainExecutor& executor;
    Preferences& preferences;
    AgentSettings settings;
    StorageTrouble settingsTrouble;
    StateObservers observers;
    UsageState state;
    std::map<AgentProviderID, RefreshRun::Agent> agents;
    std::map<AgentProviderID, ReadingOptions> options; ///< with which `agents` were made
    AgentReadings readings;
    StatusLineReadings statusLine;
    std::vector<UsageWindow> toldWindows; ///< Claude's, by its sessions
    ReadingSchedule schedule;
    std::map<AgentProviderID, int> failedAttempts;
    std::map<AgentProviderID, Instant> lastEnds; ///< of readings, good or bad
    std::set<AgentProviderID> readWell;          ///< by the running refresh
    bool isOfAllAgents = false;                  ///< the running refresh
    std::map<StoreFiles::File, StorageTrouble::News> failingFiles;
    Instant heldSince{};
    bool isTerminating = false;
    StoreFiles files;
    UsageFetcher fetcher;
    std::unique_ptr<RefreshRun> run; ///< destroyed first: it drops its tickets at the fetcher
};

AgentUsageStore::State::State(Configuration configuration, MainExecutor& mainExecutor,
                              Preferences& userPreferences)
    : config(std::move(configuration)), executor(mainExecutor), preferences(userPreferences),
      settings(preferences, config.registrations),
      settingsTrouble(config.machine.configuration / "Vellmark/preferences.json"),
      statusLine(config.machine.statusLineFile()),
      files(config.machine, mainExecutor, config.now(), words().timeZone(),
            {.historyChanged =
                 [this] {
                     observers.around([this] {
                         ++state.historyRevision;
                         publishRecentPoints();
                     });
                 },
             .trouble = [this](StoreFiles::File file,
                               const StorageTrouble::News& news) { noteTrouble(file, news); }}),
      fetcher(mainExecutor, config.machine.home.string()) {
    for (const ProviderRegistration& registration : config.registrations) {
        agents.emplace(registration.descriptor.id, madeAgent(registration));
    }
    settings.applyExecutables(config.machine);
    state.firstFigure = valueOf(preferences, setting::firstFigure);
    state.providerOrder = settings.order();
    state.enabledProviderIDs = config.agents ? *config.agents : settings.enabled();
    takeLastSnapshots();
    toldWindows = newestWindows(statusLine.read(), now());
    publishSnapshots();
}

ReadingOptions AgentUsageStore::State::readingOptions(const ProviderDescriptor& agent) const {
    ReadingOptions wanted = settings.readingOptions(agent);
    if (config.way &&
        std::ranges::find(agent.readingWays, *config.way) != agent.readingWays.end()) {
        wanted.way = *config.way;
    }
    return wanted;
}

RefreshRun::Agent AgentUsageStore::State::madeAgent(const ProviderRegistration& registration) {
    const ProviderDescriptor& descriptor = registration.descriptor;
    const ReadingOptions& wanted = options[descriptor.id] = readingOptions(descriptor);
    RefreshRun::Agent agent{descriptor.id, words().text(descriptor.nameKey),
                            registration.make(config.machine, wanted), std::nullopt};
    if (descriptor.timeoutRetryDelaySeconds) {
        agent.timeoutRetryDelay = Seconds(*descriptor.timeoutRetryDelaySeconds);
    }
    return agent;
}

// --- settings

/// The agents whose way of reading or whose program has changed.
std::vector<AgentProviderID> AgentUsageStore::State::takeReadingSettings() {
    const std::set<AgentProviderID> moved = settings.applyExecutables(config.machine);
    std::vector<AgentProviderID> changed;
    for (const ProviderRegistration& registration : config.registrations) {
        const AgentProviderID& id = registration.descriptor.id;
        if (moved.contains(id) || options.at(id) != readingOptions(registration.descriptor)) {
            // What a provider knows about its program does not hold for another one.
            agents.at(id) = madeAgent(registration);
            changed.push_back(id);
        }
    }
    return changed;
}

void AgentUsageStore::State::dropReading(const AgentProviderID& id) {
    if (run) {
        readWell.erase(id);
        run->drop(id);
        state.refreshProgress = run->progress();
    }
    readings.abandon(id);
}

void AgentUsageStore::State::show(const AgentProviderID& id, bool enabled) {
    observers.around([&] {
        note(ActivityTexts::agentSwitched(id, enabled, words()));
        if (enabled) {
            state.enabledProviderIDs.insert(id);
        } else {
            state.enabledProviderIDs.erase(id);
            dropReading(id);
        }
        publishSnapshots();
    });
}

void AgentUsageStore::State::arrange(std::vector<AgentProviderID> order) {
    observers.around([&] {
        note(ActivityTexts::orderChanged(order, words()));
        state.providerOrder = std::move(order);
        publishSnapshots();
    });
}

void AgentUsageStore::State::takeLastSnapshots() {
    for (AgentUsageSnapshot& snapshot : files.lastSnapshots()) {
        removeImplausibleFigures(snapshot, now());
        state.lastSuccess[snapshot.id] = snapshot.updatedAt;
        readings.restore(std::move(snapshot));
    }
}

void AgentUsageStore::State::takeStatusLine() {
    std::vector<UsageWindow> told = newestWindows(statusLine.read(), now());
    if (told == toldWindows) {
        return;
    }
    const bool isShown = state.enabledProviderIDs.contains(AgentProviderID::claude());
    for (const UsageWindow& window : told) {
        if (isShown && std::ranges::find(toldWindows, window) == toldWindows.end()) {
            AgentUsageSnapshot reading;
            reading.id = AgentProviderID::claude();
            reading.source = SnapshotSource::live;
            reading.updatedAt = *window.readAt;
            reading.windows.push_back(window);
            files.record(std::move(reading));
        }
    }
    observers.around([&] {
        toldWindows = std::move(told);
        publishSnapshots();
        publishRecentPoints();
    });
}

// --- the log

void AgentUsageStore::State::note(ActivityEntry entry) {
    entry.time = now();
    files.log(std::move(entry), words().timeZone());
    ++state.activityRevision;
}

void AgentUsageStore::State::note(std::vector<ActivityEntry> entries) {
    for (ActivityEntry& entry : entries) {
        note(std::move(entry));
    }
}

void AgentUsageStore::State::noteTrouble(StoreFiles::File file, const StorageTrouble::News& news) {
    using Kind = StorageTrouble::Kind;
    const auto isOf = [](Kind kind) {
        return [kind](const auto& failing) { return failing.second.kind == kind; };
    };
    const auto failsAlike = [&](const auto& failing) { return failing.second.error == news.error; };
    // A full disk fails every file: one entry says so, one when it is for another reason, and one
    // that it is over.
    bool isTold = !news.isRepeated;
    if (news.kind == Kind::recovered) {
        isTold =
            failingFiles.erase(file) > 0 && std::ranges::all_of(failingFiles, isOf(Kind::foreign));
    } else if (StorageTrouble::lasts(news.kind)) {
        const auto earlier = failingFiles.find(file);
        const bool isAnotherReason = earlier != failingFiles.end() &&
                                     earlier->second.kind == Kind::failed &&
                                     std::ranges::none_of(failingFiles, failsAlike);
        isTold &= news.kind != Kind::failed || isAnotherReason ||
                  std::ranges::none_of(failingFiles, isOf(Kind::failed));
        failingFiles.insert_or_assign(file, news);
    }
    // What fails now counts more than a history that is left alone for good.
    const auto failed = std::ranges::find_if(failingFiles, isOf(Kind::failed));
    const auto worst = failed != failingFiles.end() ? failed : failingFiles.begin();
    ActivityEntry entry = ActivityTexts::storageTrouble(news, words());
    if (isTold && news.kind != Kind::recovered) {
        config.storageTrouble(entry.text);
    }
    observers.around([&] {
        state.unwritten = worst != failingFiles.end() ? std::optional(worst->second) : std::nullopt;
        if (isTold) {
            note(std::move(entry));
        }
    });
}

void AgentUsageStore::State::noteSettings() {
    const auto error = preferences.writeError();
    error ? settingsTrouble.failed(*error) : settingsTrouble.worked();
    while (const auto news = settingsTrouble.takeNews()) {
        noteTrouble(StoreFiles::File::settings, *news);
    }
}

// --- refreshing

bool AgentUsageStore::State::mayStart(RefreshTrigger trigger) const {
    if (isTerminating) {
        return false;
    }
    const bool automatic = trigger == RefreshTrigger::timer || trigger == RefreshTrigger::window;
    // A clock that was set back since the hold began makes the hold void, not longer.
    if (automatic && state.automaticHoldUntil && now() < *state.automaticHoldUntil &&
        now() >= heldSince) {
        return false;
    }
    return trigger != RefreshTrigger::window || !state.lastRefreshCompletedAt ||
           !isWithinPause(*state.lastRefreshCompletedAt);
}

/// Whether what was read at `ended` is still too recent to be read again because a window opens.
bool AgentUsageStore::State::isWithinPause(Instant ended) const {
    const Seconds age = now() - ended;
    return age >= Seconds(0) && age < windowRefreshPause; // the clock may have been set back
}

bool AgentUsageStore::State::wasReadJustNow(const AgentProviderID& id) const {
    const auto ended = lastEnds.find(id);
    return ended != lastEnds.end() && isWithinPause(ended->second);
}

/// Whether the agent may be read now for this reason.
bool AgentUsageStore::State::mayRead(const AgentProviderID& id, RefreshTrigger trigger) const {
    const bool isRoutine = trigger == RefreshTrigger::timer || trigger == RefreshTrigger::window;
    if (isRoutine && !schedule.isDue(id, now())) {
        return false;
    }
    if (trigger == RefreshTrigger::window && wasReadJustNow(id)) {
        return false;
    }
    return trigger == RefreshTrigger::manual || agents.at(id).provider->pace().automatic;
}

std::vector<AgentProviderID>
AgentUsageStore::State::askedFor(RefreshTrigger trigger,
                                 const std::vector<AgentProviderID>& named) const {
    std::vector<AgentProviderID> asked;
    for (const AgentProviderID& id : state.providerOrder) {
        const bool wanted = named.empty() || std::ranges::find(named, id) != named.end();
        if (wanted && state.enabledProviderIDs.contains(id) && mayRead(id, trigger)) {
            asked.push_back(id);
        }
    }
    return asked;
}

void AgentUsageStore::State::begin(RefreshTrigger trigger,
                                   const std::vector<AgentProviderID>& ids) {
    readWell.clear();
    RefreshRun::Callbacks callbacks;
    callbacks.ended = [this](const AgentProviderID& id, const FetchOutcome& outcome,
                             Seconds elapsed) { land(id, outcome, elapsed); };
    callbacks.willRetry = [this](const AgentProviderID& id, Seconds delay) {
        observers.around([&] { note(ActivityTexts::agentRetried(id, delay, words())); });
    };
    observers.around([&] {
        note(ActivityTexts::refreshStarted(trigger, words()));
        run = std::make_unique<RefreshRun>(trigger, now(), fetcher, executor, std::move(callbacks));
        startReading(trigger, ids);
    });
}

void AgentUsageStore::State::join(RefreshTrigger trigger, const std::vector<AgentProviderID>& ids) {
    std::vector<AgentProviderID> missing;
    for (const AgentProviderID& id : ids) {
        // Even one that this refresh has already read: whoever asks now wants to know how things
        // are now, whatever holds up another agent.
        if (!run->isReading(id)) {
            missing.push_back(id);
        }
    }
    if (!missing.empty()) {
        observers.around([&] { startReading(trigger, missing); });
    }
}

void AgentUsageStore::State::startReading(RefreshTrigger trigger,
                                          const std::vector<AgentProviderID>& ids) {
    const auto occasion = trigger == RefreshTrigger::manual ? UsageFetcher::Occasion::byHand
                                                            : UsageFetcher::Occasion::automatic;
    const bool isDrawing = trigger == RefreshTrigger::launch || trigger == RefreshTrigger::window;
    const Seconds delay = isDrawing ? config.drawingTime : Seconds(0);
    for (const AgentProviderID& id : ids) {
        readWell.erase(id); // by an earlier reading of this refresh
        run->start(agents.at(id), occasion, delay);
        schedule.attempted(id, now());
        readings.attempt(id, now());
    }
    state.isRefreshing = true;
    state.refreshProgress = run->progress();
    publishSnapshots();
}

void AgentUsageStore::State::land(const AgentProviderID& id, const FetchOutcome& outcome,
                                  Seconds elapsed) {
    lastEnds[id] = now();
    if (const auto* snapshot = std::get_if<AgentUsageSnapshot>(&outcome)) {
        AgentUsageSnapshot reading = *snapshot;
        reading.id = id;
        observers.around([&] {
            for (const ImplausibleFigure& figure : removeImplausibleFigures(reading, now())) {
                note(ActivityTexts::implausible(id, figure, words()));
            }
        });
        takeReading(std::move(reading), elapsed);
    } else if (const auto* error = std::get_if<UsageProviderError>(&outcome)) {
        takeFailure(id, *error);
    } else {
        const std::string& message = std::get<UnexpectedFault>(outcome).message;
        takeFailure(id, UsageProviderError::other(message.empty() ? words().text("log.agent.fault")
                                                                  : message));
    }
    finishIfDone();
}

void AgentUsageStore::State::takeReading(AgentUsageSnapshot snapshot, Seconds elapsed) {
    if (snapshot.source == SnapshotSource::stale && snapshot.error) {
        takeKeptFigures(std::move(snapshot));
        return;
    }
    snapshot.source = SnapshotSource::live;
    snapshot.error.reset();
    const AgentProviderID id = snapshot.id;
    const auto registered = std::ranges::find(config.registrations, id,
                                              [](const auto& one) { return one.descriptor.id; });
    readings.keepAbsentWindows(snapshot, registered->descriptor.remembersWindow);
    readWell.insert(id);
    schedule.succeeded(id, agents.at(id).provider->pace());
    recordNewFigures(snapshot);
    observers.around([&] {
        noteReading(snapshot, elapsed);
        state.lastSuccess[id] = snapshot.updatedAt;
        state.readingTook[id] = elapsed;
        state.refreshProgress = run->progress();
        readings.succeed(std::move(snapshot));
        // Not at the refresh's end: the program may not live to see it.
        files.save(readings.lastGood(), now());
        publishSnapshots();
        publishRecentPoints();
    });
}

/// The history holds what was read, once, at the time at which it was read.
void AgentUsageStore::State::recordNewFigures(const AgentUsageSnapshot& snapshot) {
    const AgentUsageSnapshot* const last = readings.lastGood(snapshot.id);
    if (last && last->updatedAt == snapshot.updatedAt) {
        return; // the agent repeats itself
    }
    AgentUsageSnapshot fresh = snapshot;
    std::erase_if(fresh.windows,
                  [](const UsageWindow& window) { return window.readAt.has_value(); });
    files.record(std::move(fresh));
}

/// The attempt failed, but the agent's CLI had figures of its own, which may be newer than ours.
void AgentUsageStore::State::takeKeptFigures(AgentUsageSnapshot snapshot) {
    const AgentProviderID id = snapshot.id;
    ++failedAttempts[id];
    schedule.failed(id, agents.at(id).provider->pace(), snapshot.error->isOfService());
    observers.around([&] {
        note(ActivityTexts::agentFailed(id, *snapshot.error, words()));
        note(ActivityTexts::notes(snapshot, words()));
        state.refreshProgress = run->progress();
        readings.fallBack(std::move(snapshot), now());
        state.lastSuccess[id] = readings.lastGood(id)->updatedAt;
        files.save(readings.lastGood(), now());
        publishSnapshots();
        publishRecentPoints();
    });
}

void AgentUsageStore::State::noteReading(const AgentUsageSnapshot& snapshot, Seconds elapsed) {
    if (const auto failed = failedAttempts.extract(snapshot.id)) {
        note(ActivityTexts::agentRecovered(snapshot.id, failed.mapped(), words()));
    }
    note(ActivityTexts::agentRead(snapshot, elapsed, words()));
    note(ActivityTexts::turnedCritical(readings.lastGood(snapshot.id), snapshot, now(), words()));
    note(ActivityTexts::allowanceChanged(readings.lastGood(snapshot.id), snapshot, words()));
    note(ActivityTexts::notes(snapshot, words()));
}

void AgentUsageStore::State::takeFailure(const AgentProviderID& id, UsageProviderError error) {
    ++failedAttempts[id];
    schedule.failed(id, agents.at(id).provider->pace(), error.isOfService());
    observers.around([&] {
        note(ActivityTexts::agentFailed(id, error, words()));
        state.refreshProgress = run->progress();
        readings.fail(id, std::move(error), now());
        publishSnapshots();
    });
}

void AgentUsageStore::State::finishIfDone() {
    if (!run || !run->isDone()) {
        return;
    }
    observers.around([&] {
        note(ActivityTexts::refreshFinished(run->trigger(), readWell.size(), run->endedCount(),
                                            now() - run->startedAt(), words()));
        run.reset();
        state.isRefreshing = false;
        state.refreshProgress = 1;
        if (isOfAllAgents) {
            state.lastRefreshCompletedAt = now();
        }
    });
    // By the next turn the agents' output has been freed; the memory it took is not needed soon.
    if (config.givesMemoryBack) {
        executor.post(releaseUnusedMemory);
    }
}

void AgentUsageStore::State::publishSnapshots() {
    state.snapshots = readings.shown(state.providerOrder, state.enabledProviderIDs);
    for (AgentUsageSnapshot& snapshot : state.snapshots) {
        if (snapshot.id == AgentProviderID::claude()) {
            takeNewerWindows(snapshot, toldWindows, readingTimeOf(state, snapshot));
        }
    }
    state.reading.clear();
    for (const AgentProviderID& id : state.providerOrder) {
        if (run && run->isReading(id)) {
            state.reading.insert(id);
        }
    }
    publishSchedule();
}

void AgentUsageStore::State::publishSchedule() {
    state.restsUntil.clear();
    state.readByHandOnly.clear();
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        if (const auto end = schedule.restsUntil(snapshot.id, now())) {
            state.restsUntil[snapshot.id] = *end;
        }
        if (!agents.at(snapshot.id).provider->pace().automatic) {
            state.readByHandOnly.insert(snapshot.id);
        }
    }
}

void AgentUsageStore::State::publishRecentPoints() {
    state.recentPoints.clear();
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        for (const UsageWindow& window : snapshot.windows) {
            WindowKey key(snapshot.id, window.id);
            auto points = files.history().recent(key, now() - recentSpan, now());
            if (!points.empty()) {
                state.recentPoints.emplace(std::move(key), std::move(points));
            }
        }
    }
}

// --- the public face

AgentUsageStore::AgentUsageStore(Configuration configuration, MainExecutor& executor,
                                 Preferences& preferences)
    : d_(std::make_unique<State>(std::move(configuration), executor, preferences)) {}

AgentUsageStore::~AgentUsageStore() = default;

const UsageState& AgentUsageStore::state() const {
    return d_->state;
}

std::shared_ptr<AgentUsageStore::Subscription> AgentUsageStore::observe(Observer observer) {
    return d_->observers.add(std::move(observer));
}

void AgentUsageStore::refresh(RefreshTrigger trigger, const std::vector<AgentProviderID>& agents) {
    if (!d_->mayStart(trigger)) {
        return;
    }
    const auto asked = d_->askedFor(trigger, agents);
    const bool asksForAll = agents.empty() || asked.size() == d_->state.enabledProviderIDs.size();
    d_->isOfAllAgents = asksForAll || (d_->run && d_->isOfAllAgents);
    if (d_->run) {
        d_->join(trigger, asked);
    } else if (!asked.empty()) {
        d_->begin(trigger, asked);
    }
    // Not before: who waits for the end of the refresh would take what is published for it.
    d_->preferences.retry();
    d_->noteSettings();
}

void AgentUsageStore::abortRefresh() {
    d_->isTerminating = true;
    if (!d_->run) {
        return;
    }
    d_->observers.around([&] {
        d_->note(ActivityTexts::refreshAborted(d_->words()));
        d_->run.reset();
        d_->state.isRefreshing = false;
        d_->readings.abandonAll();
        d_->publishSnapshots();
    });
}

void AgentUsageStore::setAutomaticHoldUntil(std::optional<Instant> instant) {
    d_->heldSince = d_->now();
    d_->observers.around([&] {
        d_->state.automaticHoldUntil = instant;
        if (instant) {
            d_->note(ActivityTexts::woke(*instant - d_->now(), d_->words()));
        }
    });
}

void AgentUsageStore::setEnabled(const AgentProviderID& id, bool enabled) {
    if (!d_->settings.isRegistered(id) || d_->state.enabledProviderIDs.contains(id) == enabled) {
        return;
    }
    d_->settings.setEnabled(id, enabled);
    d_->noteSettings();
    d_->show(id, enabled);
    if (enabled) {
        refresh(RefreshTrigger::settings, {id});
    } else {
        d_->finishIfDone();
    }
}

void AgentUsageStore::setProviderOrder(std::vector<AgentProviderID> order) {
    order = d_->settings.completed(order);
    if (order == d_->state.providerOrder) {
        return;
    }
    d_->settings.setOrder(order);
    d_->noteSettings();
    d_->arrange(std::move(order));
}

void AgentUsageStore::takeSettings() {
    std::vector<AgentProviderID> toRead;
    for (const AgentProviderID& id : d_->takeReadingSettings()) {
        if (d_->state.enabledProviderIDs.contains(id)) {
            d_->observers.around([&] {
                d_->dropReading(id);
                d_->publishSnapshots();
            });
            toRead.push_back(id);
        }
    }
    if (const auto first = valueOf(d_->preferences, setting::firstFigure);
        first != d_->state.firstFigure) {
        d_->observers.around([&] { d_->state.firstFigure = first; });
    }
    if (auto order = d_->settings.order(); order != d_->state.providerOrder) {
        d_->arrange(std::move(order));
    }
    if (!d_->config.agents) {
        const std::set<AgentProviderID> enabled = d_->settings.enabled();
        for (const AgentProviderID& id : d_->state.providerOrder) {
            if (enabled.contains(id) == d_->state.enabledProviderIDs.contains(id)) {
                continue;
            }
            d_->show(id, enabled.contains(id));
            if (enabled.contains(id)) {
                toRead.push_back(id);
            } else {
                std::erase(toRead, id);
            }
        }
    }
    d_->noteSettings();
    d_->finishIfDone();
    if (!toRead.empty()) {
        refresh(RefreshTrigger::settings, toRead);
    }
}

void AgentUsageStore::takeStatusLine() {
    d_->takeStatusLine();
}

void AgentUsageStore::deleteHistory(std::function<void(std::error_code)> done) {
    d_->files.deleteHistory([d = d_.get(), done = std::move(done)](std::error_code error) {
        if (!error) {
            d->observers.around([&] { d->note(ActivityTexts::historyDeleted(d->words())); });
        }
        done(error);
    });
}

void AgentUsageStore::discardDeletedHistory() {
    d_->files.discardDeletedHistory();
}

void AgentUsageStore::logActivity(ActivityEntry entry) {
    d_->observers.around([&] { d_->note(std::move(entry)); });
}

class AgentUsageStore::ActivitySubscription {
public:
    explicit ActivitySubscription(std::shared_ptr<StoreFiles::Follower> follower)
        : follower_(std::move(follower)) {}

private:
    std::shared_ptr<StoreFiles::Follower> follower_;
};

std::shared_ptr<AgentUsageStore::ActivitySubscription>
AgentUsageStore::followActivity(int days, std::function<void(ActivityLog::News)> tell) {
    return std::make_shared<ActivitySubscription>(
        d_->files.follow(d_->now() - days * oneDay, d_->words(), std::move(tell)));
}

void AgentUsageStore::lookAtActivity() {
    d_->files.lookAtLog();
}

std::vector<ActivityEntry> AgentUsageStore::activity(int days) {
    std::error_code ignored;
    auto entries = d_->files.activity(d_->now() - days * oneDay, d_->words().timeZone(), ignored);
    ActivityTexts::tell(entries, d_->words());
    return entries;
}

std::vector<ActivityEntry> AgentUsageStore::flushedActivity(Instant since, const TimeZone& zone,
                                                            std::error_code& error) {
    return d_->files.activity(since, zone, error);
}

std::string AgentUsageStore::activityExportText(int days) {
    const TimeZone zone = d_->words().timeZone();
    std::string text = ActivityTexts::exportHeader(days, d_->now(), zone, d_->words());
    for (const ActivityEntry& entry : activity(days)) {
        text += ActivityLines::text(entry, zone) + "\n";
    }
    return text;
}

void AgentUsageStore::trimLog() {
    d_->files.trim(d_->now(), d_->words().timeZone());
}

const UsageHistory& AgentUsageStore::history() const {
    return d_->files.history();
}

void AgentUsageStore::flush() {
    d_->files.flush();
}

} // namespace vellmark
