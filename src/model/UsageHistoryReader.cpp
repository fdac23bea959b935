#include "model/UsageHistoryReader.h"

#include "model/HistorySampleParser.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vellmark::UsageHistoryReader {

namespace {

using Form = HistoryFileScan::Form;
using ParseResult = HistorySampleParser::Result;

constexpr std::size_t bufferSize = 1u << 18;
/// No sample is nearly as long; an object that is cannot be one.
constexpr std::size_t longestSample = 1u << 16;
/// How far a salvage looks for the end of an object: samples are hardly longer than 200 bytes.
constexpr std::size_t salvagedLength = 1u << 12;
constexpr std::size_t mostUnreadForms = 100;

/// A window onto the file that moves forward.
class Stream {
public:
    Stream(int descriptor, std::uint64_t offset)
        : descriptor_(descriptor), offset_(offset), buffer_(bufferSize) {}

    std::string_view rest() const { return {buffer_.data() + begin_, end_ - begin_}; }
    std::uint64_t offset() const { return offset_ + begin_; }
    void advance(std::size_t count) { begin_ += count; }
    bool atEndOfFile() const { return atEndOfFile_; }
    std::error_code error() const { return error_; }

    /// Makes at least one more byte visible; false at the end of the file.
    bool fill() {
        if (atEndOfFile_) {
            return false;
        }
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        offset_ += begin_;
        end_ -= begin_;
        begin_ = 0;
        ssize_t count = 0;
        do {
            count = ::pread(descriptor_, buffer_.data() + end_, buffer_.size() - end_,
                            static_cast<off_t>(offset_ + end_));
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            error_ = {errno, std::generic_category()};
        }
        atEndOfFile_ = count <= 0;
        end_ += count > 0 ? static_cast<std::size_t>(count) : 0;
        return count > 0;
    }

    /// The next byte that is no white space, which stays; NUL at the end of the file.
    char peek() {
        for (;;) {
            while (begin_ != end_) {
                const char next = buffer_[begin_];
                if (next != ' ' && next != '\n' && next != '\r' && next != '\t') {
                    return next;
                }
                ++begin_;
            }
            if (!fill()) {
                return '\0';
            }
        }
    }

private:
    int descriptor_;
    std::uint64_t offset_; ///< in the file, of the buffer's first byte
    std::vector<char> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool atEndOfFile_ = false;
    std::error_code error_;
};

/// Whether a spoilt line was a sample: it has names of a sample's members in it.
bool looksLikeSample(std::string_view line) {
    int names = 0;
    for (const std::string_view name :
         {"\"provider\":", "\"windowID\":", "\"capturedAt\":", "\"usedPercent\":"}) {
        names += line.find(name) != std::string_view::npos;
    }
    return names >= 2;
}

class Scanner {
public:
    Scanner(int descriptor, HistoryFileScan scan, const Visitor& visit,
            const UnreadVisitor& visitUnread)
        : stream_(descriptor, scan.samplesEnd), visit_(visit), visitUnread_(visitUnread),
          scan_(std::move(scan)) {}

    HistoryFileScan run() {
        if (scan_.samplesEnd == 0 && !openArray()) {
            return finish();
        }
        while (step()) {
        }
        return finish();
    }

private:
    bool openArray() {
        const char first = stream_.peek();
        if (first == '[') {
            stream_.advance(1);
            scan_.samplesEnd = stream_.offset();
            return true;
        }
        // Blocks that were never written read as NUL.
        if (!stream_.rest().empty() && (first == '\0' || isBracketSpoilt())) {
            scan_.form = Form::damaged;
            return true;
        }
        scan_.form = first == '\0' ? Form::whole : Form::foreign;
        return false;
    }

    /// The bracket stands on a line of its own. If a sample follows on the next line, whatever
    /// stands in its place is a spoilt bracket.
    bool isBracketSpoilt() {
        while (stream_.rest().size() < longestSample && stream_.fill()) {
        }
        const std::string_view rest = stream_.rest();
        StoredHistorySample found;
        return rest.size() > 2 && rest[1] == '\n' &&
               parser_.parse(rest.substr(2), found) == ParseResult::sample;
    }

    /// One sample with what precedes it; false at the end of the array, and of what can be read.
    bool step() {
        if (scan_.form == Form::damaged) {
            return salvageLine();
        }
        const char next = stream_.peek();
        if (next == ']') {
            stream_.advance(1);
            if (stream_.peek() != '\0' || !stream_.rest().empty()) {
                scan_.form = Form::damaged;
                return true;
            }
            return false;
        }
        if (scan_.elementCount > 0) {
            if (next != ',') {
                scan_.form = Form::damaged;
                return true;
            }
            stream_.advance(1);
            stream_.peek();
        }
        return element();
    }

    bool element() {
        StoredHistorySample found;
        ParseResult result = parser_.parse(stream_.rest(), found);
        while (result == ParseResult::incomplete && stream_.rest().size() < longestSample &&
               stream_.fill()) {
            result = parser_.parse(stream_.rest(), found);
        }
        if (result == ParseResult::incomplete && !stream_.atEndOfFile()) {
            result = ParseResult::malformed;
        }
        switch (result) {
        case ParseResult::sample:
            take(found);
            break;
        case ParseResult::unread:
            passOver(parser_.form());
            break;
        case ParseResult::malformed:
            beginsStrangely_ = scan_.elementCount == 0 && stream_.peek() != '\0' &&
                               !looksLikeSample(stream_.rest().substr(0, longestSample));
            stream_.advance(1);
            scan_.form = Form::damaged;
            break;
        case ParseResult::incomplete:
            scan_.form = Form::damaged;
        }
        return true;
    }

    void take(StoredHistorySample& found) {
        found.offset = stream_.offset();
        visit_(found);
        ++scan_.sampleCount;
        advance(found.text.size());
    }

    void passOver(const HistoryObjectForm& form) {
        hasDamagedSample_ = hasDamagedSample_ || form.isDamagedSample;
        const auto known = scan_.unreadForms.find(form.signature);
        if (known != scan_.unreadForms.end()) {
            ++known->second;
        } else if (scan_.unreadForms.size() < mostUnreadForms) {
            scan_.unreadForms.emplace(form.signature, 1);
        }
        if (visitUnread_) {
            visitUnread_(form);
        }
        hasUnread_ = true;
        advance(form.text.size());
    }

    void advance(std::size_t length) {
        ++scan_.elementCount;
        stream_.advance(length);
        scan_.samplesEnd = stream_.offset();
    }

    /// Behind damage, goes to the next object that stands on this line or at the beginning of a
    /// later one, and takes it when it is a sample.
    bool salvageLine() {
        if (stream_.rest().empty() && !stream_.fill()) {
            return false;
        }
        while (stream_.rest().find('\n') == std::string_view::npos &&
               stream_.rest().size() < longestSample && stream_.fill()) {
        }
        const std::string_view rest = stream_.rest();
        const std::size_t lineEnd = rest.find('\n');
        const std::string_view line = rest.substr(0, lineEnd);
        const std::size_t begin = line.find('{');
        if (begin != std::string_view::npos) {
            StoredHistorySample found;
            const ParseResult result = parser_.parse(line.substr(begin), found);
            if (result == ParseResult::sample || result == ParseResult::unread) {
                stream_.advance(begin);
                result == ParseResult::sample ? take(found) : passOver(parser_.form());
                return true;
            }
        }
        stream_.advance(lineEnd == std::string_view::npos ? rest.size() : lineEnd + 1);
        return true;
    }

    HistoryFileScan finish() {
        const bool isStrange = beginsStrangely_ || hasUnread_;
        if (scan_.sampleCount == 0 && isStrange && !hasDamagedSample_) {
            scan_.form = Form::foreign; // nothing in it was ever ours
        } else if (hasDamagedSample_ || hasSingleForm()) {
            scan_.form = Form::damaged;
        }
        scan_.error = stream_.error();
        return std::move(scan_);
    }

    bool hasSingleForm() const {
        return std::ranges::any_of(scan_.unreadForms,
                                   [](const auto& form) { return form.second == 1; });
    }

    Stream stream_;
    const Visitor& visit_;
    const UnreadVisitor& visitUnread_;
    HistoryFileScan scan_;
    bool beginsStrangely_ = false; ///< with something in the first sample's place that is no JSON
    bool hasUnread_ = false;
    bool hasDamagedSample_ = false;
    HistorySampleParser parser_;
};

} // namespace

HistoryFileScan read(int descriptor, const Visitor& visit, const UnreadVisitor& visitUnread) {
    return Scanner(descriptor, {}, visit, visitUnread).run();
}

HistoryFileScan readOn(int descriptor, const HistoryFileScan& earlier, const Visitor& visit) {
    HistoryFileScan start = earlier;
    start.form = Form::whole;
    return Scanner(descriptor, std::move(start), visit, {}).run();
}

std::uint64_t salvage(int descriptor, const Visitor& visit, std::error_code& error) {
    Stream stream(descriptor, 0);
    HistorySampleParser parser;
    std::uint64_t count = 0;
    for (;;) {
        const std::size_t begin = stream.rest().find('{');
        stream.advance(std::min(begin, stream.rest().size()));
        while (stream.rest().size() < salvagedLength && stream.fill()) {
        }
        if (stream.rest().empty()) {
            error = stream.error();
            return count;
        }
        StoredHistorySample found;
        if (parser.parse(stream.rest().substr(0, salvagedLength), found) == ParseResult::sample) {
            found.offset = stream.offset();
            visit(found);
            ++count;
            stream.advance(found.text.size());
        } else {
            stream.advance(1);
        }
    }
}

} // namespace vellmark::UsageHistoryReader
