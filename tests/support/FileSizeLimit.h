#pragma once

#include <csignal>
#include <sys/resource.h>

namespace vellmark::tests {

/// Files may not grow beyond `bytes` for as long as it lives: a disk that is full in the middle of
/// a write.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : former_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit narrow{bytes, limit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &narrow);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, former_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*former_)(int);
    rlimit limit_ = {};
};

} // namespace vellmark::tests
