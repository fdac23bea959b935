#include "ClaudeQuery.h"

#include "ClaudeAccount.h"
#include "Output.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <optional>
#include <unistd.h>
#include <utility>
#include <vector>

namespace simulator {

namespace {

// JSON, put together from text.

using Members = std::vector<std::pair<std::string, std::string>>;

std::string inQuotes(const std::string& text) {
    return '"' + text + '"';
}

std::string object(const Members& members) {
    std::string text;
    for (const auto& [name, value] : members) {
        text.append(text.empty() ? "" : ",").append(inQuotes(name) + ':' + value);
    }
    return '{' + text + '}';
}

std::string list(const std::vector<std::string>& elements) {
    std::string text;
    for (const std::string& element : elements) {
        text.append(text.empty() ? "" : ",").append(element);
    }
    return '[' + text + ']';
}

/// The first text member of that name in a message, as it is written there.
std::optional<std::string> textMember(const std::string& message, const std::string& name) {
    const std::string key = inQuotes(name);
    const std::size_t found = message.find(key);
    const std::size_t begin =
        found == std::string::npos ? found : message.find_first_not_of(" :", found + key.size());
    if (begin == std::string::npos || message[begin] != '"') {
        return std::nullopt;
    }
    const std::size_t end = message.find('"', begin + 1);
    return message.substr(begin + 1, end - begin - 1);
}

// The parts of the usage answer.

/// Whole percentages, as the screen shows them.
std::string percent(const Figure& figure) {
    return std::to_string(std::lround(figure.usedPercent));
}

/// In UTC, whatever the time zone is, and to the microsecond.
std::string reset(const Figure& figure) {
    std::string text = iso8601(figure.resetsAt);
    text.replace(text.size() - 1, 1, ".271073+00:00");
    return inQuotes(text);
}

std::string window(const Figure& figure) {
    return object({{"utilization", percent(figure)}, {"resets_at", reset(figure)}});
}

std::string row(const std::string& kind, const Figure& figure, const std::string& model = {}) {
    const std::string name = object({{"display_name", inQuotes(model)}});
    return object(
        {{"kind", inQuotes(kind)},
         {"group", inQuotes(kind.substr(0, kind.find('_')))},
         {"percent", percent(figure)},
         {"resets_at", reset(figure)},
         {"severity", inQuotes("normal")},
         {"scope", model.empty() ? "null" : object({{"model", name}, {"surface", "null"}})},
         {"is_active", kind == "session" ? "true" : "false"}});
}

/// In cents.
std::string extraUsage(const ClaudeFigures& figures) {
    const double utilization = 100 * figures.spent / std::max(figures.spendLimit, 0.01);
    return object({{"is_enabled", "true"},
                   {"monthly_limit", std::to_string(std::lround(100 * figures.spendLimit))},
                   {"used_credits", std::to_string(std::lround(100 * figures.spent))},
                   {"utilization", decimal(utilization)},
                   {"currency", inQuotes("USD")}});
}

/// Those in which a reader is to come to the screens.
bool isAboutScreens(const Scenario& scenario) {
    return scenario.is({"first-start", "no-prompt", "no-status", "dies-at-start", "dies-at-status",
                        "dies-after-session", "usage-hangs", "page-error", "empty-page",
                        "session-only", "no-end-marker", "late-credits", "fable-late",
                        "invalid-utf8", "lingers", "login-lies", "redraw-in-place", "screen-stale",
                        "screen-not-refreshed"});
}

bool knowsUsage(const Scenario& scenario) {
    return scenario.text("query", "") != "no" && !isAboutScreens(scenario) &&
           !scenario.is({"query-missing", "query-unsupported"});
}

class ClaudeQuerySession {
public:
    explicit ClaudeQuerySession(const Scenario& scenario)
        : scenario_(scenario), output_(STDOUT_FILENO, scenario), errors_(STDERR_FILENO, scenario) {}

    int run() {
        if (scenario_.is({"hang", "query-hang"})) {
            hang();
        }
        if (scenario_.is({"deaf"})) {
            hangDeaf();
        }
        pause(scenario_.delay());
        if (tellsOfItself()) {
            send({{"type", inQuotes("system")},
                  {"subtype", inQuotes("ui_invalidate")},
                  {"event", inQuotes("ui.render")},
                  {"uuid", inQuotes("5b0a1d0e-3d58-4e55-8f5c-4d1f6a2f90b3")},
                  {"session_id", inQuotes("3f6b0f9e-5f0c-4d5e-9a53-0d5b6f2f7c11")}});
        }
        std::string line;
        while (std::getline(std::cin, line)) {
            if (const std::optional<int> status = answer(line)) {
                return *status;
            }
        }
        if (scenario_.is({"query-lingers"})) {
            hangDeaf();
        }
        return 0;
    }

private:
    void send(const Members& message) const { output_.write(object(message) + "\n"); }

    /// The newer versions do, where somebody is logged in with a subscription.
    bool tellsOfItself() const {
        return !scenario_.is({"logged-out", "query-api-key", "query-no-subscription", "query-older",
                              "query-refused", "query-unsupported", "query-missing"});
    }

    /// The exit status when the session ends with this line.
    std::optional<int> answer(const std::string& line) const {
        if (!line.starts_with('{')) {
            errors_.write("Error parsing streaming input line (type=unknown, " +
                          std::to_string(line.size()) + " chars): SyntaxError\n");
            return 1;
        }
        const std::optional<std::string> type = textMember(line, "type");
        if (type == "user") {
            sendToModel(scenario_);
        }
        if (type != "control_request") {
            return std::nullopt;
        }
        const std::optional<std::string> subtype = textMember(line, "subtype");
        if (!subtype) {
            errors_.write("Error: Missing request on control_request\n");
            return 1;
        }
        const std::string id = scenario_.is({"query-wrong-id"})
                                   ? "another"
                                   : textMember(line, "request_id").value_or("");
        if (subtype != "get_usage" || !knowsUsage(scenario_)) {
            refuse(id, *subtype);
            return std::nullopt;
        }
        return answerUsage(id);
    }

    void refuse(const std::string& id, const std::string& subtype) const {
        Members response = {
            {"subtype", inQuotes("error")},
            {"request_id", inQuotes(id)},
            {"error", inQuotes("Unsupported control request subtype: " + subtype)},
        };
        if (!scenario_.is({"query-missing", "query-unsupported"})) {
            response.emplace_back("error_code", inQuotes("unsupported_request"));
        }
        send({{"type", inQuotes("control_response")}, {"response", object(response)}});
    }

    std::optional<int> answerUsage(const std::string& id) const {
        if (scenario_.is({"query-silent"})) {
            return 0;
        }
        if (scenario_.is({"garbage", "query-garbage"})) {
            output_.write(garbage() + "\n");
            return 0;
        }
        const std::string response = object({{"subtype", inQuotes("success")},
                                             {"request_id", inQuotes(id)},
                                             {"response", usage()}});
        const Members message = {{"type", inQuotes("control_response")}, {"response", response}};
        if (scenario_.is({"dies"})) {
            const std::string whole = object(message);
            output_.write(whole.substr(0, whole.size() / 2));
            errors_.write("connection reset\n");
            return 1;
        }
        if (scenario_.is({"huge", "query-huge"})) {
            sendUntilHuge();
        }
        send(message);
        return std::nullopt;
    }

    void sendUntilHuge() const {
        const Members message = {{"type", inQuotes("system")},
                                 {"subtype", inQuotes("commands_changed")},
                                 {"description", inQuotes(std::string(4000, 'x'))}};
        for (std::size_t written = 0; written < hugeSize; written += 4000) {
            send(message);
        }
    }

    std::string usage() const {
        const std::string zero = "0";
        const bool hasLogin = !scenario_.is({"logged-out", "query-api-key"});
        return object({{"session", object({{"total_cost_usd", zero},
                                           {"total_api_duration_ms", zero},
                                           {"total_duration_ms", "408"},
                                           {"total_lines_added", zero},
                                           {"total_lines_removed", zero},
                                           {"model_usage", object({})}})},
                       {"subscription_type", claudeSubscription(scenario_)},
                       {"rate_limits_available", hasLogin ? "true" : "false"},
                       {"rate_limits", rateLimits()},
                       {"behaviors", behaviors()}});
    }

    /// Older versions do not know that they are to be left out.
    std::string behaviors() const {
        if (!scenario_.is({"query-older", "query-refused"})) {
            return "null";
        }
        const std::string none = object({{"request_count", "0"}, {"behaviors", list({})}});
        return object({{"day", none}, {"week", none}});
    }

    std::string rateLimits() const {
        if (scenario_.is({"logged-out", "query-api-key", "query-unavailable"})) {
            return "null";
        }
        if (scenario_.is({"query-refused"})) {
            const std::string reason = "Rate limited. Please try again later.";
            const std::string error =
                object({{"type", inQuotes("rate_limit_error")}, {"message", inQuotes(reason)}});
            return object({{"error", error}});
        }
        if (scenario_.is({"query-no-subscription", "query-nulls"})) {
            return object({{"five_hour", "null"},
                           {"seven_day", "null"},
                           {"limits", list({})},
                           {"extra_usage", "null"}});
        }
        return windows();
    }

    std::string windows() const {
        const ClaudeFigures figures(scenario_);
        Members limits = {{"five_hour", window(figures.session)},
                          {"seven_day", window(figures.week)}};
        if (scenario_.is({"query-rows-absent"})) {
            return object(limits);
        }
        const bool hasMoreModels = scenario_.is({"query-three-models"});
        limits.emplace_back("seven_day_oauth_apps", "null");
        limits.emplace_back("seven_day_opus",
                            hasMoreModels ? window({3, figures.week.resetsAt}) : "null");
        limits.emplace_back("seven_day_sonnet",
                            hasMoreModels ? window({7, figures.week.resetsAt}) : "null");
        std::vector<std::string> rows = {row("session", figures.session),
                                         row("weekly_all", figures.week)};
        std::vector<std::string> models;
        if (figures.model) {
            rows.push_back(row("weekly_scoped", *figures.model, "Fable"));
            models.push_back(object({{"display_name", inQuotes("Fable")},
                                     {"utilization", percent(*figures.model)},
                                     {"resets_at", reset(*figures.model)}}));
        }
        // Only figures that were read for this answer have rows.
        if (!scenario_.is({"query-stale"})) {
            limits.emplace_back("limits", list(rows));
        }
        limits.emplace_back("extra_usage", extraUsage(figures));
        limits.emplace_back("model_scoped", list(models));
        return object(limits);
    }

    const Scenario& scenario_;
    const Output output_;
    const Output errors_;
};

bool has(const Arguments& arguments, const std::string& option) {
    return std::find(arguments.begin(), arguments.end(), option) != arguments.end();
}

} // namespace

bool isClaudeQuery(const Arguments& arguments) {
    static const Arguments start = {
        "-p", "--input-format", "stream-json", "--output-format", "stream-json", "--verbose"};
    return arguments.size() >= start.size() &&
           std::equal(start.begin(), start.end(), arguments.begin());
}

int playClaudeQuery(const Scenario& scenario, const Arguments& arguments) {
    const bool isBeforeSafeMode = scenario.is({"query-missing"});
    const bool isBeforeRestricted =
        isBeforeSafeMode || scenario.is({"query-unsupported", "query-refused", "query-older"});
    for (auto option = arguments.begin() + 6; option != arguments.end(); ++option) {
        const bool isKnown = *option == "--safe-mode"    ? !isBeforeSafeMode
                             : *option == "--restricted" ? !isBeforeRestricted
                                                         : false;
        if (!isKnown) {
            Output(STDERR_FILENO, scenario).write("error: unknown option '" + *option + "'\n");
            return 1;
        }
    }
    if (!has(arguments, "--safe-mode")) {
        // The user's own additions to the CLI are run.
        std::ofstream(scenario.directory() / "additions", std::ios::app) << "hook\n";
    }
    return ClaudeQuerySession(scenario).run();
}

} // namespace simulator
