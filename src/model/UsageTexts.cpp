#include "model/UsageTexts.h"

#include "text/Capitalization.h"
#include "text/Formatting.h"
#include "text/Pattern.h"
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
    NamedText{"individual", "window.individual"},
};

/// The two sides of a further limit, where its length is not told.
constexpr std::array sideKeys{
    NamedText{"primary", "window.shortTerm"},
    NamedText{"secondary", "window.weekly"},
};

constexpr std::string_view modelSuffix = "-weekly";

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

/// Codex's plans by their lower-cased names in its protocol, where people know them by another.
constexpr std::array codexPlans{
    NamedText{"prolite", "Pro Lite"},
    NamedText{"promax", "Pro Max"},
    NamedText{"team", "Business"},
    NamedText{"self_serve_business_prolite", "Business Premium"},
    NamedText{"self_serve_business_usage_based", "Business"},
    NamedText{"business", "Enterprise"},
    NamedText{"ent26", "Enterprise"},
    NamedText{"enterprise_cbp_automation", "Enterprise (Automation)"},
    NamedText{"enterprise_cbp_usage_based", "Enterprise"},
    NamedText{"edu_plus", "Edu Plus"},
    NamedText{"edu_pro", "Edu Pro"},
    NamedText{"sci", "Academic Researchers"},
    NamedText{"sci_plus", "Academic Researchers Plus"},
};

using IDParts = std::pair<std::string_view, std::string_view>;

/// The two parts of an identifier "<prefix>…|…".
std::optional<IDParts> partsAfter(std::string_view prefix, std::string_view id) {
    const std::size_t separator = id.find('|');
    if (!id.starts_with(prefix) || separator == std::string_view::npos) {
        return std::nullopt;
    }
    return IDParts{id.substr(prefix.size(), separator - prefix.size()), id.substr(separator + 1)};
}

/// "shortTerm", "daily", "weekly" or "monthly" for a window of about that length: lengths are what
/// the agent says, so they need not be exact. Empty for any other.
std::string_view lengthName(double minutes) {
    constexpr double day = 24 * 60;
    if (minutes < day) {
        return "shortTerm";
    }
    if (minutes < 2 * day) {
        return "daily";
    }
    if (minutes >= 6 * day && minutes <= 8 * day) {
        return "weekly";
    }
    return minutes >= 28 * day && minutes <= 31 * day ? "monthly" : std::string_view();
}

/// The name of a window of this length.
std::string lengthLabel(double minutes, const Localization& words) {
    const std::string_view name = lengthName(minutes);
    return name.empty()
               ? words.format("window.length", {roughDurationText(Seconds(minutes * 60), words)})
               : words.text("window." + std::string(name));
}

std::string poolLabel(std::string_view pool, const Localization& words, bool brief) {
    const std::string_view key = keyOf(poolKeys, lowercased(pool));
    if (key.empty()) {
        return singleLine(pool);
    }
    return words.text(std::string(key) + (brief ? ".short" : ""));
}

} // namespace

std::string windowLabel(const UsageWindow& window, const Localization& words, bool brief) {
    const std::string_view id = window.id;
    const auto& minutes = window.windowDurationMinutes;
    if (const auto parts = partsAfter("pool:", id)) {
        const auto& [pool, slug] = *parts;
        const std::string label = poolLabel(pool, words, brief);
        if (slug.empty() || slug == "weekly") {
            return label;
        }
        const std::string_view key = keyOf(poolWindowKeys, slug);
        return label + " · " + (key.empty() ? singleLine(slug) : words.text(key));
    }
    if (const auto parts = partsAfter("limit:", id)) {
        const auto& [limit, side] = *parts;
        const std::string_view key = keyOf(sideKeys, side);
        const std::string name = singleLine(window.label ? *window.label : limit);
        const std::string length = minutes       ? lengthLabel(*minutes, words)
                                   : key.empty() ? singleLine(side)
                                                 : words.text(key);
        // Where space is short, names are cut at their end: what tells the two sides apart must
        // survive.
        return brief ? length + " · " + name : name + " · " + length;
    }
    if (id.ends_with(modelSuffix)) {
        const std::string model = capitalized(id.substr(0, id.size() - modelSuffix.size()));
        return words.format("window.modelWeekly", {singleLine(window.label.value_or(model))});
    }
    if (minutes && (id == "session" || id == "weekly")) {
        return lengthLabel(*minutes, words);
    }
    const std::string_view key = keyOf(windowKeys, id);
    return key.empty() ? singleLine(window.label.value_or(window.id)) : words.text(key);
}

std::string windowLabel(std::string_view windowID, const Localization& words, bool brief) {
    UsageWindow window;
    window.id = windowID;
    return windowLabel(window, words, brief);
}

std::string planText(const AgentUsageSnapshot& snapshot) {
    const std::string plan = snapshot.plan.value_or("");
    const bool isCodex = snapshot.id == AgentProviderID::codex();
    const std::string_view name = isCodex ? keyOf(codexPlans, lowercased(plan)) : "";
    return name.empty() ? plan : std::string(name);
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
        return words.format("forecast.emptySince", {instantText(*forecast.emptyAt, now, words)});
    }
    std::string untilEmpty = forecastDurationText(*forecast.emptyAt - now, words);
    if (brief || !window.resetsAt) {
        return words.format("forecast.emptyIn", {std::move(untilEmpty)});
    }
    return words.format(
        "forecast.emptyInBeforeReset",
        {std::move(untilEmpty),
         roughDurationText(*window.resetsAt - *forecast.emptyAt, words, SpanForm::alone)});
}

std::string usedUpText(const UsageWindow& window, Instant now, const Localization& words) {
    return window.resetsAt
               ? words.format("usage.usedUp.back", {instantText(*window.resetsAt, now, words)})
               : words.text("usage.usedUp");
}

std::string waitingText(const UsageWindow& wider, const Localization& words) {
    const std::string_view length = lengthName(wider.windowDurationMinutes.value_or(0));
    return length.empty() || length == "shortTerm"
               ? words.format("usage.waits", {windowLabel(wider, words, true)})
               : words.text("usage.waits." + std::string(length));
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
    if (line == nullptr) {
        return words.text("credits.available");
    }
    std::string text = singleLine(line->text);
    static const Pattern spent(R"(^(\S+) ?/ ?(\S+) spent$)");
    const auto known = words.languageCode() != "en" ? spent.search(text) : std::nullopt;
    if (known) {
        return words.format("credits.spent",
                            {std::string(known->group(1)), std::string(known->group(2))});
    }
    return text;
}

} // namespace vellmark
