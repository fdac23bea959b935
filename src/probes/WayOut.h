#pragma once

namespace vellmark {

/// What the user can do about a failure.
enum class WayOut {
    none,
    readAgain,
    logIn,
    install,
    update, ///< the agent's program is too old; its installer brings a new one
    openSettings,
};

} // namespace vellmark
