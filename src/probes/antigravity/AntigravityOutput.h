#pragma once

#include "probes/antigravity/AntigravityQuotaRow.h"
#include "text/Dates.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// What `agy -p /usage --output-format json` printed, read.
struct AntigravityOutput {
    /// More rows than this are a flood, not quotas; the rest is not read.
    static constexpr std::size_t maximumRows = 1000;

    std::vector<AntigravityQuotaRow> rows;
    /// The words meant for the user: the document's response, or else the whole output. Where there
    /// are no rows they tell why.
    std::string text;
    /// What the CLI gives as its reason for a failure, where it has one ("AGY_ERROR:{…}").
    std::optional<std::string> reason;
    /// A model has answered: the reading has cost the user something.
    bool tookTurn = false;

    /// Takes the rows from the document's groups and buckets; where the output has none, from the
    /// lines of the text, unless these are a model's prose. Reset times without a zone are in
    /// `localZone`.
    static AntigravityOutput read(std::string_view output, const TimeZone& localZone);
};

/// One line of the text, by its columns: pool, window, remaining percentage ("not used yet" means
/// all of it), reset time.
std::optional<AntigravityQuotaRow> readAntigravityLine(std::string_view line,
                                                       const TimeZone& localZone);

} // namespace vellmark
