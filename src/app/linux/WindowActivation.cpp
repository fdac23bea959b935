// On Wayland a token of the protocol xdg-activation; on X11 an identifier of the startup
// notification, which ends in the time of the user's click. Desktops that let no window jump in
// front of the user compare that time with the last key or click elsewhere.

#include "app/WindowActivation.h"

#include "ui/kit/linux/X11.h"

#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

namespace vellmark {
namespace {

constexpr auto tokenVariable = "XDG_ACTIVATION_TOKEN";
/// One that no window has used by then is of a click that opened none, and would be refused.
constexpr std::chrono::seconds tokenLife{10};

struct Token {
    std::string text;
    std::chrono::steady_clock::time_point since;
};

/// What the next window is to use.
Token& nextToken() {
    static Token token;
    return token;
}

std::string takeToken() {
    const Token token = std::exchange(nextToken(), {});
    return std::chrono::steady_clock::now() - token.since < tokenLife ? token.text : std::string();
}

std::optional<std::uint32_t> timeOf(std::string_view id) {
    constexpr std::string_view mark = "_TIME";
    const auto at = id.rfind(mark);
    std::uint32_t time = 0;
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view digits = id.substr(at + mark.size());
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), time);
    return read.ec == std::errc() && time != 0 ? std::optional(time) : std::nullopt;
}

class X11Desktop {
public:
    explicit X11Desktop(xcb_connection_t* connection)
        : connection_(connection),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}

    /// Extended Window Manager Hints: the window is asked for by an application (1) at this time.
    void activate(xcb_window_t window, const std::string& id, std::uint32_t time) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window,
                            kit::x11Atom(connection_, "_NET_STARTUP_ID"),
                            kit::x11Atom(connection_, "UTF8_STRING"), 8, std::uint32_t(id.size()),
                            id.data());
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = kit::x11Atom(connection_, "_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 1;
        message.data.data32[1] = time;
        send(message, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    }

    /// Startup Notification Protocol: the cursor that shows that something starts goes.
    void endStartup(xcb_window_t sender, const std::string& id) {
        std::string words = "remove: ID=\"";
        for (const char character : id) {
            if (character == '"' || character == '\\') {
                words += '\\';
            }
            words += character;
        }
        words += '"';
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 8;
        message.window = sender;
        message.type = kit::x11Atom(connection_, "_NET_STARTUP_INFO_BEGIN");
        // With the null byte that ends it.
        for (std::size_t at = 0; at <= words.size(); at += sizeof message.data.data8) {
            std::memset(message.data.data8, 0, sizeof message.data.data8);
            words.copy(reinterpret_cast<char*>(message.data.data8), sizeof message.data.data8, at);
            send(message, XCB_EVENT_MASK_PROPERTY_CHANGE);
            message.type = kit::x11Atom(connection_, "_NET_STARTUP_INFO");
        }
        xcb_flush(connection_);
    }

private:
    void send(const xcb_client_message_event_t& message, std::uint32_t mask) {
        xcb_send_event(connection_, 0, root_, mask, reinterpret_cast<const char*>(&message));
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
};

} // namespace

void setActivationToken(const std::string& token) {
    nextToken() = {token, std::chrono::steady_clock::now()};
}

void bringToFront(QWidget& window) {
    const std::string token = takeToken();
    xcb_connection_t* const connection = kit::x11Connection();
    if (connection == nullptr) {
        // Here the toolkit looks for it when a window asks to be activated. Nothing else of the
        // program reads the variable, and agents get the environment of the start.
        token.empty() ? ::unsetenv(tokenVariable) : ::setenv(tokenVariable, token.c_str(), 1);
    }
    // A popup stands before everything and has the keys without being active.
    const bool isPopup = window.windowType() == Qt::Popup;
    if (!isPopup) {
        window.raise();
        window.activateWindow();
    }
    if (token.empty() || connection == nullptr) {
        return;
    }
    X11Desktop desktop(connection);
    const auto handle = static_cast<xcb_window_t>(window.winId());
    if (const auto time = timeOf(token); time && !isPopup) {
        desktop.activate(handle, token, *time);
    }
    desktop.endStartup(handle, token);
}

} // namespace vellmark
