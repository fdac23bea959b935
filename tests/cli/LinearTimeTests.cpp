// Bytes from outside are read in linear time, whatever they are, and a megabyte of them within a
// second: all readers with the inputs that are worst for them, and the same ten times as long.

#include "ForeignReaders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// In the name of its test.
static void PrintTo(const ForeignReader& reader, std::ostream* stream) {
    *stream << reader.name;
}

namespace tests {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool isSanitized = false;
#endif
#ifdef __OPTIMIZE__
constexpr bool isOptimized = true;
#else
constexpr bool isOptimized = false;
#endif

/// A sanitizer makes times meaningless: there the readers only have to survive the short inputs.
constexpr std::size_t shortSize = 100'000;
constexpr std::size_t longSize = 10 * shortSize;
/// For a long input, in a build that is meant to be quick.
constexpr double mostSeconds = 1;
/// Ten is linear, a hundred is the square. Up to here nothing is wrong; a long text may be beyond
/// it because its parts no longer fit the processor's caches, which others use too.
constexpr double expectedGrowth = 12;
constexpr double allowedGrowth = 20;
/// What takes less is as good as nothing, and its growth is chance.
constexpr double leastSeconds = 0.003;
/// Rounds until the times are as expected: what disturbs a measurement makes it longer, and seldom
/// each time.
constexpr int rounds = 5;
constexpr double hopelessGrowth = 60;

/// A text of about that many bytes.
struct Input {
    std::string name;
    std::function<std::string(std::size_t size)> make;
};

/// `piece` over and over between two other texts.
Input repeated(std::string name, std::string piece, std::string before = {},
               std::string after = {}) {
    return {std::move(name), [=](std::size_t size) {
                std::string text = before;
                text.reserve(size + piece.size() + after.size());
                while (text.size() < size) {
                    text += piece;
                }
                return text + after;
            }};
}

/// The same with a running number after each piece's first part.
Input numbered(std::string name, std::string first, std::string second, std::string before = {},
               std::string after = {}) {
    return {std::move(name), [=](std::size_t size) {
                std::string text = before;
                for (int number = 0; text.size() < size; ++number) {
                    text += first + std::to_string(number) + second;
                }
                return text + after;
            }};
}

/// What is bad for parsers of any kind.
std::vector<Input> anyInputs() {
    return {
        repeated("arrays in arrays", "["),
        repeated("objects in objects", R"({"a":)"),
        repeated("a long array", "0,", "[", "0]"),
        numbered("many members", R"("m)", R"(":0,)", "{", R"("m":0})"),
        repeated("one member many times", R"("m":{"n":0},)", "{", R"("m":0})"),
        numbered("objects of many members", R"({"a":0,"b":1,"c":2,"d":[3],"m)", R"(":0},)", "[",
                 "0]"),
        repeated("a long text", "x", R"({"response":")", "\"}"),
        repeated("a text without end", "x", R"({"response":")"),
        repeated("escapes", R"(\u00e4\n\"\\\ud83d\ude00)", R"({"response":")", "\"}"),
        repeated("texts without end", "\"\n"),
        repeated("backslashes", "\\"),
        repeated("empty lines", "\n"),
        repeated("lines of JSON", "{\"id\":3,\"result\":{}}\n"),
        repeated("opening lines", "\n{"),
        repeated("blanks", " "),
        repeated("letters", "a"),
        repeated("letters beyond ASCII", "ä"),
        repeated("digits", "1"),
        repeated("percentages", "5 % "),
        repeated("bytes that are no text", "\xff\xc3"),
        repeated("zeros", std::string(1, '\0')),
        repeated("control sequences", "\x1b[1;31m5\x1b[0m"),
        repeated("begun control sequences", "\x1b["),
        repeated("begun commands", "\x1b]0;"),
        repeated("addresses", "someone@example.org "),
    };
}

// What is bad for one reader.

std::vector<Input> codexInputs() {
    const std::string limits = R"({"id":3,"result":{"rateLimits":{)";
    return {numbered("limits", R"("l)", R"(":{"usedPercent":5},)", limits, "\"primary\":{}}}}\n"),
            repeated("windows", R"("primary":{"usedPercent":"5","resetsAt":9},)", limits,
                     "\"a\":0}}}\n"),
            repeated("accounts", R"({"account":{"email":"a@b.ch"}},)", R"({"id":2,"result":{"x":[)",
                     "0]}}\n"),
            repeated("answers", R"({"id":3,"result":{"rateLimits":{"primary":{"usedPercent":5}}}})"
                                "\n"),
            repeated("notifications", R"({"method":"a/b","params":{"text":"x"}})"
                                      "\n")};
}

std::vector<Input> antigravityInputs() {
    const std::string data = R"({"num_turns":0,"command":{"data":{"groups":[)";
    return {repeated("buckets", R"({"window":"5h","remaining_fraction":0.5},)",
                     data + R"({"name":"A","buckets":[)", "0]}]}}}"),
            repeated("unused buckets", R"({"note":"NOT USED YE"},)",
                     data + R"({"name":"A","buckets":[)", "0]}]}}}"),
            repeated("groups", R"({"name":"A","buckets":[]},)", data, "0]}}}"),
            repeated("statistics", R"({"tokens":{"total":0}},)", R"({"stats":[)", "0]}"),
            repeated("rows", "Gemini Models  Weekly limit remaining  40%  2026-11-22 14:00 CEST\n"),
            repeated("lines that are almost rows", "Gemini Models  Weekly limit  40%\n"),
            repeated("one line of windows", "weekly ", "Gemini ", "5%"),
            repeated("one line of rows", "Gemini Models\tWeekly remaining\t5x%"),
            repeated("one line of zones", "2026-11-22 14:00 CESTX ", "A weekly remaining 4% "),
            repeated("errors", "AGY_ERROR:{\"code\":3}\n"),
            repeated("an error without end", "{", "AGY_ERROR:")};
}

std::vector<Input> claudeQueryInputs() {
    const std::string limits =
        R"({"type":"control_response","response":{"request_id":"r1","subtype":"success",)"
        R"("response":{"subscription_type":"max","rate_limits":{)";
    return {repeated("models", R"({"display_name":"Fable","utilization":5},)",
                     limits + R"("model_scoped":[)", "0]}}}}\n"),
            repeated("rows",
                     R"({"kind":"session","percent":5,"resets_at":"2026-11-22T14:00:00Z"},)",
                     limits + R"("limits":[)", "0]}}}}\n"),
            repeated("other lines", "{\"type\":\"system\"}\n"),
            repeated("login", R"("email":"a@b.ch",)", "{", R"("loggedIn":true})")};
}

std::vector<Input> claudeScreenInputs() {
    const std::string page =
        "\x1b[2J\x1b[HSettings:  Status  Config  Usage\r\nCurrent session\r\n"
        "\x1b[38;5;75m████\x1b[39m 54% used\r\nResets 9:30am (Europe/Zurich)\r\n"
        "Current week (all models)\r\n12% used\r\nResets Nov 24 at 9:30am\r\n"
        "Esc to cancel\r\n";
    return {repeated("redrawn pages", page),
            repeated("headings", "Current session\r\n"),
            repeated("resets", "Resets Nov 24 at 9am\r\n"),
            repeated("one line of headings", "Current week (", "Current session\r\n"),
            repeated("one line of resets", "Resets Nov 24, ", "Current session\r\n5% used\r\n"),
            repeated("cursor movements", "\x1b[5;7H\x1b[2Kx\x1b[A\x1b[99C"),
            repeated("errors", "Failed to load usage data\r\n"),
            repeated("accounts", "Email: a@b.ch\r\nOrganization: x\r\n")};
}

std::vector<Input> snapshotsInputs() {
    const std::string begin = R"([{"id":"claude","source":"live","updatedAt":9,)";
    const std::string window = R"({"id":"w","usedPercent":5,"resetsAt":9},)";
    return {repeated("windows", window, begin + R"("balances":[],"notes":[],"windows":[)",
                     R"({"id":"w","usedPercent":5}]}])"),
            repeated("notes", R"({"agentSays":{"text":"x"}},)",
                     begin + R"("balances":[],"windows":[],"notes":[)",
                     R"({"readingCosts":{}}]}])"),
            repeated("snapshots",
                     R"({"id":"claude","source":"live","updatedAt":9,"windows":[],"balances":[],)"
                     R"("notes":[]},)",
                     "[", R"({"id":"claude"}])")};
}

std::vector<Input> historyInputs() {
    const std::string sample = R"({"id":"2F1C7A52-52F0-4E3B-8E0E-2F3C7C0C7F11","provider":"codex",)"
                               R"("windowID":"w","capturedAt":784111777.25,"usedPercent":5)";
    return {repeated("samples", sample + "},\n", "[", sample + "}]"),
            repeated("samples with escapes",
                     R"({"windowID":"\u0077\n","provider":"codex",)"
                     R"("id":"2F1C7A52-52F0-4E3B-8E0E-2F3C7C0C7F11",)"
                     R"("capturedAt":784111777.25,"usedPercent":5},)",
                     "[", sample + "}]"),
            repeated("samples behind damage", sample + "},\n", "[{]\n"),
            repeated("samples cut off", sample + "\n", "[" + sample + "},\n{]\n"),
            repeated("open objects behind damage", "{\"a\":{\n", "[" + sample + "},\n{]\n"),
            {"lines of many members behind damage", [sample](std::size_t size) {
                 const std::string line =
                     numbered("", "\"m", "\":0,", "{", "\"m\":0}\n").make(60000);
                 return repeated("", line, "[" + sample + "},\n{]\n").make(size);
             }}};
}

std::vector<Input> preferencesInputs() {
    return {repeated("a list", R"("codex",)", R"({"enabledAgents":[)", R"("codex"]})"),
            numbered("lists", R"("l)", R"(":["a"],)", "{", R"("l":0})")};
}

std::vector<Input> activityLogInputs() {
    return {repeated("entries", "2026-11-20 14:31:20 notice codex: Trying again in 20 s\n"),
            repeated("lines that are almost entries", "2026-11-20 14:31:20 notice codex\n"),
            repeated("an entry without end", "x", "2026-11-20 14:31:20 notice codex: ")};
}

std::vector<Input> notificationInputs() {
    return {repeated("posts and answers", "p0p0n05n06g6"), repeated("posts", "p0p1p2p3"),
            repeated("refusals", "p0r0"), repeated("lost services", "p0p1l0")};
}

std::vector<Input> redactionInputs() {
    return {repeated("key words", "token "),
            repeated("begun values", "token: a "),
            repeated("a long value", "x", "token: "),
            repeated("users' folders", "/Users/"),
            repeated("home directories", "/home/anna/"),
            repeated("begun addresses", "a@"),
            repeated("domains", "b.", "a@"),
            repeated("names of addresses", "a.b+c_"),
            repeated("begun keys", "sk-"),
            repeated("bearers", "Bearer Authorization: ")};
}

/// By the readers' names; what is bad for any is enough for the others.
std::vector<Input> inputsFor(std::string_view reader) {
    static const std::map<std::string_view, std::vector<Input> (*)()> own = {
        {"activity-log", activityLogInputs},
        {"antigravity", antigravityInputs},
        {"claude-query", claudeQueryInputs},
        {"claude-screen", claudeScreenInputs},
        {"codex", codexInputs},
        {"desktop-notifications", notificationInputs},
        {"history", historyInputs},
        {"last-readings", snapshotsInputs},
        {"preferences", preferencesInputs},
        {"redaction", redactionInputs},
        {"report", redactionInputs},
        {"snapshots", snapshotsInputs},
        {"terminal", claudeScreenInputs},
    };
    std::vector<Input> inputs = anyInputs();
    if (const auto found = own.find(reader); found != own.end()) {
        std::ranges::move(found->second(), std::back_inserter(inputs));
    }
    return inputs;
}

/// Lets the process keep the memory that it has had: to get it from the system again for each long
/// text, and never for a short one, is most of what makes the long one take more than ten times.
void keepMemory() {
#ifdef __GLIBC__
    ::mallopt(M_MMAP_THRESHOLD, 1 << 30);
    ::mallopt(M_TRIM_THRESHOLD, -1);
    ::mallopt(M_TOP_PAD, 64 << 20);
#endif
}

double secondsOf(const ForeignReader& reader, std::string_view text) {
    // Of this thread alone: what else runs on the machine does not count.
    const auto now = [] {
        timespec time = {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    const double start = now();
    reader.read(text);
    return now() - start;
}

struct Times {
    /// For the long text, in seconds.
    double longest = 0;
    /// How many times longer the reader takes for it than for the short one.
    double growth = 0;
};

/// By the quickest of the reader's runs. Ends as soon as both are as expected.
Times timesOf(const ForeignReader& reader, const Input& input) {
    const std::string shortText = input.make(shortSize);
    if (isSanitized) {
        reader.read(shortText);
        return {};
    }
    const std::string longText = input.make(longSize);
    constexpr double unknown = std::numeric_limits<double>::infinity();
    Times times{unknown, unknown};
    double shortTime = unknown;
    for (int round = 0; round < rounds; ++round) {
        for (int run = 0; run < 3; ++run) {
            shortTime = std::min(shortTime, secondsOf(reader, shortText));
        }
        times.longest = std::min(times.longest, secondsOf(reader, longText));
        times.growth = times.longest / std::max(shortTime, leastSeconds);
        const bool isAsExpected = times.growth <= expectedGrowth && times.longest <= mostSeconds;
        if (isAsExpected || times.growth > hopelessGrowth) {
            break;
        }
    }
    return times;
}

class LinearTime : public testing::TestWithParam<ForeignReader> {};

TEST_P(LinearTime, IsAllThatAReaderTakesWhateverItIsGiven) {
    keepMemory();
    for (const Input& input : inputsFor(GetParam().name)) {
        const Times times = timesOf(GetParam(), input);
        EXPECT_LE(times.growth, allowedGrowth) << input.name;
        if (isOptimized) {
            EXPECT_LE(times.longest, mostSeconds) << input.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, LinearTime, testing::ValuesIn(foreignReaders()),
                         [](const testing::TestParamInfo<ForeignReader>& test) {
                             std::string name(test.param.name);
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

} // namespace
} // namespace tests
} // namespace vellmark
