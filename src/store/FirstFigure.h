#pragma once

namespace vellmark {

/// What is said first of a quota wherever it is shown, by bars and in words: how much of it is
/// left, or how much is used.
enum class FirstFigure { left, used };

} // namespace vellmark
