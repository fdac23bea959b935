#pragma once

#include "presentation/SupportReportContent.h"

namespace vellmark::samples {

/// The made-up moments of the report's window.
enum class ReportMoment {
    building, ///< one agent has not answered, one is not there
    ready,
    found,     ///< somebody looks for a word
    described, ///< in the user's words, with addresses
    saved,
    mailed,
    withoutMail,
    notSaved,
    clean, ///< nothing was to be removed
    failed,
};

SupportReportState report(ReportMoment moment, const Localization& words);

/// The facts of an installation with a log of so many lines.
SupportReportInput reportInput(std::size_t logLines, const Localization& words);

} // namespace vellmark::samples
