#include "platform/Descriptor.h"
#include "platform/Preferences.h"
#include "platform/PrivateDirectory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <sys/inotify.h>
#include <unistd.h>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// Looks at the directories, as a change replaces the file.
class FileWatch final : public PreferencesWatch {
public:
    FileWatch(DescriptorWatcher& loop, Descriptor events, std::set<std::string> names,
              std::function<void()> changed)
        : events_(std::move(events)), names_(std::move(names)), changed_(std::move(changed)),
          watch_(loop.watch(events_.get(), [this] { read(); })) {}

private:
    void read() {
        bool isOurs = false;
        alignas(inotify_event) std::array<char, 4096> buffer;
        for (ssize_t count = 0;
             (count = ::read(events_.get(), buffer.data(), buffer.size())) > 0;) {
            for (const char* at = buffer.data(); at < buffer.data() + count;) {
                inotify_event event{};
                std::memcpy(&event, at, sizeof event);
                const bool isTooMany = (event.mask & IN_Q_OVERFLOW) != 0;
                const char* const name = at + sizeof event;
                isOurs = isOurs || isTooMany || (event.len > 0 && names_.contains(name));
                at = name + event.len;
            }
        }
        if (isOurs) {
            changed_(); // last: it may end the watch
        }
    }

    Descriptor events_;
    std::set<std::string> names_;
    std::function<void()> changed_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace

std::unique_ptr<PreferencesWatch> watchPreferences(DescriptorWatcher& loop, const Machine& machine,
                                                   std::function<void()> changed) {
    const fs::path file = machine.configuration / "Vellmark/preferences.json";
    Descriptor events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!events.isOpen() || makePrivateDirectory(file.parent_path())) {
        return nullptr;
    }
    std::error_code ignored;
    // A link stays, and what it leads to is replaced.
    const fs::path target = fs::weakly_canonical(file, ignored);
    bool isWatched = false;
    for (const fs::path& each : {file, target}) {
        isWatched |=
            !each.empty() && inotify_add_watch(events.get(), each.parent_path().c_str(),
                                               IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE) >= 0;
    }
    if (!isWatched) {
        return nullptr;
    }
    std::set<std::string> names{file.filename(), target.filename(), "preferences.waiting"};
    return std::make_unique<FileWatch>(loop, std::move(events), std::move(names),
                                       std::move(changed));
}

} // namespace vellmark
