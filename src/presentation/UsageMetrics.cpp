#include "presentation/UsageMetrics.h"

#include "presentation/AgentStanding.h"
#include "store/ReadingTime.h"
#include "text/DecimalNumber.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vellmark::UsageMetrics {
namespace {

constexpr MetricFamily buildInfo{"vellmark_build_info", "", "The version of Vellmark."};
constexpr MetricFamily agentInfo{"vellmark_agent_info", "", "The agent's plan."};
constexpr MetricFamily agentUp{"vellmark_up", "",
                               "1 where the agent was read within the last hour, else 0."};
constexpr MetricFamily agentRead{"vellmark_agent_last_read_timestamp_seconds", "seconds",
                                 "When the agent was last read."};
constexpr MetricFamily windowRead{"vellmark_window_last_read_timestamp_seconds", "seconds",
                                  "When the window was last read."};
constexpr MetricFamily windowLength{"vellmark_window_duration_seconds", "seconds",
                                    "How long the window is."};
constexpr MetricFamily windowRunsOut{
    "vellmark_window_runs_out_timestamp_seconds", "seconds",
    "When the quota runs out at the present pace; absent where it lasts until the reset."};

/// In quotes a line break, a quote and a backslash are written with a backslash.
std::string labelValue(const std::string& text) {
    std::string escaped;
    for (const char character : singleLine(text)) {
        if (character == '"' || character == '\\') {
            escaped += '\\';
        }
        escaped += character;
    }
    return escaped;
}

/// Seconds since 1970, to the millisecond.
double timestamp(Instant instant) {
    return std::round(unixSeconds(instant) * 1'000) / 1'000;
}

/// Collects a family's samples while the others are collected too.
class Family {
public:
    explicit Family(const MetricFamily& family) : family_(family) {}

    void add(const Labels& labels, double value) { samples_ += sample(family_, labels, value); }
    void add(const Labels& labels, std::optional<Instant> instant) {
        if (instant) {
            add(labels, timestamp(*instant));
        }
    }
    std::string text() const { return samples_.empty() ? std::string() : head(family_) + samples_; }

private:
    const MetricFamily& family_;
    std::string samples_;
};

class Exposition {
public:
    Exposition(const UsageState& state, Instant now, bool withAccounts)
        : state_(state), now_(now), withAccounts_(withAccounts) {
        build_.add({{"version", VELLMARK_VERSION}}, 1);
        for (const AgentUsageSnapshot& snapshot : state.snapshots) {
            addAgent(snapshot);
        }
    }

    std::string text() const {
        std::string text;
        for (const Family* family : {&build_, &info_, &up_, &agentRead_, &left_, &used_, &reset_,
                                     &runsOut_, &length_, &windowRead_}) {
            text += family->text();
        }
        return text + std::string(end);
    }

private:
    void addAgent(const AgentUsageSnapshot& snapshot) {
        const Labels labels{{"agent", snapshot.id.rawValue}};
        const bool wasRead = !snapshot.windows.empty() || state_.lastSuccess.contains(snapshot.id);
        const Instant readAt = readingTimeOf(state_, snapshot);
        up_.add(labels, wasRead && now_ - readAt <= upAfterReading ? 1 : 0);
        if (!wasRead) {
            return;
        }
        agentRead_.add(labels, readAt);
        Labels facts = labels;
        facts.emplace_back("plan", snapshot.plan.value_or(""));
        if (withAccounts_) {
            facts.emplace_back("account", snapshot.accountLabel.value_or(""));
        }
        info_.add(facts, 1);
        const AgentStanding standing = standingOf(snapshot, state_, now_);
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            addWindow(snapshot, snapshot.windows[index], standing.windows[index]);
        }
    }

    void addWindow(const AgentUsageSnapshot& snapshot, const UsageWindow& window,
                   const WindowStanding& standing) {
        const Labels labels{{"agent", snapshot.id.rawValue}, {"window", window.id}};
        windowRead_.add(labels, standing.readAt);
        reset_.add(labels, window.resetsAt);
        if (window.windowDurationMinutes) {
            length_.add(labels, *window.windowDurationMinutes * 60);
        }
        if (standing.kind == WindowStanding::Kind::due) {
            return;
        }
        left_.add(labels, std::max(remainingPercent(window), 0.0) / 100);
        used_.add(labels, window.usedPercent / 100);
        if (const auto outlook = forecast(window, standing.judgedAt,
                                          state_.recentPointsOf(snapshot.id, window.id))) {
            runsOut_.add(labels, outlook->emptyAt);
        }
    }

    const UsageState& state_;
    Instant now_;
    bool withAccounts_;
    Family build_{buildInfo};
    Family info_{agentInfo};
    Family up_{agentUp};
    Family agentRead_{agentRead};
    Family left_{windowLeft};
    Family used_{windowUsed};
    Family reset_{windowReset};
    Family runsOut_{windowRunsOut};
    Family length_{windowLength};
    Family windowRead_{windowRead};
};

} // namespace

std::string head(const MetricFamily& family) {
    const std::string name(family.name);
    std::string lines =
        "# HELP " + name + " " + std::string(family.help) + "\n# TYPE " + name + " gauge\n";
    if (!family.unit.empty()) {
        lines += "# UNIT " + name + " " + std::string(family.unit) + "\n";
    }
    return lines;
}

std::string sample(const MetricFamily& family, const Labels& labels, double value,
                   std::optional<Instant> time) {
    std::string line(family.name);
    line += '{';
    for (const auto& [name, text] : labels) {
        if (line.back() != '{') {
            line += ',';
        }
        line += std::string(name) + "=\"" + labelValue(text) + '"';
    }
    line += "} " + decimalText(value);
    if (time) {
        line += " " + decimalText(timestamp(*time));
    }
    return line + "\n";
}

std::string text(const UsageState& state, Instant now, bool withAccounts) {
    return Exposition(state, now, withAccounts).text();
}

} // namespace vellmark::UsageMetrics
