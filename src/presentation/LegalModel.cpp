#include "presentation/LegalModel.h"

#include <string_view>

namespace vellmark {
namespace {
constexpr std::string_view acceptedVersionKey = "LegalNoticeAcceptedVersion";
} // namespace

bool LegalModel::needsNotice() const {
    // What is no number has accepted nothing.
    const bool isAccepted = preferences_.number(acceptedVersionKey).value_or(0) >= textsVersion;
    return !isAccepted;
}

void LegalModel::accept() {
    preferences_.setNumber(acceptedVersionKey, textsVersion);
}

} // namespace vellmark
