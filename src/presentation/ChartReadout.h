#pragma once

#include "presentation/ChartContent.h"

namespace vellmark {

/// What a chart says at one place.
struct ChartReadout {
    struct Row {
        std::string name;
        /// "54% left"; for a day "12% to 98% left".
        std::string value;
        /// Where its dot stands; absent for a day.
        std::optional<double> y;
        ChartLine::Role role = ChartLine::Role::main;
    };
    /// A reading's own place, next to the one that was asked for.
    double x = 0;
    /// The moment, or the day.
    std::string title;
    std::vector<Row> rows;
    /// That nothing was read, or that the figures are old; may be empty.
    std::string note;
    /// All of it in one sentence, for who cannot see it.
    std::string spoken;
};

/// Absent in a chart without a course. Costs the same for any number of samples.
std::optional<ChartReadout> chartReadout(const ChartContent& content, double x);

/// The place `steps` readings to the right, or to the left when negative; readings that lie closer
/// together than can be told apart count as one.
double chartPlaceBeside(const ChartContent& content, double x, int steps);

} // namespace vellmark
