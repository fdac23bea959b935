#pragma once

#include "model/UsageJSON.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// What a history records of one window, under an identifier of its own.
inline UsageHistorySample historySample(AgentProviderID provider, std::string window,
                                        Instant captured, double used) {
    UsageHistorySample sample;
    sample.id = UUID::make();
    sample.provider = std::move(provider);
    sample.windowID = std::move(window);
    sample.capturedAt = captured;
    sample.usedPercent = used;
    return sample;
}

/// A history file that holds them.
inline std::string historyDocument(const std::vector<UsageHistorySample>& samples) {
    JSON document = JSON::array();
    for (const UsageHistorySample& sample : samples) {
        document.push_back(toJSON(sample));
    }
    return serialized(document);
}

/// What anyone who reads the whole document finds in a history file. Throws JSONDecodingError.
inline std::vector<UsageHistorySample> samplesOf(std::string_view document) {
    std::vector<UsageHistorySample> samples;
    for (const JSON& element : parsedJSON(document)) {
        fromJSON(element, samples.emplace_back());
    }
    return samples;
}

} // namespace vellmark::tests
