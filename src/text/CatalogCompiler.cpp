// Makes the program's table of texts from the String Catalog (JSON of the form that Apple's tools
// write, ".xcstrings"). Runs while the program is built, so that a text that is missing in one
// language or takes other arguments there fails the build and looking texts up costs no start-up.
//
// usage: vellmark_catalog_compiler CATALOG.xcstrings TABLE.cpp

#include "text/Catalog.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using JSON = nlohmann::json;
using vellmark::catalogLanguages;

struct Fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Entry {
    std::string key;
    /// In the order of `catalogLanguages`.
    std::array<std::string, catalogLanguages.size()> texts;
};

const JSON& member(const JSON& object, const char* name, const std::string& where) {
    if (!object.is_object() || !object.contains(name)) {
        throw Fault(where + ": no \"" + name + "\"");
    }
    return object.at(name);
}

std::string placeOf(const std::string& key, std::string_view language) {
    return "key \"" + key + "\", language \"" + std::string(language) + "\"";
}

std::string localizedText(const std::string& key, const JSON& entry, std::string_view language) {
    const std::string where = placeOf(key, language);
    if (!entry.is_object() || !entry.contains("localizations") ||
        !entry.at("localizations").contains(language)) {
        throw Fault(where + ": there is no text");
    }
    const JSON& localization = entry.at("localizations").at(language);
    if (localization.contains("variations")) {
        throw Fault(where + ": variations are not supported, use one key for each");
    }
    const JSON& value = member(member(localization, "stringUnit", where), "value", where);
    if (!value.is_string() || value.get_ref<const std::string&>().empty()) {
        throw Fault(where + ": the text is empty");
    }
    return value.get<std::string>();
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

/// The arguments that a text takes: position → conversion. A per cent sign before a blank or a
/// punctuation mark stands for itself.
std::map<std::size_t, std::string> placeholders(const std::string& text, const std::string& where) {
    std::map<std::size_t, std::string> found;
    std::size_t next = 1;
    for (std::size_t index = text.find('%'); index != std::string::npos;
         index = text.find('%', index)) {
        std::size_t end = ++index;
        if (end < text.size() && text[end] == '%') {
            index = end + 1;
            continue;
        }
        while (end < text.size() && isDigit(text[end])) {
            ++end;
        }
        std::size_t position = 0;
        if (end > index && end < text.size() && text[end] == '$') {
            position = static_cast<std::size_t>(std::stoul(text.substr(index, end - index)));
            index = ++end;
        }
        const std::string_view rest = std::string_view(text).substr(index);
        const std::string conversion =
            rest.substr(0, 1) == "@" ? "@" : (rest.substr(0, 3) == "lld" ? "lld" : "");
        if (!conversion.empty()) {
            found[position > 0 ? position : next++] = conversion;
        } else if (position > 0 ||
                   (!rest.empty() && (isLetter(rest.front()) || isDigit(rest.front())))) {
            throw Fault(where + ": unknown placeholder in \"" + text +
                        "\" (known are %@, %lld, %1$@, %1$lld and %%)");
        }
    }
    return found;
}

/// A text whose arguments differ from the first language's would lose one, or show a placeholder.
void checkPlaceholders(const Entry& entry) {
    const auto wanted = placeholders(entry.texts[0], placeOf(entry.key, catalogLanguages[0]));
    for (std::size_t index = 1; index < catalogLanguages.size(); ++index) {
        const std::string where = placeOf(entry.key, catalogLanguages[index]);
        if (placeholders(entry.texts[index], where) != wanted) {
            throw Fault(where + ": the placeholders differ: \"" + entry.texts[0] + "\", \"" +
                        entry.texts[index] + "\"");
        }
    }
}

std::vector<Entry> entries(const JSON& catalog) {
    const JSON& strings = member(catalog, "strings", "not a String Catalog");
    if (!strings.is_object() ||
        member(catalog, "sourceLanguage", "not a String Catalog") != catalogLanguages[0]) {
        throw Fault("not a String Catalog whose source language is \"" +
                    std::string(catalogLanguages[0]) + "\"");
    }
    std::vector<Entry> result;
    for (const auto& [key, value] : strings.items()) {
        Entry entry{.key = key, .texts = {}};
        for (std::size_t index = 0; index < catalogLanguages.size(); ++index) {
            entry.texts[index] = localizedText(key, value, catalogLanguages[index]);
        }
        checkPlaceholders(entry);
        result.push_back(std::move(entry));
    }
    std::ranges::sort(result, {}, &Entry::key);
    return result;
}

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

void writeTable(std::ostream& output, const std::vector<Entry>& table) {
    output << "// Made by vellmark_catalog_compiler from the string catalog.\n"
              "#include \"text/Catalog.h\"\n\n#include <array>\n\nnamespace vellmark {\n\n"
              "namespace {\n\nconstexpr std::array<CatalogEntry, "
           << table.size() << "> entries{{\n";
    for (const Entry& entry : table) {
        output << "    {" << literal(entry.key) << ", {";
        for (std::size_t index = 0; index < entry.texts.size(); ++index) {
            output << (index > 0 ? ", " : "") << literal(entry.texts[index]);
        }
        output << "}},\n";
    }
    output << "}};\n\n} // namespace\n\n"
              "std::span<const CatalogEntry> catalogEntries() { return entries; }\n\n"
              "} // namespace vellmark\n";
}

void compile(const char* catalogPath, const char* tablePath) {
    std::ifstream input(catalogPath, std::ios::binary);
    if (!input) {
        throw Fault("cannot be read");
    }
    const std::string text(std::istreambuf_iterator<char>(input), {});
    JSON catalog;
    try {
        catalog = JSON::parse(text);
    } catch (const JSON::exception& error) {
        throw Fault(std::string("not a String Catalog: ") + error.what());
    }
    const std::vector<Entry> table = entries(catalog);
    std::ofstream output(tablePath, std::ios::binary | std::ios::trunc);
    writeTable(output, table);
    output.close();
    if (!output) {
        throw Fault(std::string("cannot write ") + tablePath);
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
