#pragma once

#include "model/UsageJSON.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace vellmark::tests {

/// What anyone who reads the whole document finds in a history file. Throws JSONDecodingError.
inline std::vector<UsageHistorySample> samplesOf(std::string_view document) {
    std::vector<UsageHistorySample> samples;
    for (const JSON& element : parsedJSON(document)) {
        fromJSON(element, samples.emplace_back());
    }
    return samples;
}

} // namespace vellmark::tests
