#pragma once

#include "text/Catalog.h"

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// Why a String Catalog cannot be built into the program, with the place in it.
struct CatalogFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A key of a String Catalog with its texts.
struct CatalogSourceEntry {
    std::string key;
    /// In the order of `catalogLanguages`.
    std::array<std::string, catalogLanguages.size()> texts;
};

/// Reads a String Catalog (JSON of the form that Apple's tools write, ".xcstrings"), sorted by key.
/// Throws CatalogFault, also where a key lacks a language or its texts take different arguments.
std::vector<CatalogSourceEntry> readCatalog(std::string_view text);

} // namespace vellmark
