#include "ClaudeScreens.h"

#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace simulator {

namespace {

const std::string newLine = "\r\n";
const std::string clearScreen = "\033[2J\033[3J\033[H";

std::string bold(const std::string& text) {
    return "\033[1m" + text + "\033[22m";
}
std::string dim(const std::string& text) {
    return "\033[38;5;245m" + text + "\033[39m";
}

std::string tabs(const std::string& chosen) {
    std::string line = ' ' + bold("Settings:");
    for (const std::string tab : {"Status", "Config", "Usage"}) {
        const bool isChosen = tab == chosen;
        line.append(isChosen ? "  \033[7m " : "   ").append(tab);
        line.append(isChosen ? " \033[27m" : " ");
    }
    return clearScreen + line + newLine + newLine;
}

std::string bar(double percent) {
    constexpr int cells = 25;
    const int filled = static_cast<int>(std::lround(percent / 100 * cells));
    std::string text = "\033[38;5;75m";
    for (int cell = 0; cell < cells; ++cell) {
        text += cell == filled ? "\033[38;5;238m█" : "█";
    }
    return text + "\033[39m";
}

std::string money(double amount) {
    std::string cents = std::to_string(std::lround(amount * 100));
    cents.insert(0, cents.size() < 3 ? 3 - cents.size() : 0, '0');
    cents.insert(cents.size() - 2, 1, '.');
    return '$' + cents;
}

} // namespace

ClaudeScreens::ClaudeScreens(const Scenario& scenario) : scenario_(scenario), figures_(scenario) {}

std::string ClaudeScreens::trustQuestion() const {
    return "Do you trust the files in this folder?" + newLine + "Enter y/n: ";
}

std::string ClaudeScreens::banner() const {
    return "\033]0;claude\007\033[?25l" + bold("Claude Code") + " v" + claudeVersion(scenario_) +
           newLine + dim("Screen reader mode, restricted session") + newLine + newLine;
}

std::string ClaudeScreens::prompt() const {
    return newLine + "\033(B\033[m$ ";
}

std::string ClaudeScreens::status() const {
    char directory[4096] = "/";
    if (::getcwd(directory, sizeof directory) == nullptr) {
        directory[0] = '\0';
    }
    std::string page = tabs("Status");
    const auto field = [&page](const std::string& label, const std::string& value) {
        page += "  " + dim(label + ":") + " " + value + newLine;
    };
    field("Version", claudeVersion(scenario_));
    field("Session name", "quota check");
    field("Session ID", "3f6b0f9e-5f0c-4d5e-9a53-0d5b6f2f7c11");
    field("cwd", directory);
    field("Login method", scenario_.is({"login-lies"}) ? "none" : claudePlan(scenario_));
    field("Organization", claudeOrganization(scenario_));
    field("Email", claudeEmail(scenario_));
    return page + newLine + dim("Esc to cancel") + newLine;
}

std::string ClaudeScreens::block(const std::string& heading, const Figure& figure,
                                 const std::string& resets, const Parts& parts) const {
    const double shown = std::max(0.0, figure.usedPercent - parts.lag);
    std::string digits = std::to_string(std::lround(shown));
    if (parts.colouredDigits) {
        digits.insert(1, "\033[1m");
    }
    return bold(heading) + newLine + bar(shown) + "  " + digits + "% used\033[22m" + newLine +
           dim("Resets " + resets + " (Europe/Zurich)") + newLine + newLine;
}

std::string ClaudeScreens::usage(const Parts& parts) const {
    std::string page = tabs("Usage");
    if (parts.session) {
        page += block("Current session", figures_.session, zurichTime(figures_.session.resetsAt),
                      parts);
    }
    if (parts.week) {
        page += block("Current week (all models)", figures_.week,
                      zurichDateTime(figures_.week.resetsAt), parts);
    }
    if (parts.model && figures_.model) {
        page += block("Current week (Fable)", *figures_.model,
                      zurichDateTime(figures_.model->resetsAt), parts);
    }
    if (parts.contributions) {
        page += bold("What's contributing to your limits usage?") + newLine +
                dim("Approximate, based on the sessions on this machine") + newLine +
                "62% of the last 24 h came from long sessions" + newLine + newLine;
    }
    if (parts.credits) {
        page += bold("Usage credits") + newLine + money(figures_.spent) + " / " +
                money(figures_.spendLimit) + " spent" + newLine;
    }
    if (parts.keys) {
        page += dim("Esc to cancel") + newLine;
    }
    return page;
}

std::string ClaudeScreens::usageLoading() const {
    return tabs("Usage") + dim("Loading usage data…") + newLine;
}

std::string ClaudeScreens::usageError() const {
    return tabs("Usage") + "\033[31mFailed to load usage data\033[39m · Esc to retry" + newLine;
}

std::string ClaudeScreens::usageLoggedOut() const {
    return tabs("Usage") + "Failed to load usage data" + newLine +
           "Not logged in · Run /login to sign in" + newLine;
}

ClaudeScreens::Lines ClaudeScreens::lines(int lag, const std::string& notice) const {
    Lines lines = {"Settings  Status   Config   Usage   Stats", "Session",
                   "Estimated cost: $0.0000"};
    const auto addShare = [&lines](double percent) {
        const std::string share = std::to_string(std::lround(std::max(0.0, percent))) + '%';
        lines.push_back(share + ' ' + share + " used");
    };
    const auto addBlock = [&](const std::string& heading, const Figure& figure,
                              const std::string& resets) {
        lines.push_back(heading);
        addShare(figure.usedPercent - lag);
        lines.push_back("Resets " + resets + " (Europe/Zurich)");
    };
    addBlock("Current session", figures_.session, zurichTime(figures_.session.resetsAt));
    addBlock("Current week (all models)", figures_.week,
             zurichDateTime(figures_.week.resetsAt, ", "));
    if (figures_.model) {
        addBlock("Current week (Fable)", *figures_.model,
                 zurichDateTime(figures_.model->resetsAt, ", "));
    }
    lines.emplace_back("What's contributing to your usage?");
    lines.emplace_back("Approximate · sessions on this computer only");
    lines.emplace_back("Usage credits");
    addShare(100 * figures_.spent / figures_.spendLimit);
    lines.push_back(money(figures_.spent) + " / " + money(figures_.spendLimit) + " spent");
    if (!notice.empty()) {
        lines.push_back(notice);
    }
    lines.emplace_back("←/→ to switch · Esc to close");
    return lines;
}

std::string ClaudeScreens::replacing(const Lines& drawn, const Lines& page) {
    const auto differing =
        std::mismatch(drawn.begin(), drawn.end(), page.begin(), page.end()).second;
    const auto kept = static_cast<std::size_t>(differing - page.begin());
    const auto move = [](std::size_t lines, char direction) {
        return lines == 0 ? "" : "\033[" + std::to_string(lines) + direction;
    };
    std::string text = move(drawn.size() - 1, 'B');
    for (std::size_t line = drawn.size(); line > kept; --line) {
        text += line == drawn.size() ? "\033[2K" : "\033[1A\033[2K";
    }
    text += "\033[G";
    for (auto line = differing; line != page.end(); ++line) {
        text += line == differing ? *line : newLine + *line;
    }
    return text + "\033[29G" + move(page.size() - 1, 'A');
}

} // namespace simulator
