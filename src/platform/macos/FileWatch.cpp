#include "platform/FileWatch.h"

#include "platform/Descriptor.h"
#include "platform/PrivateDirectory.h"

#include <array>
#include <ctime>
#include <fcntl.h>
#include <sys/event.h>
#include <unistd.h>
#include <utility>

namespace vellmark {
namespace {

/// Told of every file that comes or goes in the directory, as one does when it is replaced.
class DirectoryWatch final : public FileWatch {
public:
    DirectoryWatch(DescriptorWatcher& loop, Descriptor directory, Descriptor events,
                   std::function<void()> changed)
        : directory_(std::move(directory)), events_(std::move(events)),
          changed_(std::move(changed)), watch_(loop.watch(events_.get(), [this] { read(); })) {}

private:
    void read() {
        std::array<struct kevent, 8> told{};
        const timespec atOnce{};
        if (::kevent(events_.get(), nullptr, 0, told.data(), static_cast<int>(told.size()),
                     &atOnce) > 0) {
            changed_(); // last: it may end the watch
        }
    }

    Descriptor directory_;
    Descriptor events_;
    std::function<void()> changed_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace

std::unique_ptr<FileWatch> watchFiles(DescriptorWatcher& loop,
                                      const std::filesystem::path& directory,
                                      std::set<std::string> /*names*/,
                                      std::function<void()> changed) {
    if (makePrivateDirectory(directory)) {
        return nullptr;
    }
    Descriptor opened(::open(directory.c_str(), O_EVTONLY | O_CLOEXEC));
    Descriptor events(::kqueue());
    if (!opened.isOpen() || !events.isOpen()) {
        return nullptr;
    }
    ::fcntl(events.get(), F_SETFD, FD_CLOEXEC);
    struct kevent wish {};
    EV_SET(&wish, static_cast<uintptr_t>(opened.get()), EVFILT_VNODE, EV_ADD | EV_CLEAR, NOTE_WRITE,
           0, nullptr);
    if (::kevent(events.get(), &wish, 1, nullptr, 0, nullptr) != 0) {
        return nullptr;
    }
    return std::make_unique<DirectoryWatch>(loop, std::move(opened), std::move(events),
                                            std::move(changed));
}

} // namespace vellmark
