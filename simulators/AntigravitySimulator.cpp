#include "Figures.h"
#include "Output.h"
#include "Simulators.h"

#include <cstdio>
#include <fstream>
#include <unistd.h>

namespace simulator {

namespace {

/// One quota line: the pool, its window in Antigravity's words, and the window's figure.
struct Bucket {
    std::string pool;
    std::string window;
    Figure figure;

    double remainingPercent() const { return 100 - figure.usedPercent; }
    bool isOfOthers() const { return pool != "Gemini Models"; }
};

std::vector<Bucket> buckets(const Scenario& scenario) {
    const Figures figures(scenario);
    const double week = 4 * days + 11 * hours;
    return {{"Gemini Models", "5h limit remaining",
             figures.window("gemini-session", 93, 1 * hours + 26 * minutes, 5 * hours)},
            {"Gemini Models", "Weekly limit remaining",
             figures.window("gemini-week", 30, week, 7 * days)},
            {"Claude and GPT models", "Weekly limit remaining",
             figures.window("others-week", 12, week, 7 * days)}};
}

std::string fraction(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

std::string bucketJSON(const Bucket& bucket, const Scenario& scenario) {
    const std::string window = "{\"window\":\"" + bucket.window + "\"";
    if (bucket.isOfOthers() && scenario.is({"not-used-yet"})) {
        return window + ",\"description\":\"Not used yet\"}";
    }
    const bool isDisabled = bucket.isOfOthers() && scenario.is({"disabled-bucket"});
    return window + ",\"remaining_fraction\":" + fraction(bucket.remainingPercent() / 100) +
           ",\"reset_time\":\"" + iso8601(bucket.figure.resetsAt) + "\"" +
           (isDisabled ? ",\"disabled\":true}" : "}");
}

/// What every answer says about the model; an old CLI hands the command to it.
std::string statistics(bool tookTurn) {
    return tookTurn ? R"("num_turns":1,"usage":{"input_tokens":11804,"output_tokens":96})"
                    : R"("num_turns":0,"usage":{"input_tokens":0,"output_tokens":0})";
}

/// The structured answer; `filler` is a field that no reader knows.
std::string usageJSON(const Scenario& scenario, const std::string& filler = {}) {
    std::string groups;
    std::string pool;
    for (const Bucket& bucket : buckets(scenario)) {
        if (bucket.pool == pool) {
            groups.append(",");
        } else {
            groups.append(pool.empty() ? "" : "]},");
            groups.append("{\"name\":\"").append(bucket.pool).append("\",\"buckets\":[");
        }
        groups.append(bucketJSON(bucket, scenario));
        pool = bucket.pool;
    }
    return "{\"status\":\"SUCCESS\",\"filler\":\"" + filler + "\"," +
           statistics(scenario.is({"turn-with-data"})) +
           ",\"command\":{\"name\":\"usage\",\"data\":{\"groups\":[" + groups + "]}]}}}\n";
}

std::string usageText(const Scenario& scenario) {
    std::string text = "Usage\n\n";
    for (const Bucket& bucket : buckets(scenario)) {
        text += bucket.pool + "  " + bucket.window + "  " + decimal(bucket.remainingPercent()) +
                "%  " + iso8601(bucket.figure.resetsAt) + "\n";
    }
    return text;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        result += character == '\n' ? "\\n" : std::string(1, character);
    }
    return result;
}

void writeLog(const Scenario& scenario, const Arguments& arguments) {
    for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
        if (arguments[index] == "--log-file") {
            std::ofstream log(arguments[index + 1]);
            log << "I1120 14:46:02 main.go:88] starting language server\n"
                << "I1120 14:46:03 auth.go:41] authenticated successfully as "
                << scenario.text("email", "name@example.org") << "\n"
                << "I1120 14:46:04 usage.go:17] usage command finished\n";
        }
    }
}

/// The usage command; its answer goes to standard output in the form that was asked for, though
/// some versions print text whatever is asked.
int showUsage(const Scenario& scenario) {
    const Output output(STDOUT_FILENO, scenario);
    pause(scenario.delay());
    if (scenario.is({"logged-out"})) {
        output.write("Error: you are not logged into Antigravity. Run agy to sign in.\n");
        return 1;
    }
    if (scenario.is({"login-hang"})) {
        output.write("Authentication required. Open this address in a browser to go on:\n");
        hang();
    }
    if (scenario.is({"not-eligible"})) {
        output.write("{\"response\":\"Your account is not eligible for Antigravity.\"}\n");
        return 1;
    }
    if (scenario.is({"hang"})) {
        hang();
    }
    if (scenario.is({"deaf"})) {
        hangDeaf();
    }
    if (scenario.is({"crash"})) {
        crash();
    }
    if (scenario.is({"fails"})) {
        Output(STDERR_FILENO, scenario).write("Error: the language server did not start\n");
        return 3;
    }
    if (scenario.is({"error-line"})) {
        output.write("AGY_ERROR:{\"code\":14,\"message\":\"The quota service is unavailable.\"}\n");
        return 3;
    }
    if (scenario.is({"dies"})) {
        output.write(usageJSON(scenario).substr(0, 120));
        return 1;
    }
    if (scenario.is({"garbage"})) {
        output.write("\033[2J\xff\xfe{]%%%\n\n\t\n");
    } else if (scenario.is({"empty-groups"})) {
        output.write("{\"command\":{\"name\":\"usage\",\"data\":{\"groups\":[]}}}\n");
    } else if (scenario.is({"text"})) {
        output.write(usageText(scenario));
    } else if (scenario.is({"turn", "old-version"})) {
        output.write("{\"response\":\"" + escaped(usageText(scenario)) + "\"," + statistics(true) +
                     "}\n");
    } else if (scenario.is({"response"})) {
        output.write("{\"response\":\"" + escaped(usageText(scenario)) + "\"}\n");
    } else if (scenario.is({"huge"})) {
        output.write(usageJSON(scenario, std::string(hugeSize, 'x')));
    } else if (!scenario.is({"empty"})) {
        output.write(usageJSON(scenario));
    }
    return 0;
}

/// Started bare the CLI signs the user in. What it leaves is the credential of the sandbox, which
/// lies beside the home directory.
int signIn(const Scenario& scenario, const Output& output) {
    output.write("Antigravity CLI. Signing in through the browser …\n");
    pause(scenario.delay());
    const auto credential =
        scenario.directory().parent_path().parent_path() / "credentials" / "gemini" / "antigravity";
    std::filesystem::create_directories(credential.parent_path());
    std::ofstream(credential).put('\n');
    scenario.becomeNormal();
    output.write("Signed in as " + scenario.text("email", "name@example.org") + ".\n");
    return 0;
}

} // namespace

int playAntigravity(const Scenario& scenario, const Arguments& arguments) {
    const Output output(STDOUT_FILENO, scenario);
    if (arguments == Arguments{"--version"}) {
        output.write(scenario.text("version", scenario.is({"old-version"}) ? "1.1.10" : "1.4.2") +
                     "\n");
        return 0;
    }
    if (arguments.size() >= 2 && arguments[0] == "-p" && arguments[1] == "/usage") {
        if (!scenario.is({"no-log"})) {
            writeLog(scenario, arguments);
        }
        return showUsage(scenario);
    }
    if (arguments.empty()) {
        return signIn(scenario, output);
    }
    Output(STDERR_FILENO, scenario).write("error: unknown flag\n");
    return 2;
}

} // namespace simulator
