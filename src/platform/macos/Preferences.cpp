#include "platform/FileLock.h"
#include "platform/PreferencesFile.h"
#include "platform/macos/CoreFoundationOwner.h"
#include "platform/macos/PreferencesChange.h"

#include <algorithm>
#include <notify.h>
#include <utility>

namespace vellmark {

namespace {

/// The user's defaults of the application, the same ones in both fronts.
///
/// The system merges changes of several processes by key. A list's members are ours to merge, under
/// a lock.
class UserDefaults final : public Preferences {
public:
    explicit UserDefaults(const Machine& machine)
        : changeName_(preferencesChangeName(machine)),
          lock_(machine.supportDirectory() / "preferences.lock", FileLock::Seconds(0.2)) {}

    std::optional<bool> boolean(std::string_view key) const override {
        const auto value = copy(key, CFBooleanGetTypeID());
        return value
                   ? std::optional<bool>(CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())))
                   : std::nullopt;
    }

    std::optional<double> number(std::string_view key) const override {
        const auto value = copy(key, CFNumberGetTypeID());
        double number = 0;
        if (!value || !CFNumberGetValue(static_cast<CFNumberRef>(value.get()), kCFNumberDoubleType,
                                        &number)) {
            return std::nullopt;
        }
        return number;
    }

    std::optional<std::string> string(std::string_view key) const override {
        return textOfCFString(copy(key, CFStringGetTypeID()).get());
    }

    std::optional<std::vector<std::string>> strings(std::string_view key) const override {
        const auto value = copy(key, CFArrayGetTypeID());
        if (!value) {
            return std::nullopt;
        }
        const auto array = static_cast<CFArrayRef>(value.get());
        std::vector<std::string> texts;
        for (CFIndex index = 0; index < CFArrayGetCount(array); ++index) {
            auto text = textOfCFString(CFArrayGetValueAtIndex(array, index));
            if (!text) {
                return std::nullopt;
            }
            texts.push_back(std::move(*text));
        }
        return texts;
    }

    void setBoolean(std::string_view key, bool value) override {
        set(key, value ? kCFBooleanTrue : kCFBooleanFalse);
    }

    void setNumber(std::string_view key, double value) override {
        const CFOwner<CFNumberRef> number(
            CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
        set(key, number.get());
    }

    void setString(std::string_view key, std::string value) override {
        set(key, makeCFString(value).get());
    }

    void setStrings(std::string_view key, std::vector<std::string> value) override {
        const CFOwner<CFMutableArrayRef> array(CFArrayCreateMutable(
            kCFAllocatorDefault, static_cast<CFIndex>(value.size()), &kCFTypeArrayCallBacks));
        for (const auto& text : value) {
            if (const auto element = makeCFString(text)) {
                CFArrayAppendValue(array.get(), element.get());
            }
        }
        set(key, array.get());
    }

    void setMember(std::string_view key, std::string_view member, bool isIn) override {
        std::error_code refusal;
        const auto held = lock_.acquire(refusal);
        reload();
        auto list = strings(key).value_or(std::vector<std::string>());
        std::erase(list, member);
        if (isIn) {
            list.emplace_back(member);
        }
        setStrings(key, std::move(list));
    }

    void remove(std::string_view key) override { set(key, nullptr); }

    void reload() override { CFPreferencesAppSynchronize(application_.get()); }

    std::optional<std::error_code> writeError() const override { return error_; }

    void retry() override {
        if (error_) {
            synchronize();
        }
    }

private:
    CFOwner<CFTypeRef> copy(std::string_view key, CFTypeID type) const {
        const auto name = makeCFString(key);
        CFOwner<CFTypeRef> value(name ? CFPreferencesCopyAppValue(name.get(), application_.get())
                                      : nullptr);
        return value && CFGetTypeID(value.get()) == type ? std::move(value) : nullptr;
    }

    void set(std::string_view key, CFTypeRef value) {
        const auto name = makeCFString(key);
        if (!name) {
            return;
        }
        CFPreferencesSetAppValue(name.get(), value, application_.get());
        synchronize();
    }

    void synchronize() {
        // The system does not say what went wrong.
        error_ = CFPreferencesAppSynchronize(application_.get())
                     ? std::nullopt
                     : std::optional(std::make_error_code(std::errc::io_error));
        notify_post(changeName_.c_str());
    }

    /// The bundle's identifier by name: the terminal program is in no bundle, and its "current
    /// application" would be another one.
    CFOwner<CFStringRef> application_ = makeCFString("app.vellmark.Vellmark");
    std::string changeName_;
    LockFile lock_;
    std::optional<std::error_code> error_;
};

} // namespace

std::unique_ptr<Preferences> makePreferences(const Machine& machine) {
    if (machine.isSandbox()) {
        return makePreferencesFile(
            machine.configuration / "Vellmark" / "preferences.json",
            [name = preferencesChangeName(machine)] { notify_post(name.c_str()); });
    }
    return std::make_unique<UserDefaults>(machine);
}

} // namespace vellmark
