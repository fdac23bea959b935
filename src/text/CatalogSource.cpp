#include "text/CatalogSource.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>

namespace vellmark {
namespace {

using JSON = nlohmann::json;
using Fault = CatalogFault;
using Entry = CatalogSourceEntry;

const JSON& member(const JSON& object, const char* name, std::string_view where) {
    if (!object.is_object() || !object.contains(name)) {
        throw Fault(std::string(where) + ": no \"" + name + "\"");
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

} // namespace

std::vector<CatalogSourceEntry> readCatalog(std::string_view text) {
    try {
        return entries(JSON::parse(text));
    } catch (const JSON::exception& error) {
        throw Fault(std::string("not a String Catalog: ") + error.what());
    }
}

} // namespace vellmark
