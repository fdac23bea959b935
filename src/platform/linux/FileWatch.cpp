#include "platform/FileWatch.h"

#include "platform/Descriptor.h"
#include "platform/PrivateDirectory.h"
#include "platform/linux/DirectoryEvents.h"

#include <utility>

namespace vellmark {
namespace {

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

std::unique_ptr<FileWatch> watchFiles(DescriptorWatcher& loop,
                                      const std::filesystem::path& directory,
                                      std::set<std::string> names, std::function<void()> changed) {
    if (makePrivateDirectory(directory)) {
        return nullptr;
    }
    Descriptor events = openDirectoryEvents({directory});
    if (!events.isOpen()) {
        return nullptr;
    }
    return std::make_unique<DirectoryWatch>(loop, std::move(events), std::move(names),
                                            std::move(changed));
}

} // namespace vellmark
