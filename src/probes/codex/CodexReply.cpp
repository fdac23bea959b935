#include "probes/codex/CodexReply.h"

#include "text/DecimalNumber.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vellmark {

namespace {

constexpr std::size_t maximumDepth = 512;

/// Picks the fields while the line is being parsed: a document of a hostile child is never built.
class ReplyReader final : public nlohmann::json_sax<nlohmann::json> {
public:
    std::optional<CodexReply> reply() && {
        if (!id_ || !(hasResult_ || reply_.refusal)) {
            return std::nullopt;
        }
        if (hasResult_) {
            reply_.refusal.reset();
        }
        reply_.id = *id_;
        return std::move(reply_);
    }

    bool null() override { return true; }

    bool boolean(bool value) override {
        if (std::optional<bool>* field = flagField()) {
            *field = value;
        }
        return true;
    }

    bool number_integer(number_integer_t value) override {
        takeID(value);
        return takeNumber(static_cast<double>(value));
    }

    bool number_unsigned(number_unsigned_t value) override {
        if (std::in_range<std::int64_t>(value)) {
            takeID(static_cast<std::int64_t>(value));
        }
        return takeNumber(static_cast<double>(value));
    }

    bool number_float(number_float_t value, const string_t&) override {
        if (std::trunc(value) == value && std::abs(value) < 0x1p63) {
            takeID(static_cast<std::int64_t>(value));
        }
        return takeNumber(value);
    }

    bool string(string_t& value) override {
        if (std::optional<double>* field = numberField()) {
            *field = parseDecimal(value);
        }
        if (isInsideResult() && !levels_.back().isArray && levels_.back().key == "email") {
            levels_.back().ownEmail = value;
        }
        if (std::optional<std::string>* field = textField()) {
            *field = std::move(value);
        }
        return true;
    }

    bool binary(binary_t&) override { return true; }

    bool start_object(std::size_t) override { return openObject(); }
    bool start_array(std::size_t) override {
        return open(
            isAt(Place::resetCredits, "credits") ? Place::resetCreditList : Place::elsewhere, true);
    }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        levels_.back().key = std::move(name);
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

private:
    enum class Place {
        message,
        error,
        result,
        account,
        limits,
        limitsByID,
        window,
        individualLimit,
        credits,
        resetCredits,
        resetCreditList,
        resetCredit,
        elsewhere,
    };

    struct Level {
        Place place = Place::elsewhere;
        bool isArray = false;
        bool insideResult = false;
        /// The member that is being read.
        std::string key;
        /// Of `limits` and what is in them. Limits do not nest, so what is pointed to stays.
        CodexRateLimits* limits = nullptr;
        CodexWindow* window = nullptr;
        std::optional<std::string> ownEmail;
        std::optional<std::string> nestedEmail;
    };

    struct ResetCredit {
        std::optional<std::string> status;
        std::optional<double> expiresAt;
    };

    bool isAt(Place place, std::string_view key) const {
        return !levels_.empty() && levels_.back().place == place && levels_.back().key == key;
    }

    bool isInsideResult() const { return !levels_.empty() && levels_.back().insideResult; }

    /// Finds out which object begins here, and makes its record.
    bool openObject() {
        if (levels_.empty()) {
            return open(Place::message, false);
        }
        const std::string& key = levels_.back().key;
        switch (levels_.back().place) {
        case Place::message:
            return openMemberOfMessage(key);
        case Place::result:
            return openMemberOfResult(key);
        case Place::limits:
            return openMemberOfLimits(key, levels_.back().limits);
        case Place::limitsByID:
            if (reply_.limits.size() == CodexReply::mostLimits) {
                break;
            }
            return openLimits(&reply_.limits.emplace_back(CodexRateLimits{.limitID = key}));
        case Place::resetCreditList:
            resetCredit_ = {};
            return open(Place::resetCredit, false);
        default:
            break;
        }
        return open(Place::elsewhere, false);
    }

    bool openMemberOfMessage(const std::string& key) {
        if (key == "result") {
            hasResult_ = true;
            return open(Place::result, false);
        }
        if (key == "error") {
            reply_.refusal.emplace();
            return open(Place::error, false);
        }
        return open(Place::elsewhere, false);
    }

    bool openMemberOfResult(const std::string& key) {
        if (key == "account") {
            reply_.hasAccount = true;
            return open(Place::account, false);
        }
        if (key == "rateLimits") {
            return openLimits(&reply_.rateLimits.emplace());
        }
        return open(key == "rateLimitsByLimitId"     ? Place::limitsByID
                    : key == "rateLimitResetCredits" ? Place::resetCredits
                                                     : Place::elsewhere,
                    false);
    }

    bool openLimits(CodexRateLimits* limits) {
        if (!open(Place::limits, false)) {
            return false;
        }
        levels_.back().limits = limits;
        return true;
    }

    bool openMemberOfLimits(const std::string& key, CodexRateLimits* limits) {
        Place place = Place::elsewhere;
        CodexWindow* window = nullptr;
        if (key == "primary") {
            place = Place::window;
            window = &limits->primary.emplace();
        } else if (key == "secondary") {
            place = Place::window;
            window = &limits->secondary.emplace();
        } else if (key == "individualLimit") {
            place = Place::individualLimit;
            limits->individualLimit.emplace();
        } else if (key == "credits") {
            place = Place::credits;
        }
        if (!open(place, false)) {
            return false;
        }
        levels_.back().limits = limits;
        levels_.back().window = window;
        return true;
    }

    bool open(Place place, bool isArray) {
        if (levels_.size() == maximumDepth) {
            return false;
        }
        Level level;
        level.place = place;
        level.isArray = isArray;
        level.insideResult = place == Place::result || isInsideResult();
        levels_.push_back(std::move(level));
        return true;
    }

    bool close() {
        Level level = std::move(levels_.back());
        levels_.pop_back();
        auto& email = level.ownEmail ? level.ownEmail : level.nestedEmail;
        auto& target = level.place == Place::result ? reply_.email
                       : levels_.empty()            ? ignoredEmail_
                                                    : levels_.back().nestedEmail;
        if (!target) {
            target = std::move(email);
        }
        if (level.place == Place::resetCredit) {
            countResetCredit();
        }
        return true;
    }

    void countResetCredit() {
        if (resetCredit_.expiresAt && resetCredit_.status.value_or("available") == "available") {
            auto& next = reply_.resetCredits.nextExpiry;
            next = std::min(next.value_or(*resetCredit_.expiresAt), *resetCredit_.expiresAt);
        }
    }

    void takeID(std::int64_t value) {
        if (isAt(Place::message, "id")) {
            id_ = value;
        }
    }

    bool takeNumber(double value) {
        if (std::optional<double>* field = numberField()) {
            *field = value;
        }
        return true;
    }

    // The field that a value of its kind belongs to at this place, or null.

    std::optional<double>* numberField() {
        if (levels_.empty()) {
            return nullptr;
        }
        const Level& level = levels_.back();
        switch (level.place) {
        case Place::window:
            return level.key == "usedPercent"          ? &level.window->usedPercent
                   : level.key == "windowDurationMins" ? &level.window->windowDurationMins
                   : level.key == "resetsAt"           ? &level.window->resetsAt
                                                       : nullptr;
        case Place::individualLimit:
            return level.key == "remainingPercent"
                       ? &level.limits->individualLimit->remainingPercent
                   : level.key == "resetsAt" ? &level.limits->individualLimit->resetsAt
                                             : nullptr;
        case Place::resetCredits:
            return level.key == "availableCount" ? &reply_.resetCredits.availableCount : nullptr;
        case Place::resetCredit:
            return level.key == "expiresAt" ? &resetCredit_.expiresAt : nullptr;
        default:
            return nullptr;
        }
    }

    std::optional<std::string>* textField() {
        if (levels_.empty()) {
            return nullptr;
        }
        const Level& level = levels_.back();
        switch (level.place) {
        case Place::error:
            return level.key == "message" ? &reply_.refusal : nullptr;
        case Place::account:
            return level.key == "type" ? &reply_.accountType : nullptr;
        case Place::limits:
            return level.key == "limitId"                ? &level.limits->limitID
                   : level.key == "limitName"            ? &level.limits->limitName
                   : level.key == "planType"             ? &level.limits->planType
                   : level.key == "rateLimitReachedType" ? &level.limits->reachedType
                                                         : nullptr;
        case Place::resetCredit:
            return level.key == "status" ? &resetCredit_.status : nullptr;
        default:
            return nullptr;
        }
    }

    std::optional<bool>* flagField() {
        if (isAt(Place::result, "ordinaryUsageAllowed")) {
            return &reply_.ordinaryUsageAllowed;
        }
        if (isAt(Place::limits, "spendControlReached")) {
            return &levels_.back().limits->spendControlReached;
        }
        return isAt(Place::credits, "hasCredits") ? &levels_.back().limits->hasCredits : nullptr;
    }

    std::vector<Level> levels_;
    std::optional<std::int64_t> id_;
    bool hasResult_ = false;
    CodexReply reply_;
    ResetCredit resetCredit_;
    std::optional<std::string> ignoredEmail_;
};

} // namespace

std::optional<CodexReply> parseCodexReply(std::string_view line) {
    // The parser needs longer to say why such a line is none: a megabyte may hold a million of
    // them.
    if (line.find('{') == line.npos) {
        return std::nullopt;
    }
    ReplyReader reader;
    if (!nlohmann::json::sax_parse(line.begin(), line.end(), &reader)) {
        return std::nullopt;
    }
    return std::move(reader).reply();
}

} // namespace vellmark
