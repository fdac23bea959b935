#include "platform/InstanceIdentifier.h"
#include "platform/Preferences.h"
#include "platform/macos/PreferencesChange.h"

#include <array>
#include <notify.h>
#include <unistd.h>

namespace vellmark {

namespace {

/// Whoever changes a setting posts a notification, see UserDefaults.
class NotificationWatch final : public FileWatch {
public:
    NotificationWatch(DescriptorWatcher& loop, int token, int descriptor,
                      std::function<void()> changed)
        : token_(token), descriptor_(descriptor), changed_(std::move(changed)),
          watch_(loop.watch(descriptor_, [this] { read(); })) {}
    ~NotificationWatch() override {
        watch_.reset();
        notify_cancel(token_); // closes the descriptor
    }

private:
    void read() {
        // A token for each notification; there is at least one.
        std::array<int, 64> tokens{};
        if (::read(descriptor_, tokens.data(), sizeof tokens) > 0) {
            changed_(); // last: it may end the watch
        }
    }

    int token_;
    int descriptor_;
    std::function<void()> changed_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace

std::string preferencesChangeName(const Machine& machine) {
    return instanceIdentifier(machine) + ".SettingsChanged";
}

std::unique_ptr<FileWatch> watchPreferences(DescriptorWatcher& loop, const Machine& machine,
                                            std::function<void()> changed) {
    int token = 0;
    int descriptor = -1;
    if (notify_register_file_descriptor(preferencesChangeName(machine).c_str(), &descriptor, 0,
                                        &token) != NOTIFY_STATUS_OK) {
        return nullptr;
    }
    return std::make_unique<NotificationWatch>(loop, token, descriptor, std::move(changed));
}

} // namespace vellmark
