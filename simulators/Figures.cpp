#include "Figures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

namespace simulator {

namespace {

std::time_t firstRun(const std::filesystem::path& directory, std::time_t now) {
    std::error_code ignored;
    // Not the home: where a demo has been removed meanwhile, it must not come back.
    std::filesystem::create_directory(directory, ignored);
    const std::filesystem::path path = directory / "started";
    const int descriptor = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (descriptor >= 0) {
        const std::string text = std::to_string(now) + "\n";
        if (::write(descriptor, text.data(), text.size()) < 0) {
            // Without the file every run is the first one, which is good enough.
            ::unlink(path.c_str());
        }
        ::close(descriptor);
        return now;
    }
    std::ifstream file(path);
    std::time_t started = 0;
    return file >> started && started <= now ? started : now;
}

/// The rule of Zurich's clock is spelled out, so that no time zone files are needed.
std::tm zurich(std::time_t time) {
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    ::tzset();
    std::tm parts = {};
    ::localtime_r(&time, &parts);
    return parts;
}

std::string clockText(const std::tm& parts) {
    const int hour = parts.tm_hour % 12 == 0 ? 12 : parts.tm_hour % 12;
    const char* half = parts.tm_hour < 12 ? "am" : "pm";
    char text[32];
    if (parts.tm_min == 0) {
        std::snprintf(text, sizeof text, "%d%s", hour, half);
    } else {
        std::snprintf(text, sizeof text, "%d:%02d%s", hour, parts.tm_min, half);
    }
    return text;
}

} // namespace

Figures::Figures(const Scenario& scenario)
    : scenario_(scenario), now_(std::time(nullptr)),
      started_(firstRun(scenario.directory(), now_)) {}

Figure Figures::window(const std::string& name, double used, double resetsIn, double length) const {
    used = scenario_.number(name + "-used", used);
    resetsIn = std::min(scenario_.number(name + "-resets-in", resetsIn), length);
    const double elapsedAtStart = std::max(length - resetsIn, 1.0);
    const double elapsed = elapsedAtStart + std::difftime(now_, started_);
    const double inWindow = std::fmod(elapsed, length);
    // Whole minutes, because that is what the agents' screens show.
    const double reset = static_cast<double>(now_) + length - inWindow;
    return {std::clamp(used / elapsedAtStart * inWindow, 0.0, 100.0),
            static_cast<std::time_t>(std::round(reset / minutes) * minutes)};
}

std::string decimal(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    std::string result = text;
    if (result.ends_with(".0")) {
        result.resize(result.size() - 2);
    }
    return result;
}

std::string iso8601(std::time_t time) {
    std::tm parts = {};
    ::gmtime_r(&time, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

std::string zurichTime(std::time_t time) {
    return clockText(zurich(time));
}

std::string zurichDateTime(std::time_t time, const std::string& separator) {
    const std::tm parts = zurich(time);
    char day[32];
    std::strftime(day, sizeof day, "%b %d", &parts);
    // "Nov 4", not "Nov 04".
    std::string text = day;
    if (text[4] == '0') {
        text.erase(4, 1);
    }
    return text + separator + clockText(parts);
}

} // namespace simulator
