#pragma once

#include "model/UsageHistoryReader.h"

#include <functional>

namespace vellmark {

enum class HistoryOrder {
    time,          ///< oldest first
    windowAndTime, ///< by agent and window, oldest first within each
};

/// Shows the samples of a history to whoever is given; the same at each call, in any order.
using HistorySource = std::function<void(const UsageHistoryReader::Visitor&)>;

/// Visits the samples in an order, those of one moment in that of the file. Files are nearly in the
/// order of time, but samples may have come late. Memory does not grow with the history: what does
/// not fit is read again, so a source in disorder is asked several times.
void visitInOrder(const HistorySource& source, HistoryOrder order,
                  const UsageHistoryReader::Visitor& visit);

} // namespace vellmark
