#pragma once

namespace vellmark {

class ReportTextView;

/// From now on assistive software can read report texts, select in them and follow their caret;
/// more than once changes nothing. Main thread.
void tellOfReportTexts();

/// The caret or the selection has changed.
void tellOfReportCaret(ReportTextView& view);

} // namespace vellmark
