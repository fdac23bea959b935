#include "store/UsageHistoryFile.h"

#include "model/UsageJSON.h"
#include "platform/ReplacementFile.h"
#include "platform/SystemError.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;
using Form = HistoryFileScan::Form;

namespace {

constexpr Seconds day{86'400};
constexpr Seconds keptWhole = 35 * day;
constexpr Seconds keptAtAll = 400 * day;
constexpr std::string_view closing = "\n]\n";

std::error_code writeAt(int descriptor, std::string_view bytes, std::uint64_t offset) {
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno != EINTR) {
            return lastSystemError();
        }
        const auto written = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        bytes.remove_prefix(written);
        offset += written;
    }
    return {};
}

std::string separatedLine(bool isFirst, std::string_view sample) {
    std::string line = isFirst ? "\n" : ",\n";
    line += sample;
    return line;
}

} // namespace

UsageHistoryFile::UsageHistoryFile(fs::path file) : file_(std::move(file)) {}

std::optional<FileLock> UsageHistoryFile::lock(Seconds patience, std::error_code& error) const {
    return FileLock::acquire(fs::path(file_).replace_extension(".lock"), patience, error);
}

std::error_code UsageHistoryFile::open() {
    close();
    descriptor_.reset(::open(file_.c_str(), O_RDWR | O_CLOEXEC));
    if (!descriptor_.isOpen() && (errno == EACCES || errno == EROFS)) {
        writeRefusal_ = lastSystemError();
        descriptor_.reset(::open(file_.c_str(), O_RDONLY | O_CLOEXEC));
    }
    if (!descriptor_.isOpen()) {
        return errno == ENOENT ? std::error_code() : lastSystemError();
    }
    ::fchmod(descriptor_.get(), 0600); // an older version or a copy may have left it open to others
    return {};
}

void UsageHistoryFile::close() {
    descriptor_.reset();
    writeRefusal_ = {};
    scan_ = {};
    knownSize_ = 0;
}

bool UsageHistoryFile::wasReplaced() const {
    struct stat onDisk {};
    if (::stat(file_.c_str(), &onDisk) != 0) {
        return descriptor_.isOpen() && errno == ENOENT;
    }
    struct stat ours {};
    return !descriptor_.isOpen() || ::fstat(descriptor_.get(), &ours) != 0 ||
           ours.st_ino != onDisk.st_ino || ours.st_dev != onDisk.st_dev ||
           static_cast<std::uint64_t>(ours.st_size) < knownSize_;
}

UsageHistoryFile::Status UsageHistoryFile::catchUp(const FileLock* held, const Listener& listener) {
    // A look without the lock may have seen half of an append: then all is read anew.
    const bool anew = wasReplaced() || scan_.form == Form::damaged;
    if (anew) {
        if (const auto error = open()) {
            return {State::unreadable, error};
        }
        listener.restart();
    }
    if (!descriptor_.isOpen()) {
        return {};
    }
    struct stat status {};
    const bool known = ::fstat(descriptor_.get(), &status) == 0;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (known && (anew || size != knownSize_) && scan_.form != Form::foreign) {
        scan_ = scan_.samplesEnd == 0
                    ? UsageHistoryReader::read(descriptor_.get(), listener.sample)
                    : UsageHistoryReader::readOn(descriptor_.get(), scan_, listener.sample);
        knownSize_ = size;
    }
    if (scan_.error) {
        const std::error_code error = scan_.error;
        close();
        return {State::unreadable, error};
    }
    if (scan_.form == Form::foreign) {
        return {State::foreign, {}};
    }
    if (scan_.form == Form::damaged) {
        const std::error_code error = held ? repair() : std::error_code();
        return {held && !error ? State::repaired : State::damaged, error};
    }
    return {};
}

std::error_code UsageHistoryFile::append(const FileLock&,
                                         std::span<const UsageHistorySample> samples) {
    if (const auto error = ensureWritable()) {
        return error;
    }
    std::string bytes;
    for (const UsageHistorySample& sample : samples) {
        bytes +=
            separatedLine(scan_.sampleCount == 0 && bytes.empty(), serialized(toJSON(sample), -1));
    }
    if (scan_.samplesEnd == 0) { // no file yet, or an empty one
        ReplacementFile created(file_, ReplacementFile::Name::fixed);
        created.write("[" + bytes);
        created.write(closing);
        if (const auto error = created.commit()) {
            return error;
        }
        if (const auto error = open()) {
            return error;
        }
        scan_.samplesEnd = 1;
    } else {
        const std::uint64_t end = scan_.samplesEnd + bytes.size() + closing.size();
        std::error_code error =
            writeAt(descriptor_.get(), bytes + std::string(closing), scan_.samplesEnd);
        if (!error && knownSize_ > end &&
            ::ftruncate(descriptor_.get(), static_cast<off_t>(end)) != 0) {
            error = lastSystemError();
        }
        if (error) {
            const std::uint64_t oldEnd = scan_.samplesEnd + closing.size();
            if (!writeAt(descriptor_.get(), closing, scan_.samplesEnd)) {
                knownSize_ =
                    ::ftruncate(descriptor_.get(), static_cast<off_t>(oldEnd)) == 0 ? oldEnd : 0;
            }
            return error;
        }
    }
    scan_.samplesEnd += bytes.size();
    scan_.sampleCount += samples.size();
    knownSize_ = scan_.samplesEnd + closing.size();
    return {};
}

/// A disk that was read-only when the file was opened may have become writable since.
std::error_code UsageHistoryFile::ensureWritable() {
    if (writeRefusal_) {
        Descriptor writable(::open(file_.c_str(), O_RDWR | O_CLOEXEC));
        if (!writable.isOpen()) {
            return lastSystemError();
        }
        descriptor_ = std::move(writable);
        writeRefusal_ = {};
    }
    return {};
}

void UsageHistoryFile::sync() {
    // What the disk cannot promise now it may still keep; writing it again would double it.
    if (descriptor_.isOpen()) {
        ::fsync(descriptor_.get());
    }
}

std::error_code UsageHistoryFile::repair() {
    const fs::path aside = fs::path(file_).replace_extension(".damaged.json");
    // What a symbolic link points to: that is what is going to be replaced.
    if (::linkat(AT_FDCWD, file_.c_str(), AT_FDCWD, aside.c_str(), AT_SYMLINK_FOLLOW) != 0 &&
        errno != EEXIST) {
        // Another file system, or one without links: a copy does as well.
        std::error_code error;
        fs::copy_file(file_, aside, fs::copy_options::skip_existing, error);
        if (error) {
            return error;
        }
    }
    return rewrite([](const StoredHistorySample&) { return true; }, {});
}

std::error_code
UsageHistoryFile::rewrite(const std::function<bool(const StoredHistorySample&)>& keeps,
                          const Listener& listener) {
    ReplacementFile replacement(file_, ReplacementFile::Name::fixed);
    HistoryFileScan written;
    replacement.write("[");
    written.samplesEnd = 1;
    const HistoryFileScan source =
        UsageHistoryReader::read(descriptor_.get(), [&](const StoredHistorySample& sample) {
            if (!keeps(sample)) {
                return;
            }
            const std::string line = separatedLine(written.sampleCount == 0, sample.text);
            replacement.write(line);
            written.samplesEnd += line.size();
            ++written.sampleCount;
            if (listener.sample) {
                listener.sample(sample);
            }
        });
    replacement.write(closing);
    const std::error_code error = source.error ? source.error : replacement.commit();
    if (error) {
        return error;
    }
    if (const auto reopening = open()) {
        return reopening;
    }
    scan_ = written;
    knownSize_ = written.samplesEnd + closing.size();
    return {};
}

std::error_code UsageHistoryFile::compact(const FileLock& held, Instant now,
                                          const Listener& listener) {
    const double last = std::strtod(held.note().c_str(), nullptr);
    const double today = std::floor(now.time_since_epoch().count());
    if (!descriptor_.isOpen() || scan_.form != Form::whole ||
        (today >= last && today - last < day.count())) {
        return {};
    }
    held.setNote(std::to_string(static_cast<long long>(today)));
    const std::vector<std::uint64_t> dropped = expendable(now);
    if (dropped.empty()) {
        return {};
    }
    listener.restart();
    auto next = dropped.begin();
    return rewrite(
        [&](const StoredHistorySample& sample) {
            const bool drop = next != dropped.end() && *next == sample.offset;
            next += drop;
            return !drop;
        },
        listener);
}

/// The offsets of the samples that need not be kept, in the order of the file.
std::vector<std::uint64_t> UsageHistoryFile::expendable(Instant now) const {
    struct Highest {
        double usedPercent;
        std::uint64_t offset;
    };
    const double wholeSince = (now - keptWhole).time_since_epoch().count();
    const double anySince = (now - keptAtAll).time_since_epoch().count();
    std::map<std::pair<std::string, std::string>, std::unordered_map<std::int64_t, Highest>> hours;
    std::vector<std::uint64_t> dropped;
    UsageHistoryReader::read(descriptor_.get(), [&](const StoredHistorySample& sample) {
        if (sample.capturedAt >= wholeSince) {
            return;
        }
        if (sample.capturedAt < anySince) {
            dropped.push_back(sample.offset);
            return;
        }
        const auto hour = static_cast<std::int64_t>(std::floor(sample.capturedAt / 3600));
        auto& ofKey = hours[{std::string(sample.provider), std::string(sample.windowID)}];
        const auto [place, isFirst] =
            ofKey.try_emplace(hour, Highest{sample.usedPercent, sample.offset});
        if (isFirst) {
            return;
        }
        Highest& highest = place->second;
        if (sample.usedPercent > highest.usedPercent) {
            dropped.push_back(highest.offset);
            highest = {sample.usedPercent, sample.offset};
        } else {
            dropped.push_back(sample.offset);
        }
    });
    std::ranges::sort(dropped);
    return dropped;
}

} // namespace vellmark
