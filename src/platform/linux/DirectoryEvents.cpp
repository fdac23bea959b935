#include "platform/linux/DirectoryEvents.h"

#include <array>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace vellmark {

Descriptor openDirectoryEvents(const std::vector<std::filesystem::path>& directories) {
    Descriptor events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    bool isWatched = false;
    for (const std::filesystem::path& directory : directories) {
        isWatched |=
            events.isOpen() && inotify_add_watch(events.get(), directory.c_str(),
                                                 IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE) >= 0;
    }
    return isWatched ? std::move(events) : Descriptor();
}

bool tellOfOne(const Descriptor& events, const std::set<std::string>& names) {
    bool isOurs = false;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (ssize_t count = 0; (count = ::read(events.get(), buffer.data(), buffer.size())) > 0;) {
        for (const char* at = buffer.data(); at < buffer.data() + count;) {
            inotify_event event{};
            std::memcpy(&event, at, sizeof event);
            const bool isTooMany = (event.mask & IN_Q_OVERFLOW) != 0;
            const char* const name = at + sizeof event;
            isOurs = isOurs || isTooMany || (event.len > 0 && names.contains(name));
            at = name + event.len;
        }
    }
    return isOurs;
}

} // namespace vellmark
