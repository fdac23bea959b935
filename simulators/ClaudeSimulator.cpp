#include "ClaudeAccount.h"
#include "ClaudeQuery.h"
#include "ClaudeScreens.h"
#include "Output.h"
#include "Simulators.h"

#include <map>
#include <termios.h>
#include <unistd.h>

namespace simulator {

namespace {

const Arguments sessionArguments = {"--ax-screen-reader",
                                    "--safe-mode",
                                    "--restricted",
                                    "--permission-mode",
                                    "dontAsk",
                                    "--tools",
                                    ""};

/// The terminal in raw mode for as long as this lives.
class RawTerminal {
public:
    RawTerminal() {
        valid_ = ::tcgetattr(STDIN_FILENO, &saved_) == 0;
        termios raw = saved_;
        ::cfmakeraw(&raw);
        ::tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    }
    ~RawTerminal() { ::tcsetattr(STDIN_FILENO, TCSANOW, &saved_); }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;
    bool valid() const { return valid_; }

private:
    termios saved_ = {};
    bool valid_ = false;
};

/// Raised to end the session with a status from wherever it is.
struct SessionEnd {
    int status;
};

class ClaudeSession {
public:
    explicit ClaudeSession(const Scenario& scenario)
        : scenario_(scenario), screens_(scenario), output_(STDOUT_FILENO, scenario) {}

    int run() {
        try {
            start();
            while (true) {
                submit(readLine());
            }
        } catch (const SessionEnd& end) {
            return end.status;
        }
    }

private:
    void draw(const std::string& text) const {
        if (!output_.write(text)) {
            throw SessionEnd{0};
        }
    }

    void start() {
        // The CLI learns from the answer what is left.
        sendToModel(scenario_);
        if (scenario_.is({"hang"})) {
            hang();
        }
        if (scenario_.is({"deaf"})) {
            hangDeaf();
        }
        if (scenario_.is({"dies-at-start"})) {
            draw("Error: cannot read the settings file" + std::string("\r\n"));
            throw SessionEnd{1};
        }
        if (scenario_.is({"first-start"})) {
            draw(screens_.trustQuestion());
            if (readLine() != "y") {
                throw SessionEnd{1};
            }
        }
        draw(screens_.banner());
        pause(scenario_.delay());
        if (scenario_.is({"no-prompt"})) {
            hang();
        }
        draw(screens_.prompt());
    }

    char readKey() const {
        char key = 0;
        if (::read(STDIN_FILENO, &key, 1) == 1) {
            return key;
        }
        throw SessionEnd{0};
    }

    /// One line of input; Escape leaves an open screen, or empties the line.
    std::string readLine() {
        std::string line;
        while (true) {
            const char key = readKey();
            if (key == '\033') {
                line.clear();
                if (screenOpen_) {
                    screenOpen_ = false;
                    draw("\033[2J\033[H" + screens_.prompt());
                }
            } else if (key == '\r' || key == '\n') {
                draw("\r\n");
                return line;
            } else if (!screenOpen_) {
                line += key;
                draw(std::string(1, key));
            }
        }
    }

    void submit(const std::string& line) {
        pause(scenario_.delay());
        if (line == "/status") {
            showStatus();
        } else if (line == "/usage") {
            showUsage();
        } else if (line == "/exit") {
            draw("Goodbye!\r\n\033[?25h");
            throw SessionEnd{0};
        } else {
            draw("Unknown command: " + line + "\r\n" + screens_.prompt());
        }
    }

    void showStatus() {
        if (scenario_.is({"dies-at-status"})) {
            draw("Segmentation fault\r\n");
            throw SessionEnd{139};
        }
        if (scenario_.is({"no-status"})) {
            return;
        }
        screenOpen_ = true;
        draw(screens_.status());
    }

    using Parts = ClaudeScreens::Parts;

    void showUsage() {
        static const std::map<std::string, void (ClaudeSession::*)()> pages = {
            {"usage-hangs", &ClaudeSession::drawNothing},
            {"page-error", &ClaudeSession::drawError},
            {"login-lies", &ClaudeSession::drawLoggedOut},
            {"garbage", &ClaudeSession::drawGarbage},
            {"huge", &ClaudeSession::drawHuge},
            {"dies", &ClaudeSession::dieInPage},
            {"dies-after-session", &ClaudeSession::dieAfterSession},
            {"empty-page", &ClaudeSession::drawWithoutBlocks},
            {"session-only", &ClaudeSession::drawSessionOnly},
            {"no-end-marker", &ClaudeSession::drawWithoutEnd},
            {"late-credits", &ClaudeSession::drawCreditsLate},
            {"fable-late", &ClaudeSession::drawModelLate},
            {"invalid-utf8", &ClaudeSession::drawInvalidText},
            {"redraw-in-place", &ClaudeSession::drawInPlace},
            {"screen-stale", &ClaudeSession::drawStale},
            {"screen-not-refreshed", &ClaudeSession::drawNotRefreshed},
        };
        screenOpen_ = true;
        if (!scenario_.is({"redraw-in-place", "screen-stale", "screen-not-refreshed"})) {
            draw(screens_.usageLoading());
        }
        pause(scenario_.delay());
        if (scenario_.is({"lingers"})) {
            drawPage();
            hangDeaf();
        }
        const auto page = pages.find(scenario_.name());
        (this->*(page == pages.end() ? &ClaudeSession::drawPage : page->second))();
    }

    void drawNothing() {}
    void drawError() { draw(screens_.usageError()); }
    void drawLoggedOut() { draw(screens_.usageLoggedOut()); }

    void drawGarbage() { draw(garbage()); }

    void drawHuge() {
        Parts parts;
        parts.week = parts.model = false;
        parts.lag = 1;
        const std::string page = screens_.usage(parts);
        for (std::size_t written = 0; written < hugeSize; written += page.size()) {
            draw(page);
        }
        drawPage();
    }

    void dieInPage() {
        draw("\033[1mCurrent session\033[22m\r\n");
        throw SessionEnd{1};
    }

    void dieAfterSession() {
        Parts parts;
        parts.week = parts.model = parts.credits = parts.contributions = false;
        draw(screens_.usage(parts));
        throw SessionEnd{1};
    }

    void drawWithoutBlocks() {
        Parts parts;
        parts.session = parts.week = parts.model = false;
        draw(screens_.usage(parts));
    }

    void drawSessionOnly() {
        Parts parts;
        parts.week = parts.model = false;
        draw(screens_.usage(parts));
    }

    void drawWithoutEnd() {
        Parts parts;
        parts.credits = parts.contributions = false;
        draw(screens_.usage(parts) + "Last refreshed 12 s ago, cache 98% warm\r\n");
    }

    void drawCreditsLate() {
        Parts parts;
        parts.credits = parts.contributions = false;
        draw(screens_.usage(parts));
        pause(std::chrono::milliseconds(400));
        parts.credits = true;
        draw(screens_.usage(parts));
    }

    void drawModelLate() {
        Parts parts;
        parts.model = false;
        draw(screens_.usage(parts));
        pause(scenario_.span("fable-delay", 2500));
        parts.model = true;
        draw(screens_.usage(parts));
    }

    void drawInvalidText() { draw(screens_.usage({}) + "\xff\xfe\xc3\r\n"); }

    /// A good page, drawn three times as it fills: the end of it comes before the week's block, the
    /// figures of the first drawings are older, the last one has colours between its digits.
    void drawPage() {
        Parts parts;
        parts.week = parts.model = false;
        parts.lag = 2;
        draw(screens_.usage(parts));
        pause(scenario_.delay());
        parts.week = parts.model = true;
        for (int drawing = 0; drawing < static_cast<int>(scenario_.number("redraws", 1));
             ++drawing) {
            draw(screens_.usage(parts));
        }
        pause(scenario_.delay());
        parts.lag = 0;
        parts.colouredDigits = true;
        draw(screens_.usage(parts));
    }

    /// As the CLI draws since 2.1: a page of older figures, which new ones replace line by line.
    void drawInPlace() {
        const ClaudeScreens::Lines older = screens_.lines(7, "Refreshing usage…");
        draw(screens_.replacing({""}, older));
        pause(scenario_.delay());
        draw(screens_.replacing(older, screens_.lines(0)));
    }

    /// The figures that the CLI had kept stay on the page.
    void drawStale() {
        keepFigures("Showing last-known usage as of 1m ago (rate limited until 4:25am)");
    }
    void drawNotRefreshed() { keepFigures("Couldn't refresh usage data"); }
    void keepFigures(const std::string& reason) {
        const ClaudeScreens::Lines waiting = screens_.lines(0, "Refreshing usage…");
        draw(screens_.replacing({""}, waiting));
        pause(scenario_.delay());
        draw(screens_.replacing(waiting, screens_.lines(0, reason)));
    }

    const Scenario& scenario_;
    const ClaudeScreens screens_;
    const Output output_;
    bool screenOpen_ = false;
};

int authStatus(const Scenario& scenario) {
    const Output output(STDOUT_FILENO, scenario);
    if (scenario.is({"login-hang"})) {
        hang();
    } else if (scenario.is({"login-deaf"})) {
        hangDeaf();
    } else if (scenario.is({"login-crash"})) {
        crash();
    } else if (scenario.is({"login-huge"})) {
        output.write("{\"loggedIn\": true, \"filler\": \"" + std::string(hugeSize, 'x') + "\"}\n");
    } else if (scenario.is({"login-garbage"})) {
        output.write("\033[31mUnknown command: auth\xff\033[0m\n");
    } else if (scenario.is({"login-string"})) {
        output.write(claudeAuthStatus(scenario, "\"false\""));
    } else if (scenario.is({"logged-out"})) {
        output.write(claudeAuthStatus(scenario, "false"));
        return 1;
    } else {
        output.write(claudeAuthStatus(scenario, "true"));
    }
    return 0;
}

int authLogin(const Scenario& scenario, bool help) {
    const Output output(STDOUT_FILENO, scenario);
    if (help) {
        output.write("Usage: claude auth login [options]\n\nSign in to your account\n");
    } else {
        scenario.becomeNormal();
        output.write("Login successful.\n");
    }
    return 0;
}

} // namespace

int playClaude(const Scenario& scenario, const Arguments& arguments) {
    const Output output(STDOUT_FILENO, scenario);
    if (arguments == Arguments{"--version"}) {
        output.write(claudeVersion(scenario) + " (Claude Code)\n");
        return 0;
    }
    if (arguments == Arguments{"auth", "status", "--json"}) {
        return authStatus(scenario);
    }
    if (arguments.size() >= 2 && arguments[0] == "auth" && arguments[1] == "login") {
        return authLogin(scenario, arguments.back() == "--help");
    }
    if (isClaudeQuery(arguments)) {
        return playClaudeQuery(scenario, arguments);
    }
    if (arguments != sessionArguments) {
        Output(STDERR_FILENO, scenario).write("error: unknown option\n");
        return 1;
    }
    const RawTerminal terminal;
    if (!terminal.valid()) {
        Output(STDERR_FILENO, scenario).write("error: an interactive session needs a terminal\n");
        return 1;
    }
    return ClaudeSession(scenario).run();
}

} // namespace simulator
