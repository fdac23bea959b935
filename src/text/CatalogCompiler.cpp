// Makes the program's table of texts from the String Catalog. Runs while the program is built, so
// that a text that is missing in one language or takes other arguments there fails the build and
// looking texts up costs no start-up.
//
// usage: vellmark_catalog_compiler CATALOG.xcstrings TABLE.cpp

#include "text/CatalogSource.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

using vellmark::CatalogFault;
using vellmark::CatalogSourceEntry;

/// A C++ string literal. Every byte beyond printable ASCII is three octal digits, which no
/// following digit can lengthen.
std::string literal(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte < 0x7F && character != '"' && character != '\\' &&
            character != '?') {
            result += character;
        } else {
            result +=
                {'\\', static_cast<char>('0' + (byte >> 6)),
                 static_cast<char>('0' + ((byte >> 3) & 7)), static_cast<char>('0' + (byte & 7))};
        }
    }
    return result + "\"";
}

/// All texts behind each other, each of them once.
class Texts {
public:
    /// The place of `text`: "{offset, length}".
    std::string place(const std::string& text) {
        const auto [known, isNew] = offsets_.try_emplace(text, size_);
        if (isNew) {
            literals_ += "    " + literal(text) + "\n";
            size_ += text.size();
        }
        return "{" + std::to_string(known->second) + ", " + std::to_string(text.size()) + "}";
    }
    const std::string& literals() const { return literals_; }

private:
    std::map<std::string, std::size_t> offsets_;
    std::string literals_;
    std::size_t size_ = 0;
};

void writeTable(std::ostream& output, const std::vector<CatalogSourceEntry>& table) {
    Texts texts;
    std::string entries;
    for (const CatalogSourceEntry& entry : table) {
        entries += "    {" + texts.place(entry.key) + ", {{";
        for (std::size_t index = 0; index < entry.texts.size(); ++index) {
            entries += (index > 0 ? ", " : "") + texts.place(entry.texts[index]);
        }
        entries += "}}},\n";
    }
    output
        << "// Made by vellmark_catalog_compiler from the string catalog.\n"
           "#include \"text/Catalog.h\"\n\n"
           "#ifdef __clang__\n#pragma clang diagnostic ignored \"-Woverlength-strings\"\n#endif\n\n"
           "namespace vellmark {\n\nnamespace {\n\nconstexpr char texts[] =\n"
        << texts.literals() << "    ;\n\nconstexpr std::array<CatalogEntry, " << table.size()
        << "> entries{{\n"
        << entries
        << "}};\n\n} // namespace\n\n"
           "std::string_view CatalogText::view() const { return {texts + offset, length}; }\n\n"
           "std::span<const CatalogEntry> catalogEntries() { return entries; }\n\n"
           "} // namespace vellmark\n";
}

void compile(const char* catalogPath, const char* tablePath) {
    std::ifstream input(catalogPath, std::ios::binary);
    if (!input) {
        throw CatalogFault("cannot be read");
    }
    const std::string text(std::istreambuf_iterator<char>(input), {});
    const std::vector<CatalogSourceEntry> table = vellmark::readCatalog(text);
    std::ofstream output(tablePath, std::ios::binary | std::ios::trunc);
    writeTable(output, table);
    output.close();
    if (!output) {
        throw CatalogFault(std::string("cannot write ") + tablePath);
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: vellmark_catalog_compiler CATALOG.xcstrings TABLE.cpp\n";
        return 2;
    }
    try {
        compile(arguments[1], arguments[2]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << arguments[1] << ": error: " << error.what() << '\n';
        return 1;
    }
}
