#pragma once

#include <nlohmann/json_fwd.hpp>

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vellmark {

/// Keeps the order of members, so that what is read and written again looks as it did.
using JSON = nlohmann::ordered_json;

/// Why a text is not the document that it should be, with the path to the fault where there is one.
class JSONDecodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Parses a document that somebody else made, such as a file or an agent's answer, in linear time.
/// With `names`, only members with these names are built, wherever they stand; the contents of the
/// others cost no memory.
///
/// Throws JSONDecodingError, also for a document that nests deeper than 512, has an object with
/// more than 1,000 members or holds more than a million values: a hostile one must not cost much
/// more than its length.
JSON parsedJSON(std::string_view text, std::span<const std::string_view> names = {});

/// A document in UTF-8; ill-formed text in a value is written with U+FFFD. `indent` below 0 is one
/// line.
std::string serialized(const JSON& json, int indent = 2);

} // namespace vellmark
