#include "probes/codex/CodexReply.h"

#include "text/DecimalNumber.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>
#include <vector>

namespace vellmark {

namespace {

constexpr std::size_t maximumDepth = 512;

/// Picks the fields while the line is being parsed: a document of a hostile child is never built.
class ReplyReader final : public nlohmann::json_sax<nlohmann::json> {
public:
    std::optional<CodexReply> reply() && {
        if (!id_ || !hasResult_) {
            return std::nullopt;
        }
        reply_.id = *id_;
        return std::move(reply_);
    }

    bool null() override { return true; }

    bool boolean(bool value) override {
        if (isAt(Place::credits, "hasCredits")) {
            reply_.rateLimits->hasCredits = value;
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
        if (isInsideResult() && !levels_.back().isArray && levels_.back().key == "email") {
            levels_.back().ownEmail = value;
        }
        if (isAt(Place::rateLimits, "planType")) {
            reply_.rateLimits->planType = value;
        }
        if (std::optional<double>* field = windowField()) {
            *field = parseDecimal(value);
        }
        return true;
    }

    bool binary(binary_t&) override { return true; }

    bool start_object(std::size_t) override { return open(placeOfObject(), false); }
    bool start_array(std::size_t) override { return open(Place::elsewhere, true); }
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
    enum class Place { message, result, rateLimits, primary, secondary, credits, elsewhere };

    struct Level {
        Place place = Place::elsewhere;
        bool isArray = false;
        bool insideResult = false;
        /// The member that is being read.
        std::string key;
        std::optional<std::string> ownEmail;
        std::optional<std::string> nestedEmail;
    };

    bool isAt(Place place, std::string_view key) const {
        return !levels_.empty() && levels_.back().place == place && levels_.back().key == key;
    }

    bool isInsideResult() const { return !levels_.empty() && levels_.back().insideResult; }

    /// Which object begins here; makes its record.
    Place placeOfObject() {
        if (levels_.empty()) {
            return Place::message;
        }
        if (isAt(Place::message, "result")) {
            hasResult_ = true;
            return Place::result;
        }
        if (isAt(Place::result, "account")) {
            reply_.hasAccount = true;
        } else if (isAt(Place::result, "rateLimits")) {
            reply_.rateLimits.emplace();
            return Place::rateLimits;
        } else if (isAt(Place::rateLimits, "primary")) {
            reply_.rateLimits->primary.emplace();
            return Place::primary;
        } else if (isAt(Place::rateLimits, "secondary")) {
            reply_.rateLimits->secondary.emplace();
            return Place::secondary;
        } else if (isAt(Place::rateLimits, "credits")) {
            return Place::credits;
        }
        return Place::elsewhere;
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
        return true;
    }

    void takeID(std::int64_t value) {
        if (isAt(Place::message, "id")) {
            id_ = value;
        }
    }

    bool takeNumber(double value) {
        if (std::optional<double>* field = windowField()) {
            *field = value;
        }
        return true;
    }

    /// The field that a number at this place belongs to, or null.
    std::optional<double>* windowField() {
        if (levels_.empty()) {
            return nullptr;
        }
        const Level& level = levels_.back();
        CodexWindow* window = level.place == Place::primary     ? &*reply_.rateLimits->primary
                              : level.place == Place::secondary ? &*reply_.rateLimits->secondary
                                                                : nullptr;
        if (window == nullptr) {
            return nullptr;
        }
        return level.key == "usedPercent"          ? &window->usedPercent
               : level.key == "windowDurationMins" ? &window->windowDurationMins
               : level.key == "resetsAt"           ? &window->resetsAt
                                                   : nullptr;
    }

    std::vector<Level> levels_;
    std::optional<std::int64_t> id_;
    bool hasResult_ = false;
    CodexReply reply_;
    std::optional<std::string> ignoredEmail_;
};

} // namespace

std::optional<CodexReply> parseCodexReply(std::string_view line) {
    ReplyReader reader;
    if (!nlohmann::json::sax_parse(line.begin(), line.end(), &reader)) {
        return std::nullopt;
    }
    return std::move(reader).reply();
}

} // namespace vellmark
