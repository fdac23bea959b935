#pragma once

#include "Figures.h"
#include "Scenario.h"

#include <string>

namespace simulator {

/// What Claude draws on its terminal, ready to be written in raw mode.
class ClaudeScreens {
public:
    explicit ClaudeScreens(const Scenario& scenario);

    std::string trustQuestion() const;
    std::string banner() const;
    std::string prompt() const;
    std::string status() const;

    /// Which parts of the usage page have arrived.
    struct Parts {
        bool session = true;
        bool week = true;
        bool model = true;
        bool credits = true;
        bool contributions = true;
        bool keys = true;
        /// Colour codes between the digits of a percentage.
        bool colouredDigits = false;
        /// Points by which the figures lag behind (an earlier drawing).
        int lag = 0;
    };
    std::string usage(const Parts& parts) const;
    std::string usageLoading() const;
    std::string usageError() const;
    std::string usageLoggedOut() const;

private:
    std::string block(const std::string& heading, const Figure& figure, const std::string& resets,
                      const Parts& parts) const;

    const Scenario& scenario_;
    Figure session_;
    Figure week_;
    Figure model_;
};

/// The version that "claude --version" prints, and its banner names.
std::string claudeVersion(const Scenario& scenario);
std::string claudeEmail(const Scenario& scenario);

} // namespace simulator
