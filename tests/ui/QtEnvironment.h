#pragma once

#include "presentation/AgentUIActions.h"

#include <QAbstractButton>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace vellmark::testing {

/// Works through events until `condition` holds; false when it does not within a
/// minute.
bool waitUntil(const std::function<bool()>& condition);

/// Presses and releases a key where the keyboard is.
void pressKey(QWidget& window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Writes down what views ask for, in order: "refresh", "openProvider codex" …
struct RecordedActions {
    std::vector<std::string> calls;
    AgentUIActions actions();
};

/// The visible descendants of exactly these kinds that the keyboard can reach, in tab order.
std::vector<QWidget*> tabStops(QWidget& window);

/// The visible button with these words, or this name; null without one.
QAbstractButton* buttonNamed(const QWidget& view, const QString& words);

/// Whether a label with exactly these words is seen.
bool says(const QWidget& view, const QString& words);

/// Goes through all tab stops of an active window and expects each to come into sight, with the
/// whole ring around it.
void expectFocusRingsAreWhole(QWidget& view);

/// Expects every label that is seen to have room for its words, and every button to be within the
/// view. `where` is for messages.
void expectNothingIsCut(const QWidget& view, const std::string& where);

} // namespace vellmark::testing
