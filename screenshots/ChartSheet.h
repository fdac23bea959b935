#pragma once

#include <QImage>

#include <string>

namespace vellmark {

/// Charts of every kind side by side, one of them read out.
QImage drawChartSheet(const std::string& language, double scale);

} // namespace vellmark
