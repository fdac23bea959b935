#include "model/UsageTexts.h"

#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace vellmark {

namespace {

struct NamedText {
    std::string_view name;
    std::string_view key;
};

constexpr std::array windowKeys{
    NamedText{"session", "window.shortTerm"},
    NamedText{"weekly", "window.weekly"},
    NamedText{"fable-weekly", "window.fableWeekly"},
};

/// Model pools by their lower-cased names.
constexpr std::array poolKeys{
    NamedText{"gemini models", "pool.gemini"},
    NamedText{"claude and gpt models", "pool.claudeGpt"},
};

/// The windows of a pool; the weekly one is the pool's main window and has no name of its own.
constexpr std::array poolWindowKeys{
    NamedText{"5h", "window.session"},
    NamedText{"daily", "window.daily"},
    NamedText{"monthly", "window.monthly"},
};

template<std::size_t count>
std::string_view keyOf(const std::array<NamedText, count>& texts, std::string_view name) {
    for (const NamedText& text : texts) {
        if (text.name == name) {
            return text.key;
        }
    }
    return {};
}

/// Pool and window of an identifier "pool:POOL|WINDOW".
std::optional<std::pair<std::string_view, std::string_view>> poolWindow(std::string_view id) {
    constexpr std::string_view prefix = "pool:";
    const std::size_t separator = id.find('|');
    if (!id.starts_with(prefix) || separator == std::string_view::npos) {
        return std::nullopt;
    }
    return std::pair{id.substr(prefix.size(), separator - prefix.size()), id.substr(separator + 1)};
}

std::string poolLabel(std::string_view pool, const Localization& words, bool brief) {
    const std::string_view key = keyOf(poolKeys, lowercased(pool));
    if (key.empty()) {
        return singleLine(pool);
    }
    return words.text(std::string(key) + (brief ? ".short" : ""));
}

} // namespace

std::string windowLabel(std::string_view windowID, const Localization& words, bool brief) {
    const auto parts = poolWindow(windowID);
    if (!parts) {
        const std::string_view key = keyOf(windowKeys, windowID);
        return key.empty() ? singleLine(windowID) : words.text(key);
    }
    const auto& [pool, slug] = *parts;
    const std::string label = poolLabel(pool, words, brief);
    if (slug.empty() || slug == "weekly") {
        return label;
    }
    const std::string_view key = keyOf(poolWindowKeys, slug);
    return label + " · " + (key.empty() ? singleLine(slug) : words.text(key));
}

std::string healthText(UsageHealth health, const Localization& words) {
    switch (health) {
    case UsageHealth::healthy:
        return words.text("health.healthy");
    case UsageHealth::attention:
        return words.text("health.attention");
    case UsageHealth::critical:
        return words.text("health.critical");
    case UsageHealth::unavailable:
        break;
    }
    return words.text("health.unavailable");
}

std::string planningText(const Planning& planning, const Localization& words) {
    const auto points = static_cast<std::int64_t>(std::lround(std::abs(planning.points)));
    switch (planning.kind) {
    case Planning::Kind::reserve:
        return words.format("planning.reserve", {points});
    case Planning::Kind::deficit:
        return words.format("planning.deficit", {points});
    case Planning::Kind::onPlan:
        break;
    }
    return words.text("planning.onPlan");
}

std::string forecastText(const Forecast& forecast, const UsageWindow& window, Instant now,
                         const Localization& words, bool brief) {
    if (!forecast.emptyAt) {
        return words.text("forecast.lasts");
    }
    if (*forecast.emptyAt <= now) {
        return words.text("forecast.empty");
    }
    std::string untilEmpty = forecastDurationText(*forecast.emptyAt - now, words);
    if (brief || !window.resetsAt) {
        return words.format("forecast.emptyIn", {std::move(untilEmpty)});
    }
    return words.format(
        "forecast.emptyInBeforeReset",
        {std::move(untilEmpty), roughDurationText(*window.resetsAt - *forecast.emptyAt, words)});
}

std::string resetText(const UsageWindow& window, Instant now, const Localization& words) {
    if (!window.resetsAt) {
        return {};
    }
    const Instant reset = *window.resetsAt;
    std::string moment = instantText(reset, now, words);
    if (reset > now) {
        return words.format("usage.reset.in",
                            {durationText(reset - now, words), std::move(moment)});
    }
    return words.format(isSameDay(reset, now, words) ? "usage.reset.due" : "usage.reset.dueOn",
                        {std::move(moment)});
}

std::string creditText(const CreditInfo& credit, const Localization& words) {
    const auto* line = std::get_if<CreditInfo::Line>(&credit.value);
    return line != nullptr ? singleLine(line->text) : words.text("credits.available");
}

} // namespace vellmark
