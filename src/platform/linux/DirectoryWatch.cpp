#include "platform/linux/DirectoryWatch.h"

#include "platform/Descriptor.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace vellmark {
namespace {

/// Closed when none of the directories can be looked at.
Descriptor openDirectoryEvents(const std::vector<std::filesystem::path>& directories,
                               NewFiles newFiles) {
    // Of attributes too: settings that nobody was allowed to read may be readable now.
    const std::uint32_t wanted = IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE | IN_ATTRIB |
                                 (newFiles == NewFiles::atOnce ? IN_CREATE : 0);
    Descriptor events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    bool isWatched = false;
    for (const std::filesystem::path& directory : directories) {
        isWatched |=
            events.isOpen() && inotify_add_watch(events.get(), directory.c_str(), wanted) >= 0;
    }
    return isWatched ? std::move(events) : Descriptor();
}

/// Reads what the descriptor has to tell. Whether one of `names` is among it, or may be.
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

class DirectoryWatch final : public FileWatch {
public:
    DirectoryWatch(DescriptorWatcher& loop, Descriptor events, std::set<std::string> names,
                   std::function<void()> changed)
        : events_(std::move(events)), names_(std::move(names)), changed_(std::move(changed)),
          watch_(loop.watch(events_.get(), [this] {
              if (tellOfOne(events_, names_)) {
                  changed_(); // last: it may end the watch
              }
          })) {}

private:
    Descriptor events_;
    std::set<std::string> names_;
    std::function<void()> changed_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace

std::unique_ptr<FileWatch> watchDirectories(DescriptorWatcher& loop,
                                            const std::vector<std::filesystem::path>& directories,
                                            std::set<std::string> names,
                                            std::function<void()> changed, NewFiles newFiles) {
    Descriptor events = openDirectoryEvents(directories, newFiles);
    if (!events.isOpen()) {
        return nullptr;
    }
    return std::make_unique<DirectoryWatch>(loop, std::move(events), std::move(names),
                                            std::move(changed));
}

} // namespace vellmark
