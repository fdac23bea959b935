#include "process/OutputCapture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>

namespace vellmark {
namespace {

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

} // namespace

OutputCapture::OutputCapture(std::size_t limit, Part part)
    : pipe_(makePipe()), limit_(limit), part_(part) {
    ::fcntl(pipe_.readEnd.get(), F_SETFL, O_NONBLOCK);
}

OutputCapture OutputCapture::recording(int file, std::size_t limit) {
    OutputCapture capture(limit, Part::beginning);
    capture.file_ = file;
    return capture;
}

bool OutputCapture::drain() {
    if (hasEnded()) {
        return false;
    }
    std::array<char, 65536> chunk;
    const ssize_t count = ::read(pipe_.readEnd.get(), chunk.data(), chunk.size());
    if (count > 0) {
        keep({chunk.data(), static_cast<std::size_t>(count)});
        return true;
    }
    const bool nothingYet = count < 0 && (errno == EAGAIN || errno == EINTR);
    if (!nothingYet) {
        pipe_.readEnd.reset();
    }
    return false;
}

void OutputCapture::keep(std::string_view bytes) {
    if (file_ >= 0) {
        record(bytes);
    } else if (part_ == Part::beginning) {
        text_.append(bytes.substr(0, limit_ - text_.size()));
    } else {
        keepEnd(bytes);
    }
}

void OutputCapture::record(std::string_view bytes) {
    const std::string_view wanted = bytes.substr(0, limit_ - recorded_);
    recorded_ += wanted.size();
    const bool isWritten = writeAll(file_, wanted);
    if (!isWritten || wanted.size() < bytes.size()) {
        hasOutgrownFile_ = true;
    }
}

void OutputCapture::keepEnd(std::string_view bytes) {
    text_.append(bytes);
    if (text_.size() <= limit_) {
        return;
    }
    // Do not begin in the middle of a UTF-8 character: that would be no text.
    std::size_t cut = text_.size() - limit_;
    for (int step = 0; step < 3 && cut < text_.size() && isContinuation(text_[cut]); ++step) {
        ++cut;
    }
    text_.erase(0, cut);
}

} // namespace vellmark
