#pragma once

#include <cstdio>
#include <cstdlib>
#include <source_location>

namespace vellmark {

/// What must hold of a reader's result: ends the program where it does not.
inline void require(bool holds, std::source_location place = std::source_location::current()) {
    if (!holds) {
        std::fprintf(stderr, "%s, line %u: this does not hold\n", place.function_name(),
                     static_cast<unsigned>(place.line()));
        std::abort();
    }
}

} // namespace vellmark
