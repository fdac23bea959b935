#include "model/UsageHistoryReader.h"

#include "model/HistorySampleParser.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace vellmark::UsageHistoryReader {

namespace {

using Form = HistoryFileScan::Form;
using ParseResult = HistorySampleParser::Result;

constexpr std::size_t bufferSize = 1u << 18;
/// No sample is nearly as long; an object that is cannot be one.
constexpr std::size_t longestSample = 1u << 16;

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

class Scanner {
public:
    Scanner(int descriptor, HistoryFileScan scan, const Visitor& visit)
        : stream_(descriptor, scan.samplesEnd), visit_(visit), scan_(scan) {}

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
        if (first == '\0' && !stream_.rest().empty()) {
            scan_.form = Form::damaged; // blocks that were never written read as NUL
            return true;
        }
        scan_.form = first == '\0' ? Form::whole : Form::foreign;
        return false;
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
        if (scan_.sampleCount > 0) {
            if (next != ',') {
                scan_.form = Form::damaged;
                return true;
            }
            stream_.advance(1);
            stream_.peek();
        }
        return sample();
    }

    bool sample() {
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
        case ParseResult::foreign:
            scan_.form = Form::foreign;
            return false;
        case ParseResult::malformed:
            beginsStrangely_ = scan_.sampleCount == 0 && stream_.peek() != '\0';
            [[fallthrough]];
        case ParseResult::incomplete:
            scan_.form = Form::damaged;
        }
        return true;
    }

    void take(StoredHistorySample& found) {
        found.offset = stream_.offset();
        visit_(found);
        ++scan_.sampleCount;
        stream_.advance(found.text.size());
        scan_.samplesEnd = stream_.offset();
    }

    /// Behind damage, goes to the next line and takes the sample that stands on it, if one does.
    bool salvageLine() {
        std::size_t length = std::string_view::npos;
        while ((length = stream_.rest().find('\n')) == std::string_view::npos) {
            if (stream_.rest().size() >= longestSample) {
                stream_.advance(stream_.rest().size());
            }
            if (!stream_.fill()) {
                return false;
            }
        }
        stream_.advance(length + 1);
        while (stream_.rest().find('\n') == std::string_view::npos &&
               stream_.rest().size() < longestSample && stream_.fill()) {
        }
        const std::string_view line = stream_.rest().substr(0, stream_.rest().find('\n'));
        StoredHistorySample found;
        if (line.starts_with('{') && parser_.parse(line, found) == ParseResult::sample) {
            take(found);
        }
        return true;
    }

    HistoryFileScan finish() {
        if (beginsStrangely_ && scan_.sampleCount == 0) {
            scan_.form = Form::foreign; // nothing in it was ever ours
        }
        scan_.error = stream_.error();
        return scan_;
    }

    Stream stream_;
    const Visitor& visit_;
    HistoryFileScan scan_;
    bool beginsStrangely_ = false; ///< with something in the first sample's place that is no JSON
    HistorySampleParser parser_;
};

} // namespace

HistoryFileScan read(int descriptor, const Visitor& visit) {
    return Scanner(descriptor, {}, visit).run();
}

HistoryFileScan readOn(int descriptor, const HistoryFileScan& earlier, const Visitor& visit) {
    HistoryFileScan start = earlier;
    start.form = Form::whole;
    return Scanner(descriptor, start, visit).run();
}

} // namespace vellmark::UsageHistoryReader
