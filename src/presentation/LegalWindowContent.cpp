#include "presentation/LegalWindowContent.h"

#include "presentation/LegalModel.h"

namespace vellmark {

LegalWindowContent legalWindowContent(LegalDocument document, bool needsNotice,
                                      const Localization& words) {
    LegalWindowContent content{
        .document = document,
        .choices = {words.text("legal.terms"), words.text("legal.privacy")},
        .text = legalText(document, words),
        .version = words.format("about.version", {std::to_string(LegalModel::textsVersion)}),
        .notice = {},
        .acceptTitle = {},
        .closeTitle = words.text("legal.close")};
    if (needsNotice) {
        content.notice = words.text("legal.notice");
        content.acceptTitle = words.text("legal.accept");
    }
    return content;
}

} // namespace vellmark
