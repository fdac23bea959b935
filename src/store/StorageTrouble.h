#pragma once

#include <optional>
#include <system_error>
#include <utility>

namespace vellmark {

/// Notices when writing a file begins to fail and when it works again, so that each is told once
/// and not at every attempt.
class StorageTrouble {
public:
    enum class Kind {
        failed,    ///< `error` says why
        recovered, ///< what was held back is on disk
        repaired,  ///< the file was damaged and is repaired
        foreign,   ///< the file is of another form and is not written
    };
    struct News {
        Kind kind = Kind::failed;
        std::error_code error;
    };

    void failed(std::error_code error) { begin({Kind::failed, error}); }
    void foreign() { begin({Kind::foreign, {}}); }
    void repaired() { news_ = News{Kind::repaired, {}}; }
    void worked() {
        if (std::exchange(lasts_, false)) {
            news_ = News{Kind::recovered, {}};
        }
    }

    /// What happened since the last call.
    std::optional<News> takeNews() { return std::exchange(news_, std::nullopt); }

private:
    void begin(News news) {
        if (!std::exchange(lasts_, true)) {
            news_ = news;
        }
    }

    bool lasts_ = false;
    std::optional<News> news_;
};

} // namespace vellmark
