#include "store/UsageHistoryRecorder.h"

#include "model/HistorySampleParser.h"
#include "model/UsageJSON.h"
#include "platform/PrivateDirectory.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

UsageHistorySample sampleOf(const StoredHistorySample& stored) {
    UsageHistorySample sample;
    sample.provider = AgentProviderID(std::string(stored.provider));
    sample.windowID = stored.windowID;
    sample.capturedAt = Instant(Seconds(stored.capturedAt));
    sample.usedPercent = stored.usedPercent;
    if (stored.resetsAt) {
        sample.resetsAt = Instant(Seconds(*stored.resetsAt));
    }
    return sample;
}

void add(HistorySeries& series, const UsageHistorySample& sample) {
    series.add(sample.provider.rawValue, sample.windowID,
               HistoryPoint(sample.capturedAt, sample.usedPercent, sample.resetsAt));
}

} // namespace

UsageHistoryRecorder::UsageHistoryRecorder(std::filesystem::path file,
                                           std::shared_ptr<UsageHistory> history)
    : path_(file), file_(file), waiting_(file), history_(std::move(history)),
      trouble_(std::move(file)) {}

void UsageHistoryRecorder::load(Instant now) {
    compact(now);
}

bool UsageHistoryRecorder::record(const AgentUsageSnapshot& snapshot) {
    std::error_code error;
    const auto held = file_.lock(error);
    const std::size_t before = history_->sampleCount();
    const bool mayWrite = catchUp(held ? &*held : nullptr);
    for (const UsageWindow& window : snapshot.windows) {
        const auto last = history_->last({snapshot.id, window.id}, snapshot.updatedAt);
        if (!isWorthRecording(window, snapshot.updatedAt, last)) {
            continue;
        }
        UsageHistorySample sample;
        sample.id = UUID::make();
        sample.provider = snapshot.id;
        sample.windowID = window.id;
        sample.capturedAt = snapshot.updatedAt;
        sample.usedPercent = window.usedPercent;
        sample.resetsAt = window.resetsAt;
        history_->add(sample);
        heldBack_.push_back(std::move(sample));
    }
    if (!held && error != std::errc::resource_unavailable_try_again && !heldBack_.empty()) {
        trouble_.failed(error);
    }
    if (held && mayWrite) {
        write(*held);
    }
    holdBack();
    return history_->sampleCount() != before;
}

bool UsageHistoryRecorder::compact(Instant now) {
    std::error_code error;
    const auto held = file_.lock(error);
    const std::size_t before = history_->sampleCount();
    if (catchUp(held ? &*held : nullptr) && held) {
        takeOverWaiting(*held);
        if (const auto failure = file_.compact(*held, now, listener())) {
            trouble_.failed(failure);
            reloaded_.reset(); // told in part; keep memory as it is, like the file
        }
        takeOver();
    }
    return history_->sampleCount() != before;
}

namespace {

constexpr std::string_view asideName = "deleted-history";

/// A folder that is not there yet.
fs::path newAside(const fs::path& beside) {
    fs::path aside = beside.parent_path() / asideName;
    std::error_code ignored;
    for (int number = 2; fs::exists(aside, ignored); ++number) {
        aside = beside.parent_path() / (std::string(asideName) + "-" + std::to_string(number));
    }
    return aside;
}

/// The history and what belongs to it: what waits, what was removed or damaged. Not the lock.
std::vector<fs::path> filesOf(const fs::path& history) {
    const std::string name = history.stem().string() + ".";
    std::vector<fs::path> files;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(history.parent_path(), ignored)) {
        const std::string each = entry.path().filename().string();
        if (each.starts_with(name) && entry.path().extension() != ".lock" &&
            entry.is_regular_file(ignored)) {
            files.push_back(entry.path());
        }
    }
    return files;
}

} // namespace

std::error_code UsageHistoryRecorder::deleteAll() {
    std::error_code error;
    const auto held = file_.lock(error);
    if (!held) {
        return error;
    }
    const fs::path aside = newAside(path_);
    const std::vector<fs::path> files = filesOf(path_);
    if (!files.empty() && (error = makePrivateDirectory(aside))) {
        return error;
    }
    for (auto file = files.begin(); file != files.end(); ++file) {
        fs::rename(*file, aside / file->filename(), error);
        if (error) {
            std::error_code ignored;
            std::for_each(files.begin(), file, [&](const fs::path& moved) {
                fs::rename(aside / moved.filename(), moved, ignored);
            });
            fs::remove(aside, ignored);
            return error;
        }
    }
    heldBack_.clear();
    trouble_.worked();
    catchUp(&*held);
    return {};
}

void UsageHistoryRecorder::discardDeleted() {
    std::error_code ignored;
    const std::string name(asideName);
    for (const auto& entry : fs::directory_iterator(path_.parent_path(), ignored)) {
        const std::string each = entry.path().filename().string();
        if ((each == name || each.starts_with(name + "-")) && entry.is_directory(ignored) &&
            !entry.is_symlink(ignored)) {
            fs::remove_all(entry.path(), ignored);
        }
    }
}

/// Brings memory up to the file; false when the file must not be written.
bool UsageHistoryRecorder::catchUp(const FileLock* held) {
    const auto status = file_.catchUp(held, listener());
    if (status.state == UsageHistoryFile::State::unreadable && history_->sampleCount() > 0) {
        reloaded_.reset(); // what was read before is more than this
    }
    takeOver();
    switch (status.state) {
    case UsageHistoryFile::State::repaired:
        trouble_.repaired(status.aside);
        [[fallthrough]];
    case UsageHistoryFile::State::writable:
        if (std::exchange(isUnreadable_, false)) {
            trouble_.worked(); // there may be nothing to write for hours
        }
        return true;
    case UsageHistoryFile::State::damaged:
    case UsageHistoryFile::State::unreadable:
        if (status.error) {
            trouble_.failed(status.error);
            isUnreadable_ = true;
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
                if (!reloaded_) {
                    learn(stored);
                    return;
                }
                std::optional<Instant> resetsAt;
                if (stored.resetsAt) {
                    resetsAt = Instant(Seconds(*stored.resetsAt));
                }
                reloaded_->add(stored.provider, stored.windowID,
                               HistoryPoint(Instant(Seconds(stored.capturedAt)), stored.usedPercent,
                                            resetsAt));
            },
    };
}

/// What this process or another has put into one of the files; its own it knows already.
void UsageHistoryRecorder::learn(const StoredHistorySample& stored) {
    if (const UsageHistorySample sample = sampleOf(stored); !history_->contains(sample)) {
        history_->add(sample);
    }
}

/// Publishes a reloaded file together with what it does not hold yet.
void UsageHistoryRecorder::takeOver() {
    if (!reloaded_) {
        return;
    }
    for (const UsageHistorySample& sample : heldBack_) {
        add(*reloaded_, sample);
    }
    history_->replace(std::move(*reloaded_));
    reloaded_.reset();
    HistorySampleParser parser;
    StoredHistorySample stored;
    const std::string waiting = waiting_.lines();
    for (std::string_view rest = waiting; !rest.empty();) {
        const auto end = std::min(rest.find('\n'), rest.size());
        if (parser.parse(rest.substr(0, end), stored) == HistorySampleParser::Result::sample) {
            learn(stored);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

/// Puts into the file what it does not hold yet.
void UsageHistoryRecorder::write(const FileLock& held) {
    if (!takeOverWaiting(held) || heldBack_.empty()) {
        return;
    }
    if (const auto error = file_.append(held, heldBack_)) {
        trouble_.failed(error);
        return;
    }
    file_.sync();
    heldBack_.clear();
    trouble_.worked();
}

/// False when the file cannot be written.
bool UsageHistoryRecorder::takeOverWaiting(const FileLock& held) {
    std::error_code error;
    waiting_.takeOver([&](std::string_view lines) {
        error = file_.appendLines(held, lines,
                                  [this](const StoredHistorySample& stored) { learn(stored); });
        if (error) {
            trouble_.failed(error);
            return false;
        }
        file_.sync();
        trouble_.worked();
        return true;
    });
    return !error;
}

/// What is in no file yet goes to the waiting one; if that is impossible too, it stays in memory.
void UsageHistoryRecorder::holdBack() {
    if (heldBack_.empty()) {
        return;
    }
    std::string lines;
    for (const UsageHistorySample& sample : heldBack_) {
        lines += serialized(toJSON(sample), -1) + "\n";
    }
    if (!waiting_.add(lines)) {
        heldBack_.clear();
    } else if (heldBack_.size() > mostHeldBack) {
        heldBack_.erase(heldBack_.begin(), heldBack_.end() - mostHeldBack);
    }
}

} // namespace vellmark
