#include "store/UsageHistoryRecorder.h"

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

WindowKey keyOf(const UsageHistorySample& sample) {
    return {sample.provider, sample.windowID};
}

} // namespace

UsageHistoryRecorder::UsageHistoryRecorder(std::filesystem::path file,
                                           std::shared_ptr<UsageHistory> history)
    : file_(std::move(file)), history_(std::move(history)) {}

void UsageHistoryRecorder::load(Instant now) {
    compact(now);
}

bool UsageHistoryRecorder::record(const AgentUsageSnapshot& snapshot) {
    std::error_code error;
    const auto held = file_.lock(lockPatience, error);
    const std::size_t before = history_->sampleCount();
    const bool mayWrite = catchUp(held ? &*held : nullptr);
    for (const UsageWindow& window : snapshot.windows) {
        const auto last = history_->last({snapshot.id, window.id});
        if (!isWorthRecording(window, snapshot.updatedAt, last)) {
            continue;
        }
        UsageHistorySample sample;
        sample.id = UUID::make();
        sample.provider = snapshot.id;
        sample.windowID = window.id;
        // The clock may have been set back; the order of a window's samples holds all the same.
        sample.capturedAt =
            last ? std::max(snapshot.updatedAt, last->capturedAt) : snapshot.updatedAt;
        sample.usedPercent = window.usedPercent;
        sample.resetsAt = window.resetsAt;
        history_->add(sample);
        heldBack_.push_back(std::move(sample));
    }
    if (!held && error != std::errc::resource_unavailable_try_again && !heldBack_.empty()) {
        trouble_.failed(error);
    }
    write(held ? &*held : nullptr, mayWrite);
    return history_->sampleCount() != before;
}

bool UsageHistoryRecorder::compact(Instant now) {
    std::error_code error;
    const auto held = file_.lock(lockPatience, error);
    const std::size_t before = history_->sampleCount();
    if (catchUp(held ? &*held : nullptr) && held) {
        if (const auto failure = file_.compact(*held, now, listener())) {
            trouble_.failed(failure);
            reloaded_.reset(); // told in part; memory stays as it is, like the file
        }
        takeOver();
    }
    return history_->sampleCount() != before;
}

/// Brings memory up to the file; false when the file must not be written.
bool UsageHistoryRecorder::catchUp(const FileLock* held) {
    const auto status = file_.catchUp(held, listener());
    if (status.state == UsageHistoryFile::State::unreadable && history_->sampleCount() > 0) {
        reloaded_.reset(); // what was read before is more
    }
    takeOver();
    switch (status.state) {
    case UsageHistoryFile::State::writable:
        return true;
    case UsageHistoryFile::State::repaired:
        trouble_.repaired();
        return true;
    case UsageHistoryFile::State::damaged:
    case UsageHistoryFile::State::unreadable:
        if (status.error) {
            trouble_.failed(status.error);
        }
        return false;
    case UsageHistoryFile::State::foreign:
        trouble_.foreign();
        return false;
    }
    return false;
}

UsageHistoryFile::Listener UsageHistoryRecorder::listener() {
    return {
        .restart = [this] { reloaded_ = std::make_unique<HistorySeries>(); },
        .sample =
            [this](const StoredHistorySample& stored) {
                std::optional<Instant> resetsAt;
                if (stored.resetsAt) {
                    resetsAt = Instant(Seconds(*stored.resetsAt));
                }
                const Instant capturedAt{Seconds(stored.capturedAt)};
                if (reloaded_) {
                    reloaded_->add(stored.provider, stored.windowID,
                                   HistoryPoint(capturedAt, stored.usedPercent, resetsAt));
                    return;
                }
                UsageHistorySample sample;
                sample.provider = AgentProviderID(std::string(stored.provider));
                sample.windowID = stored.windowID;
                sample.capturedAt = capturedAt;
                sample.usedPercent = stored.usedPercent;
                sample.resetsAt = resetsAt;
                Instant& last = lastOnDisk_[keyOf(sample)];
                last = std::max(last, capturedAt);
                history_->add(sample);
            },
    };
}

/// Publishes a reloaded file together with what it does not hold yet.
void UsageHistoryRecorder::takeOver() {
    if (!reloaded_) {
        return;
    }
    lastOnDisk_.clear();
    for (const WindowKey& key : reloaded_->keys()) {
        lastOnDisk_[key] = reloaded_->of(key).back().capturedAt;
    }
    for (const UsageHistorySample& sample : heldBack_) {
        reloaded_->add(sample.provider.rawValue, sample.windowID,
                       HistoryPoint(sample.capturedAt, sample.usedPercent, sample.resetsAt));
    }
    history_->replace(std::move(*reloaded_));
    reloaded_.reset();
}

void UsageHistoryRecorder::write(const FileLock* held, bool mayWrite) {
    if (heldBack_.empty() || !held || !mayWrite) {
        return;
    }
    // What waited for long may be older than what another process wrote meanwhile.
    std::erase_if(heldBack_, [this](const UsageHistorySample& sample) {
        const auto last = lastOnDisk_.find(keyOf(sample));
        return last != lastOnDisk_.end() && sample.capturedAt < last->second;
    });
    if (heldBack_.empty()) {
        return;
    }
    if (const auto error = file_.append(*held, heldBack_)) {
        trouble_.failed(error);
        return;
    }
    file_.sync();
    for (const UsageHistorySample& sample : heldBack_) {
        lastOnDisk_[keyOf(sample)] = sample.capturedAt;
    }
    heldBack_.clear();
    trouble_.worked();
}

} // namespace vellmark
