#pragma once

#include "text/Localization.h"

#include <string>
#include <vector>

namespace vellmark {

enum class LegalDocument { terms, privacy };

/// A part of a longer text, plain words on one line.
struct TextBlock {
    enum class Kind { heading, paragraph, item };
    Kind kind = Kind::paragraph;
    std::string text;
    bool operator==(const TextBlock&) const = default;
};

struct LegalText {
    std::string title;
    std::vector<TextBlock> blocks;
    bool operator==(const LegalText&) const = default;
};

/// A document in the language of `words`, in English where there is none.
LegalText legalText(LegalDocument document, const Localization& words);

} // namespace vellmark
