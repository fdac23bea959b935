#pragma once

#include <QAccessible>

namespace vellmark::kit {

/// How assistive software is told of a widget.
struct SpokenAs {
    QAccessible::Role role = QAccessible::Client;
    /// The widget's name and description say everything in it: of its insides only the ways to
    /// what takes the keyboard are told of, so that nothing is read twice.
    bool isReadAsOne = false;
};

/// A widget of which Qt's own account is not the right one. Everything else (name, description,
/// place) is told as usual; a button can be pressed, and a checkable one is told as selected or
/// not. Mixed into a widget's class. Main thread.
class Spoken {
public:
    Spoken();
    virtual ~Spoken() = default;
    virtual SpokenAs spokenAs() const = 0;
};

} // namespace vellmark::kit
