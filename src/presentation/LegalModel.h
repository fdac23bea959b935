#pragma once

#include "platform/Preferences.h"

namespace vellmark {

/// Which version of the legal texts the user has accepted. Main thread.
class LegalModel {
public:
    /// Goes up when the texts in resources/legal change in substance: everybody is shown them anew.
    static constexpr int textsVersion = 2;

    explicit LegalModel(Preferences& preferences) : preferences_(preferences) {}

    /// The accepted version is older than the texts, or there is none.
    bool needsNotice() const;
    void accept();

private:
    Preferences& preferences_;
};

} // namespace vellmark
