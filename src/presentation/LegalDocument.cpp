#include "presentation/LegalDocument.h"

#include "presentation/LegalTexts.h"
#include "text/TerminalText.h"

#include <string_view>

namespace vellmark {
namespace {

using BlockKind = TextBlock::Kind;

std::string_view fileName(LegalDocument document) {
    return document == LegalDocument::terms ? "terms" : "privacy";
}

std::string_view source(LegalDocument document, const std::string& language) {
    std::string_view english;
    for (const LegalTextFile& file : legalTextFiles()) {
        if (file.name != fileName(document)) {
            continue;
        }
        if (file.language == language) {
            return file.text;
        }
        if (file.language == "en") {
            english = file.text;
        }
    }
    return english;
}

LegalText parsed(std::string_view source) {
    LegalText result;
    bool continues = false;
    while (!source.empty()) {
        const std::size_t end = source.find('\n');
        const std::string_view line = trimmed(source.substr(0, end));
        source.remove_prefix(end == std::string_view::npos ? source.size() : end + 1);
        if (line.empty()) {
            continues = false;
        } else if (line.starts_with("# ")) {
            result.title = line.substr(2);
        } else if (line.starts_with("## ")) {
            result.blocks.push_back({BlockKind::heading, std::string(line.substr(3))});
        } else if (line.starts_with("- ")) {
            result.blocks.push_back({BlockKind::item, std::string(line.substr(2))});
            continues = true;
        } else if (continues) {
            result.blocks.back().text.append(" ").append(line);
        } else {
            result.blocks.push_back({BlockKind::paragraph, std::string(line)});
            continues = true;
        }
    }
    return result;
}

} // namespace

LegalText legalText(LegalDocument document, const Localization& words) {
    return parsed(source(document, words.languageCode()));
}

} // namespace vellmark
