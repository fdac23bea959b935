// Settings of the desktop portal (org.freedesktop.portal.Settings): "color-scheme", where 1 is
// dark, 2 is light, anything else no preference; "contrast", where 1 is high; and GNOME's
// "enable-animations" and "high-contrast", which the desktops that have such settings share.

#include "platform/SystemAppearance.h"

#include "platform/linux/BusConnection.h"
#include "platform/linux/BusLibrary.h"
#include "platform/linux/SessionBusReturn.h"

#include <cstdint>
#include <string>

namespace vellmark {
namespace {

constexpr auto settingsInterface = "org.freedesktop.portal.Settings";
constexpr auto schemeNamespace = "org.freedesktop.appearance";
constexpr auto schemeKey = "color-scheme";
constexpr auto contrastKey = "contrast";
constexpr auto highContrastNamespace = "org.gnome.desktop.a11y.interface";
constexpr auto highContrastKey = "high-contrast";
constexpr auto motionNamespace = "org.gnome.desktop.interface";
constexpr auto motionKey = "enable-animations";

/// `Read` wraps the value in a variant of its own.
sdbus::Variant unwrapped(sdbus::Variant value) {
    while (value.containsValueOfType<sdbus::Variant>()) {
        value = value.get<sdbus::Variant>();
    }
    return value;
}

ColorScheme schemeOf(const sdbus::Variant& value) {
    if (!value.containsValueOfType<std::uint32_t>()) {
        return ColorScheme::noPreference;
    }
    switch (value.get<std::uint32_t>()) {
    case 1:
        return ColorScheme::dark;
    case 2:
        return ColorScheme::light;
    default:
        return ColorScheme::noPreference;
    }
}

class PortalAppearance final : public SystemAppearance {
public:
    PortalAppearance(DescriptorWatcher& loop, std::function<void()> onChange)
        : onChange_(std::move(onChange)),
          busReturn_(loop, {.onLoss = {}, .onReturn = [this](const auto& bus) { use(bus); }}) {
        use(BusConnection::session(loop));
    }

    ColorScheme colorScheme() const override { return scheme_; }
    bool reducesMotion() const override { return reducesMotion_; }
    bool increasesContrast() const override { return hasContrast_ || hasDesktopContrast_; }

private:
    void use(std::shared_ptr<BusConnection> bus) {
        portal_.reset();
        connection_ = std::move(bus);
        if (connection_) {
            subscribe();
        }
    }

    void subscribe() {
        try {
            portal_ = sdbus::createProxy(connection_->bus(),
                                         bus::ServiceName("org.freedesktop.portal.Desktop"),
                                         sdbus::ObjectPath("/org/freedesktop/portal/desktop"));
            portal_->uponSignal("SettingChanged")
                .onInterface(settingsInterface)
                .call([this](const std::string& space, const std::string& key,
                             const sdbus::Variant& value) { accept(space, key, value); });
            bus::receiveSignals(*portal_);
            ask(schemeNamespace, schemeKey);
            ask(motionNamespace, motionKey);
            ask(schemeNamespace, contrastKey);
            ask(highContrastNamespace, highContrastKey);
        } catch (const sdbus::Error&) {
            portal_.reset();
        }
    }

    void ask(const std::string& space, const std::string& key) {
        portal_->callMethodAsync("Read")
            .onInterface(settingsInterface)
            .withArguments(space, key)
            .uponReplyInvoke([this, space, key](bus::CallError error, const sdbus::Variant& value) {
                if (!error) {
                    accept(space, key, value);
                }
            });
    }

    void accept(const std::string& space, const std::string& key, const sdbus::Variant& wrapped) {
        const sdbus::Variant value = unwrapped(wrapped);
        const ColorScheme formerScheme = scheme_;
        const bool formerMotion = reducesMotion_;
        const bool formerContrast = increasesContrast();
        if (space == schemeNamespace && key == schemeKey) {
            scheme_ = schemeOf(value);
        } else if (space == motionNamespace && key == motionKey) {
            reducesMotion_ = value.containsValueOfType<bool>() && !value.get<bool>();
        } else if (space == schemeNamespace && key == contrastKey) {
            hasContrast_ =
                value.containsValueOfType<std::uint32_t>() && value.get<std::uint32_t>() == 1;
        } else if (space == highContrastNamespace && key == highContrastKey) {
            hasDesktopContrast_ = value.containsValueOfType<bool>() && value.get<bool>();
        }
        if (scheme_ != formerScheme || reducesMotion_ != formerMotion ||
            increasesContrast() != formerContrast) {
            onChange_();
        }
    }

    std::shared_ptr<BusConnection> connection_;
    std::function<void()> onChange_;
    std::unique_ptr<sdbus::IProxy> portal_;
    ColorScheme scheme_ = ColorScheme::noPreference;
    bool reducesMotion_ = false;
    bool hasContrast_ = false;
    bool hasDesktopContrast_ = false;
    SessionBusReturn busReturn_;
};

} // namespace

void setApplicationAppearance(ColorScheme /*scheme*/) {
    // The window manager and the desktop's dialogs cannot be told.
}

std::unique_ptr<SystemAppearance> observeSystemAppearance(DescriptorWatcher& loop,
                                                          std::function<void()> onChange) {
    return std::make_unique<PortalAppearance>(loop, std::move(onChange));
}

} // namespace vellmark
