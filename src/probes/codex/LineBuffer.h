#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vellmark {

/// Cuts a stream of bytes into lines at line feeds, in linear time however the bytes are split, and
/// holds at most one unfinished line.
class LineBuffer {
public:
    /// A longer line is a flood, not an answer.
    static constexpr std::size_t maximumLine = 32u << 20;

    /// Hands each line that `bytes` completes to `take`, without its line feed. False when the
    /// unfinished line has grown beyond `maximumLine`.
    template<typename Take>
    bool append(std::string_view bytes, Take&& take) {
        for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
            if (pending_.empty()) {
                take(bytes.substr(0, end));
            } else {
                pending_.append(bytes.substr(0, end));
                take(std::string_view(pending_));
                pending_.clear();
            }
            bytes.remove_prefix(end + 1);
        }
        pending_.append(bytes);
        return pending_.size() <= maximumLine;
    }

private:
    std::string pending_;
};

} // namespace vellmark
