#pragma once

#include <QPainterPath>

#include <optional>
#include <string_view>

namespace vellmark::kit {

/// A path written in the path language of SVG 1.1 (section 8.3), all commands, absolute and
/// relative; absent when `text` is not well-formed.
std::optional<QPainterPath> pathFromText(std::string_view text);

} // namespace vellmark::kit
