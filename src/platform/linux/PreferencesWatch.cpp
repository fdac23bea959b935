#include "platform/Preferences.h"
#include "platform/PrivateDirectory.h"
#include "platform/linux/DirectoryEvents.h"

#include <set>
#include <vector>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

class SettingsFileWatch final : public PreferencesWatch {
public:
    SettingsFileWatch(DescriptorWatcher& loop, Descriptor events, std::set<std::string> names,
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

std::unique_ptr<PreferencesWatch> watchPreferences(DescriptorWatcher& loop, const Machine& machine,
                                                   std::function<void()> changed) {
    const fs::path file = machine.configuration / "Vellmark/preferences.json";
    if (makePrivateDirectory(file.parent_path())) {
        return nullptr;
    }
    std::error_code ignored;
    // A link stays, and what it leads to is replaced.
    const fs::path target = fs::weakly_canonical(file, ignored);
    std::vector<fs::path> directories{file.parent_path()};
    if (!target.empty()) {
        directories.push_back(target.parent_path());
    }
    Descriptor events = openDirectoryEvents(directories);
    if (!events.isOpen()) {
        return nullptr;
    }
    std::set<std::string> names{file.filename(), target.filename(), "preferences.waiting"};
    return std::make_unique<SettingsFileWatch>(loop, std::move(events), std::move(names),
                                               std::move(changed));
}

} // namespace vellmark
