#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/ChartRange.h"

#include <QAbstractButton>
#include <QEvent>
#include <QWidget>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// Works through events until `condition` holds; false when it does not within a
/// minute.
bool waitUntil(const std::function<bool()>& condition);

/// Works off what was posted, as layouts are.
void settle();

/// Brings a window to the front; false when it does not come there.
[[nodiscard]] bool becomesActive(QWidget& window);

/// Presses and releases a key where the keyboard is.
void pressKey(QWidget& window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Sends an event of the mouse at a place of a widget; a move holds the button down.
void sendMouse(QWidget& widget, QEvent::Type type, QPointF place,
               Qt::MouseButton button = Qt::LeftButton);

/// Writes down what views ask for, in order: "refresh", "openProvider codex" …
class RecordedActions {
public:
    std::vector<std::string> calls;
    AgentUIActions actions();
    /// A callback that writes down `name` and what it is called with.
    auto note(std::string name) {
        return [this, name = std::move(name)](const auto&... given) {
            calls.push_back((name + ... + (" " + text(given))));
        };
    }

private:
    static std::string text(const std::string& words) { return words; }
    static std::string text(bool isOn) { return isOn ? "on" : "off"; }
    static std::string text(int number) { return std::to_string(number); }
    static std::string text(ChartRange range) { return std::string(storedText(range)); }
    static std::string text(const AgentProviderID& id) { return id.rawValue; }
    static std::string text(const std::vector<AgentProviderID>& order);
    template<class Choice>
        requires std::is_enum_v<Choice>
    static std::string text(Choice choice) {
        return text(static_cast<int>(choice));
    }
};

/// The visible descendants of exactly these kinds that the keyboard can reach, in tab order.
std::vector<QWidget*> tabStops(QWidget& window);

/// The visible descendants of a kind, in the order in which they were made.
template<class Widget>
std::vector<Widget*> visibleParts(const QWidget& view) {
    std::vector<Widget*> parts;
    for (QWidget* widget : view.findChildren<QWidget*>()) {
        if (auto* part = dynamic_cast<Widget*>(widget); part && widget->isVisibleTo(&view)) {
            parts.push_back(part);
        }
    }
    return parts;
}

/// The first of them with these words, or this name; null without one.
template<class Widget = QAbstractButton>
Widget* partNamed(const QWidget& view, const QString& words) {
    for (Widget* part : visibleParts<Widget>(view)) {
        if (part->property("text").toString() == words || part->accessibleName() == words) {
            return part;
        }
    }
    return nullptr;
}

/// Whether a label with exactly these words is seen.
bool says(const QWidget& view, const QString& words);

/// Goes through all tab stops of an active window and expects each to come into sight, with the
/// whole ring around it.
void expectFocusRingsAreWhole(QWidget& view);

/// Expects everything that is seen to have room for its words, and words and controls to cover
/// nothing beside them and to stay within the view. `where` is for messages.
void expectNothingIsCut(const QWidget& view, const std::string& where);

} // namespace vellmark::tests
