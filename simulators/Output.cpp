#include "Output.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <random>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace simulator {

bool Output::write(std::string_view bytes) const {
    if (!split_) {
        return writeWhole(bytes);
    }
    std::size_t piece = 1;
    while (!bytes.empty()) {
        const std::size_t count = std::min(piece, bytes.size());
        if (!writeWhole(bytes.substr(0, count))) {
            return false;
        }
        bytes.remove_prefix(count);
        piece = piece % 7 + 1;
        pause(std::chrono::milliseconds(1));
    }
    return true;
}

bool Output::writeWhole(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

std::string garbage() {
    std::minstd_rand random(20251120);
    std::string bytes;
    for (int count = 0; count < 8192; ++count) {
        bytes += static_cast<char>(random() & 0xff);
    }
    return bytes;
}

void pause(std::chrono::milliseconds span) {
    std::this_thread::sleep_for(span);
}

void hang() {
    while (true) {
        ::poll(nullptr, 0, -1);
    }
}

void hangDeaf() {
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
    hang();
}

void crash() {
    const rlimit none = {0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    std::abort();
}

} // namespace simulator
