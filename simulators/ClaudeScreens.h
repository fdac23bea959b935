#pragma once

#include "ClaudeAccount.h"
#include "Figures.h"
#include "Scenario.h"

#include <string>
#include <vector>

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

    /// The usage page as today's CLI draws it: one line after the other, the cursor left on the
    /// tabs, and whatever changes later written over what stands there.
    using Lines = std::vector<std::string>;
    /// `lag` as above; `notice` tells below the figures what becomes of them.
    Lines lines(int lag, const std::string& notice = {}) const;
    /// What is drawn when `drawn` is on the screen and `page` is to be: goes up over the lines that
    /// stay, erases from the first one that differs, and writes on from there.
    static std::string replacing(const Lines& drawn, const Lines& page);

private:
    std::string block(const std::string& heading, const Figure& figure, const std::string& resets,
                      const Parts& parts) const;

    const Scenario& scenario_;
    const ClaudeFigures figures_;
};

} // namespace simulator
