#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace vellmark {

namespace {

// Far beyond what any document of ours or of an agent has.
constexpr std::size_t deepestNesting = 512;
constexpr std::size_t mostMembers = 1000;
constexpr std::size_t mostValues = 1'000'000;

[[noreturn]] void fail(const std::string& reason) {
    throw JSONDecodingError(reason);
}

/// Builds the document from the parser's events. The library's own way of leaving members out is a
/// callback that costs time quadratic in an array's length.
class DocumentBuilder final : public nlohmann::json_sax<JSON> {
public:
    explicit DocumentBuilder(std::span<const std::string_view> names) : names_(names) {}

    JSON document() && { return std::move(document_); }

    bool null() override { return put(nullptr); }
    bool boolean(bool value) override { return put(value); }
    bool number_integer(number_integer_t value) override { return put(value); }
    bool number_unsigned(number_unsigned_t value) override { return put(value); }
    bool number_float(number_float_t value, const string_t&) override { return put(value); }
    bool string(string_t& value) override { return put(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(JSON::value_t::object); }
    bool start_array(std::size_t) override { return open(JSON::value_t::array); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        Level& level = levels_.back();
        if (++level.members > mostMembers) {
            fail("an object has too many members");
        }
        level.skipsNext = level.container == nullptr ||
                          (!names_.empty() && std::ranges::find(names_, name) == names_.end());
        level.key = level.skipsNext ? string_t() : std::move(name);
        return true;
    }

    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override {
        fail(error.what());
    }

private:
    struct Level {
        /// Null within what is left out. Stays valid: while a container is open nothing is added
        /// to the one around it.
        JSON* container = nullptr;
        std::string key;
        std::size_t members = 0;
        bool skipsNext = false;
    };

    /// Where the next value belongs; null when it is left out.
    template<typename Value>
    JSON* place(Value&& value) {
        if (levels_.empty()) {
            document_ = std::forward<Value>(value);
            return &document_;
        }
        Level& level = levels_.back();
        if (level.container == nullptr || level.skipsNext) {
            return nullptr;
        }
        if (++values_ > mostValues) {
            fail("too many values");
        }
        if (level.container->is_array()) {
            level.container->push_back(std::forward<Value>(value));
            return &level.container->back();
        }
        // The last of several members of one name counts.
        return &((*level.container)[level.key] = std::forward<Value>(value));
    }

    template<typename Value>
    bool put(Value&& value) {
        place(std::forward<Value>(value));
        return true;
    }

    bool open(JSON::value_t type) {
        if (levels_.size() == deepestNesting) {
            fail("nested too deeply");
        }
        JSON* const container = place(JSON(type));
        levels_.push_back({.container = container, .key = {}});
        return true;
    }

    bool close() {
        levels_.pop_back();
        return true;
    }

    std::span<const std::string_view> names_;
    JSON document_;
    std::vector<Level> levels_;
    std::size_t values_ = 0;
};

} // namespace

JSON parsedJSON(std::string_view text, std::span<const std::string_view> names) {
    DocumentBuilder builder(names);
    JSON::sax_parse(text, &builder);
    return std::move(builder).document();
}

std::string serialized(const JSON& json, int indent) {
    return json.dump(indent, ' ', false, JSON::error_handler_t::replace);
}

} // namespace vellmark
