#include "probes/OutputCapture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>

namespace vellmark {
namespace {

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

OutputCapture::OutputCapture(std::size_t limit, Part part)
    : pipe_(makePipe()), limit_(limit), part_(part) {
    ::fcntl(pipe_.readEnd.get(), F_SETFL, O_NONBLOCK);
}

bool OutputCapture::drain() {
    if (hasEnded())
        return false;
    std::array<char, 65536> chunk;
    const ssize_t count = ::read(pipe_.readEnd.get(), chunk.data(), chunk.size());
    if (count > 0) {
        keep(chunk.data(), static_cast<std::size_t>(count));
        return true;
    }
    const bool nothingYet = count < 0 && (errno == EAGAIN || errno == EINTR);
    if (!nothingYet)
        pipe_.readEnd.reset();
    return false;
}

void OutputCapture::keep(const char* bytes, std::size_t count) {
    if (part_ == Part::beginning) {
        text_.append(bytes, std::min(count, limit_ - text_.size()));
        return;
    }
    text_.append(bytes, count);
    if (text_.size() <= limit_)
        return;
    // Not in the middle of a character of UTF-8: what begins so is no text.
    std::size_t cut = text_.size() - limit_;
    for (int step = 0; step < 3 && cut < text_.size() && isContinuation(text_[cut]); ++step)
        ++cut;
    text_.erase(0, cut);
}

} // namespace vellmark
