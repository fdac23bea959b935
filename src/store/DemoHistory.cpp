#include "store/DemoHistory.h"

#include "model/UUID.h"
#include "text/Dates.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <system_error>
#include <vector>

namespace vellmark {
namespace {

constexpr Seconds month = 30 * oneDay;
/// What forecasts rest on is there at any hour.
constexpr Seconds awakeBefore = 3 * oneHour;

/// One window of a simulated agent as it stands now.
struct DemoWindow {
    const char* provider;
    const char* id;
    double usedPercent;
    double periodHours;
    double hoursToReset;
};

constexpr std::array windows{
    DemoWindow{"codex", "session", 22, 5, 1.45},
    DemoWindow{"codex", "weekly", 29, 168, 90},
    DemoWindow{"claude", "session", 54, 5, 2.2},
    DemoWindow{"claude", "weekly", 71, 168, 43},
    DemoWindow{"claude", "fable-weekly", 84, 168, 43},
    DemoWindow{"antigravity", "pool:Gemini Models|5h", 93, 5, 1.43},
    DemoWindow{"antigravity", "pool:Gemini Models|weekly", 30, 168, 107},
    DemoWindow{"antigravity", "pool:Claude and GPT models|weekly", 12, 168, 107},
};

/// How much is used at an hour of a day, relative to the busiest; nothing while the machine sleeps.
double activity(const CalendarDate& date) {
    if (date.hour < 8 || date.hour >= 22) {
        return 0;
    }
    return date.hour >= 9 && date.hour < 18 ? 1 : 0.3;
}

struct DemoSample {
    const DemoWindow* window;
    Instant capturedAt;
    double usedPercent;
    Instant resetsAt;
};

class Recorder {
public:
    Recorder(const DemoWindow& window, std::vector<DemoSample>& samples)
        : window_(window), samples_(samples),
          random_(static_cast<std::uint32_t>(std::hash<std::string>()(window.id))) {}

    void record(Instant now) {
        const Seconds period = window_.periodHours * oneHour;
        Instant reset = now + window_.hoursToReset * oneHour;
        recordCurrentPeriod(reset - period, now, reset);
        for (reset -= period; reset > now - month; reset -= period) {
            recordPastPeriod(reset - period, reset);
        }
    }

private:
    Seconds step() const { return window_.periodHours < 24 ? oneHour / 2 : oneHour; }

    void add(Instant at, double used, Instant reset) {
        samples_.push_back({&window_, at, used, reset});
    }

    /// Evenly up to today's figure, so that the forecasts are those of the figures themselves.
    void recordCurrentPeriod(Instant from, Instant now, Instant reset) {
        for (Instant at = from + step(); at < now; at += step()) {
            if (activity(zone_.calendarDate(at)) == 0 && now - at > awakeBefore) {
                continue;
            }
            add(at, window_.usedPercent * ((at - from) / (now - from)), reset);
        }
    }

    void recordPastPeriod(Instant from, Instant reset) {
        std::vector<Instant> times;
        std::vector<double> used{0};
        for (Instant at = from + step(); at < reset; at += step()) {
            const double share = activity(zone_.calendarDate(at));
            if (share == 0) {
                continue;
            }
            times.push_back(at);
            const double burst = std::uniform_real_distribution(0.0, 1.0)(random_);
            used.push_back(used.back() + share * burst * burst);
        }
        const double goal = std::uniform_real_distribution(25.0, 90.0)(random_);
        const double scale = used.back() > 0 ? goal / used.back() : 0;
        for (std::size_t index = 0; index < times.size(); ++index) {
            add(times[index], std::round(used[index + 1] * scale), reset);
        }
    }

    const DemoWindow& window_;
    std::vector<DemoSample>& samples_;
    TimeZone zone_ = TimeZone::system();
    std::mt19937 random_;
};

/// Not negative, to three decimals.
std::string decimal(double value) {
    constexpr std::size_t decimals = 3;
    std::string digits = std::to_string(std::llround(value * 1000));
    digits.insert(0, decimals + 1 - std::min(digits.size(), decimals + 1), '0');
    return digits.insert(digits.size() - decimals, 1, '.');
}

/// Without a document for each: thousands of them would be half of the time to the first picture.
std::string line(const DemoSample& sample) {
    std::string text = R"({"id":")" + UUID::make().text();
    text += std::string(R"(","provider":")") + sample.window->provider;
    text += std::string(R"(","windowID":")") + sample.window->id;
    text += R"(","capturedAt":)" + decimal(sample.capturedAt.time_since_epoch().count());
    text += R"(,"usedPercent":)" + decimal(sample.usedPercent);
    text += R"(,"resetsAt":)" + decimal(sample.resetsAt.time_since_epoch().count());
    return text + "}";
}

} // namespace

void writeDemoHistory(const Machine& machine, Instant now) {
    std::vector<DemoSample> samples;
    for (const DemoWindow& window : windows) {
        Recorder(window, samples).record(now);
    }
    std::ranges::stable_sort(samples, {}, &DemoSample::capturedAt);

    // Sample by sample: as one text it would take a megabyte, which the C library keeps. Nothing is
    // synced: the file goes with the demo.
    std::filesystem::create_directories(machine.supportDirectory());
    std::ofstream file(machine.usageHistoryFile());
    file << '[';
    const char* separator = "\n";
    for (const DemoSample& sample : samples) {
        file << separator << line(sample);
        separator = ",\n";
    }
    file << "\n]\n";
    file.close();
    if (!file) {
        throw std::system_error(errno, std::generic_category(),
                                "the demo's history cannot be written");
    }
}

} // namespace vellmark
