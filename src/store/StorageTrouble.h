#pragma once

#include "platform/RegularFile.h"

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vellmark {

/// Notices when writing a file begins to fail, when it fails for another reason and when it works
/// again, so that each is told once and not at every attempt.
class StorageTrouble {
public:
    enum class Kind {
        failed,    ///< `error` says why
        inTheWay,  ///< something else stands in the place of `file`
        recovered, ///< what was held back is on disk
        repaired,  ///< the file was damaged and is repaired; `file` is what it was
        foreign,   ///< `file` is of another form and is not written
        undecoded, ///< `part` of `file` cannot be understood; all of it when there is none
    };
    /// Whether it lasts until `recovered`.
    static bool lasts(Kind kind) {
        return kind == Kind::failed || kind == Kind::inTheWay || kind == Kind::foreign;
    }
    struct News {
        Kind kind = Kind::failed;
        std::error_code error;
        std::filesystem::path file;
        std::string part;
        bool isRepeated = false; ///< it was the reason before another one, which is over
        bool operator==(const News&) const = default;
    };

    explicit StorageTrouble(std::filesystem::path file) : file_(std::move(file)) {}

    void failed(std::error_code error) {
        if (error == notRegularFile()) {
            begin({Kind::inTheWay, error, fileInTheWay(file_), {}});
        } else {
            begin({Kind::failed, error, file_, {}});
        }
    }
    void foreign() { begin({Kind::foreign, {}, file_, {}}); }
    void repaired(std::filesystem::path aside) {
        news_.push_back({Kind::repaired, {}, std::move(aside), {}});
    }
    void undecoded(std::string part = {}) {
        news_.push_back({Kind::undecoded, {}, file_, std::move(part)});
    }
    void worked() {
        if (!std::exchange(lasting_, {}).empty()) {
            news_.push_back({Kind::recovered, {}, file_, {}});
        }
    }

    /// The next of what happened; absent when all of it was taken.
    std::optional<News> takeNews() {
        if (news_.empty()) {
            return std::nullopt;
        }
        News first = std::move(news_.front());
        news_.pop_front();
        return first;
    }

private:
    void begin(News news) {
        if (!lasting_.empty() && lasting_.back() == news) {
            return;
        }
        const bool isRepeated = std::erase(lasting_, news) > 0;
        lasting_.push_back(news);
        news.isRepeated = isRepeated;
        news_.push_back(std::move(news));
    }

    std::filesystem::path file_;
    std::vector<News> lasting_; ///< the reasons since writing last worked, the present one last
    std::deque<News> news_;
};

} // namespace vellmark
