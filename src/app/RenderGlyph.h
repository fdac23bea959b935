#pragma once

#include <string>
#include <vector>

namespace vellmark {

/// Writes the glyph that the status item would show as a picture. Arguments: used share, elapsed
/// share (percent, or "none"), side in pixels, file. Returns the program's exit status.
int renderGlyph(const std::vector<std::string>& arguments);

} // namespace vellmark
