#include "Figures.h"
#include "Output.h"
#include "Simulators.h"

#include <cmath>
#include <ctime>
#include <iostream>
#include <optional>
#include <unistd.h>

namespace simulator {

namespace {

/// `codex app-server`: one JSON message a line. Answers are compact and carry the request's id;
/// notifications come in between and have none.
class CodexServer {
    /// What the service says when it is asked too often.
    static constexpr const char* refusal =
        "failed to fetch codex rate limits: GET https://codex.example.org/usage failed: 429 Too "
        "Many Requests; content-type=application/json; body={\\\"detail\\\": \\\"slow down\\\"}";

public:
    explicit CodexServer(const Scenario& scenario)
        : scenario_(scenario), output_(STDOUT_FILENO, scenario), errors_(STDERR_FILENO, scenario) {}

    int run() {
        if (const std::optional<int> status = failAtStart()) {
            return *status;
        }
        std::string line;
        while (std::getline(std::cin, line)) {
            pause(scenario_.delay());
            if (const std::optional<int> status = answer(line)) {
                return *status;
            }
        }
        return 0;
    }

private:
    static bool asks(const std::string& line, const std::string& method) {
        return line.find("\"method\":\"" + method + "\"") != std::string::npos;
    }

    void send(const std::string& message) const { output_.write(message + "\n"); }
    void reply(int id, const std::string& result) const {
        send("{\"id\":" + std::to_string(id) + ",\"result\":" + result + "}");
    }
    void refuse(int id, int code, const std::string& message) const {
        send("{\"error\":{\"code\":" + std::to_string(code) + ",\"message\":\"" + message +
             "\"},\"id\":" + std::to_string(id) + "}");
    }
    void notify(const std::string& method) const {
        send("{\"method\":\"" + method + "\",\"params\":{\"status\":\"ready\",\"error\":null}}");
    }

    std::optional<int> failAtStart() const {
        if (scenario_.is({"hang"})) {
            hang();
        }
        if (scenario_.is({"deaf"})) {
            hangDeaf();
        }
        if (scenario_.is({"exits"})) {
            errors_.write("Error: cannot load the configuration file\n");
            return 1;
        }
        if (scenario_.is({"empty"})) {
            return 0;
        }
        if (scenario_.is({"crash"})) {
            crash();
        }
        if (scenario_.is({"garbage"})) {
            send("\033[31mwarning\033[0m: not JSON \xff\xfe");
            send("[1,2,3]");
            send("{\"id\":3,\"result\":{\"rateLimits\"");
            errors_.write("thread 'main' panicked\n");
            return 101;
        }
        if (scenario_.is({"closes-output"})) {
            // What is said before the end of the output is there when the end is seen.
            errors_.write("output closed\n");
            ::close(STDOUT_FILENO);
            hang();
        }
        return std::nullopt;
    }

    /// The exit status when the server ends with this request.
    std::optional<int> answer(const std::string& line) const {
        if (asks(line, "initialize")) {
            reply(1, "{\"userAgent\":\"codex/0.61.0\",\"platformFamily\":\"unix\"}");
        } else if (asks(line, "initialized")) {
            notify("mcpServer/startupStatus/updated");
            if (scenario_.is({"huge"})) {
                sendUntilHuge();
            }
        } else if (asks(line, "account/read")) {
            if (!scenario_.is({"account-last", "account-never"})) {
                answerAccount();
            }
            notify("account/updated");
        } else if (asks(line, "account/rateLimits/read")) {
            return answerRateLimits();
        }
        return std::nullopt;
    }

    void answerAccount() const {
        const std::string email = scenario_.text("email", "name@example.org");
        if (scenario_.is({"logged-out", "error-exit"})) {
            reply(2, "{\"account\":null,\"userId\":null,\"requiresOpenaiAuth\":true}");
        } else if (scenario_.is({"api-key"})) {
            reply(2, "{\"account\":{\"type\":\"apiKey\"},\"requiresOpenaiAuth\":true}");
        } else if (scenario_.is({"no-email"})) {
            reply(2, "{\"account\":{\"type\":\"chatgpt\",\"email\":null,\"planType\":\"" +
                         planType() + "\"},\"requiresOpenaiAuth\":true}");
        } else if (scenario_.is({"account-error"})) {
            refuse(2, -32603, "failed to read the account");
        } else {
            reply(2, "{\"account\":{\"type\":\"chatgpt\",\"email\":\"" + email +
                         "\",\"planType\":\"" + planType() + "\"},\"requiresOpenaiAuth\":true}");
        }
    }

    std::optional<int> answerRateLimits() const {
        if (scenario_.is({"logged-out", "error-exit"})) {
            refuse(3, -32600, "codex account authentication required to read rate limits");
            if (scenario_.is({"error-exit"})) {
                pause(std::chrono::milliseconds(50));
                return 1;
            }
        } else if (scenario_.is({"api-key"})) {
            refuse(3, -32600, "chatgpt authentication required to read rate limits");
        } else if (scenario_.is({"error-reply"})) {
            refuse(3, -32603, refusal);
        } else if (scenario_.is({"error-then-answer"})) {
            refuse(3, -32603, refusal);
            pause(scenario_.span("answer-delay", 300));
            reply(3, rateLimits());
        } else if (scenario_.is({"account-last"})) {
            reply(3, rateLimits());
            pause(scenario_.span("account-delay", 100));
            answerAccount();
        } else if (scenario_.is({"no-rate-limits"})) {
            reply(3, "{\"rateLimits\":null}");
        } else if (scenario_.is({"no-windows"})) {
            reply(3, "{\"rateLimits\":{\"primary\":null,\"secondary\":{\"usedPercent\":true}}}");
        } else if (scenario_.is({"dies"})) {
            const std::string half = rateLimits().substr(0, 60);
            output_.write("{\"id\":3,\"result\":" + half);
            errors_.write("connection reset\n");
            return 1;
        } else {
            reply(3, rateLimits());
        }
        return std::nullopt;
    }

    std::string planType() const { return scenario_.text("plan", "plus"); }

    std::string window(const Figure& figure, int lengthInMinutes) const {
        const std::string quote = scenario_.is({"strings"}) ? "\"" : "";
        const auto number = [&quote](long value) { return quote + std::to_string(value) + quote; };
        return "{\"usedPercent\":" + number(std::lround(figure.usedPercent)) +
               ",\"windowDurationMins\":" + number(lengthInMinutes) +
               ",\"resetsAt\":" + number(static_cast<long>(figure.resetsAt)) + "}";
    }

    /// The result of "account/rateLimits/read": the main limit, and all limits by their names.
    std::string rateLimits() const {
        const std::string main = mainLimit();
        std::string all = "\"codex\":" + main;
        if (scenario_.is({"further-limit"})) {
            all = "\"gpt-5.3-codex-spark\":" + furtherLimit() + "," + all;
        }
        return std::string("{\"ordinaryUsageAllowed\":") +
               (scenario_.is({"used-up"}) ? "false" : "true") + ",\"rateLimits\":" + main +
               ",\"rateLimitsByLimitId\":{" + all +
               "},\"rateLimitResetCredits\":" + resetCredits() +
               ",\"accountId\":null,\"rateLimitUpsell\":null}";
    }

    std::string mainLimit() const {
        const Figures figures(scenario_);
        const bool isUsedUp = scenario_.is({"used-up"});
        const std::string session = window(
            figures.window("session", isUsedUp ? 100 : 22, 1 * hours + 27 * minutes, 5 * hours),
            300);
        const std::string week =
            window(figures.window("week", 29, 3 * days + 18 * hours, 7 * days), 10080);
        const bool hasOneWindow = scenario_.is({"weekly-only"});
        return "{\"limitId\":\"codex\",\"limitName\":null,\"primary\":" +
               (hasOneWindow ? week : session) +
               ",\"secondary\":" + (hasOneWindow ? "null" : week) +
               ",\"credits\":{\"hasCredits\":" + (scenario_.is({"credits"}) ? "true" : "false") +
               ",\"unlimited\":false,\"balance\":null},\"individualLimit\":" + individualLimit() +
               ",\"spendControlReached\":null,\"planType\":\"" + planType() +
               "\",\"rateLimitReachedType\":" + (isUsedUp ? "\"rate_limit_reached\"" : "null") +
               "}";
    }

    std::string furtherLimit() const {
        const Figures figures(scenario_);
        return "{\"limitId\":\"gpt-5.3-codex-spark\",\"limitName\":\"GPT-5.3-Codex-Spark\","
               "\"primary\":" +
               window(figures.window("spark-session", 5, 3 * hours, 5 * hours), 300) +
               ",\"secondary\":" +
               window(figures.window("spark-week", 2, 6 * days, 7 * days), 10080) +
               ",\"credits\":null,\"individualLimit\":null,\"planType\":\"" + planType() + "\"}";
    }

    std::string individualLimit() const {
        if (!scenario_.is({"individual-limit"})) {
            return "null";
        }
        const Figure figure = Figures(scenario_).window("individual", 40, 12 * days, 30 * days);
        const long used = std::lround(figure.usedPercent);
        return "{\"limit\":\"100\",\"used\":\"" + std::to_string(used) +
               "\",\"remainingPercent\":" + std::to_string(100 - used) +
               ",\"resetsAt\":" + std::to_string(figure.resetsAt) + "}";
    }

    std::string resetCredits() const {
        if (!scenario_.is({"banked-resets"})) {
            return "null";
        }
        const auto credit = [](const char* status, double expiresIn) {
            const auto expiry = std::time(nullptr) + static_cast<std::time_t>(expiresIn);
            return std::string(R"({"id":"a","resetType":"codexRateLimits","status":")") + status +
                   R"(","expiresAt":)" + std::to_string(expiry) + "}";
        };
        const double next = scenario_.number("reset-expires-in", 9 * days);
        return "{\"availableCount\":2,\"credits\":[" + credit("available", 21 * days) + "," +
               credit("redeemed", 2 * days) + "," + credit("available", next) + "]}";
    }

    void sendUntilHuge() const {
        const std::string filler(4000, 'x');
        const std::string message = "{\"method\":\"log\",\"params\":{\"text\":\"" + filler + "\"}}";
        for (std::size_t written = 0; written < hugeSize; written += message.size()) {
            send(message);
        }
    }

    const Scenario& scenario_;
    const Output output_;
    const Output errors_;
};

} // namespace

int playCodex(const Scenario& scenario, const Arguments& arguments) {
    const Output output(STDOUT_FILENO, scenario);
    if (arguments == Arguments{"--version"}) {
        output.write(scenario.text("version", "codex-cli 0.61.0") + "\n");
        return 0;
    }
    if (arguments == Arguments{"app-server", "--listen", "stdio://"}) {
        return CodexServer(scenario).run();
    }
    if (arguments == Arguments{"login", "--help"}) {
        output.write("Usage: codex login [OPTIONS]\n");
        return 0;
    }
    if (arguments == Arguments{"login"}) {
        scenario.becomeNormal();
        output.write("Successfully logged in\n");
        return 0;
    }
    Output(STDERR_FILENO, scenario).write("error: unexpected argument\n");
    return 2;
}

} // namespace simulator
