#pragma once

#include <span>
#include <string_view>

namespace vellmark {

/// One entry of the string catalog. The texts may hold placeholders, see Localization.
struct CatalogEntry {
    std::string_view key;
    std::string_view german;
    std::string_view english;
};

/// All entries, sorted by key: a table in the program's constant data, which CatalogCompiler makes
/// of resources/Localizable.xcstrings when the program is built.
std::span<const CatalogEntry> catalogEntries();

} // namespace vellmark
