#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vellmark {

/// The languages of the string catalog by their codes; the first is the one in which texts that
/// another lacks are looked up.
inline constexpr std::array<std::string_view, 5> catalogLanguages{"de", "en", "fr", "it", "es"};

/// One entry of the string catalog. The texts may hold placeholders, see Localization.
struct CatalogEntry {
    std::string_view key;
    /// In the order of `catalogLanguages`.
    std::array<std::string_view, catalogLanguages.size()> texts;
};

/// All entries, sorted by key: a table in the program's constant data, which CatalogCompiler makes
/// of resources/Localizable.xcstrings when the program is built.
std::span<const CatalogEntry> catalogEntries();

} // namespace vellmark
