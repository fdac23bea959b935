#pragma once

#include "model/UsageHistoryReader.h"
#include "model/UsageHistorySample.h"

#include <cstddef>
#include <string_view>

namespace vellmark {

/// Takes one sample from the beginning of a text.
///
/// The persisted form is read directly; anything unusual in it (escapes, letters beyond ASCII,
/// nulls, odd numbers) is given to the JSON library. Numbers become the nearest double, independent
/// of the locale.
class HistorySampleParser {
public:
    enum class Result {
        sample,
        incomplete, ///< the text ends before the object does
        malformed,  ///< no JSON
        foreign,    ///< JSON, but no sample, or one with unknown fields
    };

    HistorySampleParser();

    /// On `sample`, fills in `sample` (but its offset), whose text is a prefix of `text`.
    Result parse(std::string_view text, StoredHistorySample& sample);

private:
    bool parsePlainForm(std::string_view text, StoredHistorySample& sample) const;
    Result parseByLibrary(std::string_view text, StoredHistorySample& sample);
    bool number(const char*& position, const char* end, double& value) const;

    char decimalPoint_;
    UsageHistorySample decoded_; ///< keeps the texts of the last sample read by the library
};

} // namespace vellmark
