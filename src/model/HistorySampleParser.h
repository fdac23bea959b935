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
        malformed,  ///< no JSON, or what no sample could be
        unread,     ///< a JSON object, but no sample; `form` tells more
    };

    /// On `sample`, fills in `sample` (but its offset), whose text is a prefix of `text`.
    Result parse(std::string_view text, StoredHistorySample& sample);

    /// The object that was last found `unread`.
    const HistoryObjectForm& form() const { return form_; }

private:
    static bool parsePlainForm(std::string_view text, StoredHistorySample& sample);
    Result parseByLibrary(std::string_view text, StoredHistorySample& sample);
    static bool number(const char*& position, const char* end, double& value);

    HistoryObjectForm form_;
    UsageHistorySample decoded_; ///< keeps the texts of the last sample read by the library
};

} // namespace vellmark
