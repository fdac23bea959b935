#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace vellmark {

/// The languages of the string catalog by their codes; the first is the one in which texts that
/// another lacks are looked up.
inline constexpr std::array<std::string_view, 5> catalogLanguages{"de", "en", "fr", "it", "es"};

/// A text of the string catalog, by its place among all texts: unlike a pointer, a place needs no
/// work when the program starts.
struct CatalogText {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;

    std::string_view view() const;
};

/// One entry of the string catalog. The texts may hold placeholders, see Localization.
struct CatalogEntry {
    CatalogText key;
    /// In the order of `catalogLanguages`.
    std::array<CatalogText, catalogLanguages.size()> texts;
};

/// All entries, sorted by key: a table in the program's constant data, which CatalogCompiler makes
/// of resources/Localizable.xcstrings when the program is built.
std::span<const CatalogEntry> catalogEntries();

} // namespace vellmark
