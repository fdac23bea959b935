#pragma once

#include <string>

namespace vellmark {

/// What an entry of the activity log says, apart from any language, so that it can be told in
/// another one later; see ActivityTexts::tell.
struct ActivityMessage {
    /// Of the string catalog; empty where nothing but a text is known.
    std::string key;
    /// The language that the entry's text is in.
    std::string language;
    /// A JSON array on one line: texts, integers, and objects of one member that names what kind of
    /// value it is ({"seconds": 5.9}).
    std::string arguments;

    bool operator==(const ActivityMessage&) const = default;
};

} // namespace vellmark
