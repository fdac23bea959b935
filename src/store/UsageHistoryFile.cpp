#include "store/UsageHistoryFile.h"

#include "model/HistorySampleParser.h"
#include "model/UsageJSON.h"
#include "platform/FileSync.h"
#include "platform/RegularFile.h"
#include "platform/ReplacementFile.h"
#include "platform/SystemError.h"
#include "store/HistoryThinning.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <locale>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;
using Form = HistoryFileScan::Form;

namespace {

/// How many damaged files are kept aside.
constexpr int mostAside = 5;
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

/// What the lock file says: when the file was last compacted, by the clock, and on which day by
/// the samples' dates anything was removed last.
struct CompactionNote {
    double compactedAt = 0;
    std::optional<std::int64_t> removalDay;

    static CompactionNote of(const FileLock& held) {
        CompactionNote note;
        std::int64_t removed = 0;
        std::istringstream words(held.note());
        words.imbue(std::locale::classic());
        if (words >> note.compactedAt >> removed) {
            note.removalDay = removed;
        }
        return note;
    }

    void write(const FileLock& held) const {
        held.setNote(std::to_string(static_cast<long long>(compactedAt)) +
                     (removalDay ? " " + std::to_string(*removalDay) : std::string()));
    }
};

/// The file of what was removed, written anew. Without any samples it goes.
class RemovedSamples {
public:
    explicit RemovedSamples(const fs::path& file)
        : file_(file),
          replacement_(file, ReplacementFile::Name::fixed, ReplacementFile::Links::refused) {
        replacement_.write("[");
    }

    void add(const StoredHistorySample& sample) {
        replacement_.write(separatedLine(std::exchange(isEmpty_, false), sample.text));
    }

    std::error_code commit() {
        if (isEmpty_) {
            return ::unlink(file_.c_str()) == 0 || errno == ENOENT ? std::error_code()
                                                                   : lastSystemError();
        }
        replacement_.write(closing);
        return replacement_.commit();
    }

private:
    fs::path file_;
    ReplacementFile replacement_;
    bool isEmpty_ = true;
};

bool isIn(const std::vector<std::uint64_t>& offsets, std::uint64_t offset) {
    return std::ranges::binary_search(offsets, offset);
}

} // namespace

UsageHistoryFile::UsageHistoryFile(fs::path file)
    : file_(std::move(file)), lock_(fs::path(file_).replace_extension(".lock")) {}

std::error_code UsageHistoryFile::open() {
    close();
    std::error_code error;
    descriptor_ = openRegularFile(file_, O_RDWR, error);
    if (error == std::errc::no_such_file_or_directory) {
        return {};
    }
    if (error) {
        // Read-only, or a link: it can be read all the same.
        writeRefusal_ = error;
        descriptor_ = openRegularFile(file_, O_RDONLY, error);
    }
    return error ? writeRefusal_ : std::error_code();
}

void UsageHistoryFile::close() {
    descriptor_.reset();
    writeRefusal_ = {};
    scan_ = {};
    days_ = {};
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
            return {State::unreadable, error, {}};
        }
        listener.restart();
    }
    if (!descriptor_.isOpen()) {
        return {};
    }
    struct stat status {};
    const bool known = ::fstat(descriptor_.get(), &status) == 0;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (known && size > mostBytes) {
        close();
        return {State::unreadable, std::make_error_code(std::errc::file_too_large), {}};
    }
    if (known && (anew || size != knownSize_) && scan_.form != Form::foreign) {
        const auto tell = [&](const StoredHistorySample& sample) {
            days_.add(Instant(Seconds(sample.capturedAt)));
            listener.sample(sample);
        };
        scan_ = scan_.samplesEnd == 0 ? UsageHistoryReader::read(descriptor_.get(), tell)
                                      : UsageHistoryReader::readOn(descriptor_.get(), scan_, tell);
        knownSize_ = size;
    }
    if (scan_.error) {
        const std::error_code error = scan_.error;
        close();
        return {State::unreadable, error, {}};
    }
    if (scan_.form == Form::foreign) {
        return {State::foreign, {}, {}};
    }
    if (scan_.form == Form::damaged) {
        Status repaired{State::damaged, {}, {}};
        if (held && !(repaired.error = repair(repaired.aside))) {
            repaired.state = State::repaired;
        }
        return repaired;
    }
    return {};
}

std::error_code UsageHistoryFile::append(const FileLock&,
                                         std::span<const UsageHistorySample> samples) {
    std::string lines;
    for (const UsageHistorySample& sample : samples) {
        lines +=
            separatedLine(scan_.elementCount == 0 && lines.empty(), serialized(toJSON(sample), -1));
    }
    const std::error_code error = write(lines, samples.size());
    if (!error) {
        std::ranges::for_each(samples,
                              [this](const auto& sample) { days_.add(sample.capturedAt); });
    }
    return error;
}

std::error_code UsageHistoryFile::appendLines(const FileLock&, std::string_view lines,
                                              const UsageHistoryReader::Visitor& visit) {
    HistorySampleParser parser;
    StoredHistorySample sample;
    std::vector<std::string> texts;
    while (!lines.empty()) {
        const auto end = std::min(lines.find('\n'), lines.size());
        if (parser.parse(lines.substr(0, end), sample) == HistorySampleParser::Result::sample) {
            texts.emplace_back(sample.text);
        }
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    Texts missing(texts.begin(), texts.end());
    dropKnown(missing);
    std::erase_if(texts, [&](const std::string& text) { return missing.erase(text) == 0; });
    if (texts.empty()) {
        return {};
    }
    std::string bytes;
    for (const std::string& text : texts) {
        bytes += separatedLine(scan_.elementCount == 0 && bytes.empty(), text);
    }
    if (const auto error = write(bytes, texts.size())) {
        return error;
    }
    for (const std::string& text : texts) {
        parser.parse(text, sample);
        days_.add(Instant(Seconds(sample.capturedAt)));
        visit(sample);
    }
    return {};
}

std::error_code UsageHistoryFile::add(const FileLock&, const std::vector<std::string>& samples) {
    if (scan_.samplesEnd != 0) {
        const std::error_code error = ensureWritable();
        return error ? error : rewrite({.dropped = {}, .added = samples, .leave = {}}, {});
    }
    std::string lines;
    for (const std::string& sample : samples) {
        lines += separatedLine(lines.empty(), sample);
    }
    return write(lines, samples.size());
}

/// Drops the samples that the file already has, because an earlier takeover was interrupted.
void UsageHistoryFile::dropKnown(Texts& samples) const {
    if (descriptor_.isOpen() && !samples.empty()) {
        UsageHistoryReader::read(descriptor_.get(), [&](const StoredHistorySample& sample) {
            if (const auto found = samples.find(sample.text); found != samples.end()) {
                samples.erase(found);
            }
        });
    }
}

std::error_code UsageHistoryFile::write(std::string_view lines, std::size_t count) {
    if (const auto error = ensureWritable()) {
        return error;
    }
    const std::string bytes(lines);
    if (scan_.samplesEnd == 0) { // no file yet, or an empty one
        ReplacementFile created(file_, ReplacementFile::Name::fixed,
                                ReplacementFile::Links::refused);
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
    scan_.sampleCount += count;
    scan_.elementCount += count;
    knownSize_ = scan_.samplesEnd + closing.size();
    return {};
}

/// A disk that was read-only when the file was opened may have become writable since.
std::error_code UsageHistoryFile::ensureWritable() {
    if (writeRefusal_) {
        std::error_code error;
        Descriptor writable = openRegularFile(file_, O_RDWR, error);
        if (!writable.isOpen()) {
            return error;
        }
        descriptor_ = std::move(writable);
        writeRefusal_ = {};
    }
    return {};
}

void UsageHistoryFile::sync() {
    // What the disk cannot promise now it may still keep; writing it again would double it.
    if (descriptor_.isOpen()) {
        syncFile(descriptor_.get());
    }
}

std::error_code UsageHistoryFile::repair(fs::path& aside) {
    if (const auto error = ensureWritable()) {
        return error;
    }
    if (const auto error = keepAside(aside)) {
        return error;
    }
    return rewrite({}, {});
}

/// Gives the file, byte for byte as it is, another name beside it.
std::error_code UsageHistoryFile::keepAside(fs::path& aside) const {
    struct stat ours {};
    ::fstat(descriptor_.get(), &ours);
    for (int number = 1; number <= mostAside; ++number) {
        aside = fs::path(file_).replace_extension(
            number == 1 ? ".damaged.json" : ".damaged-" + std::to_string(number) + ".json");
        struct stat there {};
        if (::lstat(aside.c_str(), &there) == 0) {
            if (there.st_ino == ours.st_ino && there.st_dev == ours.st_dev) {
                return {}; // an interrupted repair has come that far
            }
            if (number < mostAside) {
                continue;
            }
            if (!S_ISREG(there.st_mode)) {
                return notRegularFile();
            }
            ::unlink(aside.c_str());
        }
        if (::link(file_.c_str(), aside.c_str()) == 0) {
            break;
        }
        // This file system has no links: a copy will do.
        std::error_code error;
        fs::copy_file(file_, aside, error);
        return error;
    }
    return {};
}

std::error_code UsageHistoryFile::rewrite(const Changes& changes, const Listener& listener) {
    ReplacementFile replacement(file_, ReplacementFile::Name::fixed,
                                ReplacementFile::Links::refused);
    HistoryFileScan written;
    RecordedDays days;
    replacement.write("[");
    written.samplesEnd = 1;
    const auto write = [&](std::string_view text) {
        const std::string line = separatedLine(written.elementCount == 0, text);
        replacement.write(line);
        written.samplesEnd += line.size();
        ++written.elementCount;
    };
    const auto keep = [&](const StoredHistorySample& sample) {
        write(sample.text);
        ++written.sampleCount;
        days.add(Instant(Seconds(sample.capturedAt)));
        if (listener.sample) {
            listener.sample(sample);
        }
    };
    const HistoryFileScan source = UsageHistoryReader::read(
        descriptor_.get(),
        [&](const StoredHistorySample& sample) {
            isIn(changes.dropped, sample.offset) ? changes.leave(sample) : keep(sample);
        },
        [&](const HistoryObjectForm& form) {
            if (scan_.isNewerForm(form)) {
                write(form.text);
                ++written.unreadForms[form.signature];
            }
        });
    HistorySampleParser parser;
    StoredHistorySample sample;
    for (const std::string& text : changes.added) {
        if (parser.parse(text, sample) == HistorySampleParser::Result::sample) {
            keep(sample);
        }
    }
    replacement.write(closing);
    std::error_code error = source.error;
    if (!error && changes.beforeCommit) {
        error = changes.beforeCommit();
    }
    if (!error) {
        error = replacement.commit();
    }
    if (error) {
        return error;
    }
    if (const auto reopening = open()) {
        return reopening;
    }
    scan_ = std::move(written);
    days_ = std::move(days);
    knownSize_ = scan_.samplesEnd + closing.size();
    return {};
}

// --- compaction

fs::path UsageHistoryFile::removedFile() const {
    return fs::path(file_).replace_extension(".removed.json");
}

std::error_code UsageHistoryFile::compact(const FileLock& held, Instant now,
                                          const Listener& listener) {
    CompactionNote note = CompactionNote::of(held);
    const double today = std::floor(now.time_since_epoch().count());
    if (!descriptor_.isOpen() || scan_.form != Form::whole ||
        (today >= note.compactedAt && today - note.compactedAt < oneDay.count())) {
        return {};
    }
    const Instant reference = days_.reference(now);
    const std::int64_t referenceDay = dayNumber(reference);
    std::error_code error;
    const Descriptor removed = openRegularFile(removedFile(), O_RDWR, error);
    if (!removed.isOpen() && error != std::errc::no_such_file_or_directory) {
        return error;
    }
    Offsets dropped;
    Offsets stillRemoved;
    if (removed.isOpen() || days_.reachBefore(HistoryThinning::keptWholeSince(reference))) {
        HistoryThinning thinning(reference);
        const auto add = [&](const StoredHistorySample& sample) { thinning.add(sample); };
        UsageHistoryReader::read(descriptor_.get(), add);
        thinning.nextFile();
        if (removed.isOpen()) {
            UsageHistoryReader::read(removed.get(), add);
        }
        dropped = thinning.expendable(0);
        stillRemoved = thinning.expendable(1);
    }
    const bool laterDayAgrees = note.removalDay && referenceDay > *note.removalDay;
    note.compactedAt = today;
    if (!laterDayAgrees || !dropped.empty()) {
        note.removalDay = referenceDay;
    }
    note.write(held);

    const auto isForgotten = [&](const StoredHistorySample& sample) {
        return laterDayAgrees && isIn(stillRemoved, sample.offset);
    };
    Texts restored;
    bool forgets = false;
    if (removed.isOpen()) {
        UsageHistoryReader::read(removed.get(), [&](const StoredHistorySample& sample) {
            forgets = forgets || isForgotten(sample);
            if (!isIn(stillRemoved, sample.offset)) {
                restored.emplace(sample.text);
            }
        });
    }
    if (dropped.empty() && restored.empty() && !forgets) {
        return {};
    }
    // At any moment a sample is in one of the two files at least.
    RemovedSamples next(removedFile());
    if (removed.isOpen()) {
        UsageHistoryReader::read(removed.get(), [&](const StoredHistorySample& sample) {
            if (!isForgotten(sample)) {
                next.add(sample);
            }
        });
    }
    const Texts leaving = restored;
    dropKnown(restored);
    if (dropped.empty() && restored.empty()) {
        error = next.commit();
    } else {
        listener.restart();
        error = rewrite({.dropped = dropped,
                         .added = {restored.begin(), restored.end()},
                         .leave = [&](const StoredHistorySample& sample) { next.add(sample); },
                         .beforeCommit = [&] { return next.commit(); }},
                        listener);
    }
    if (error || leaving.empty()) {
        return error;
    }
    // What has come back is no longer among the removed.
    RemovedSamples without(removedFile());
    const Descriptor written = openRegularFile(removedFile(), O_RDONLY, error);
    if (written.isOpen()) {
        UsageHistoryReader::read(written.get(), [&](const StoredHistorySample& sample) {
            if (!leaving.contains(sample.text)) {
                without.add(sample);
            }
        });
    }
    return without.commit();
}

} // namespace vellmark
