#pragma once

#include "presentation/LegalDocument.h"

#include <string>
#include <vector>

namespace vellmark {

/// What the legal window shows.
struct LegalWindowContent {
    LegalDocument document = LegalDocument::terms;
    /// The titles of all documents, in the order of LegalDocument.
    std::vector<std::string> choices;
    LegalText text;
    /// "Version 1".
    std::string version;
    /// What accepting means; empty when the texts are accepted already.
    std::string notice;
    /// Empty when there is nothing to accept.
    std::string acceptTitle;
    std::string closeTitle;
    bool operator==(const LegalWindowContent&) const = default;
};

/// `needsNotice`: this version of the texts has not been accepted yet.
LegalWindowContent legalWindowContent(LegalDocument document, bool needsNotice,
                                      const Localization& words);

} // namespace vellmark
