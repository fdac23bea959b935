#include "platform/PreferencesFile.h"

namespace vellmark {

std::unique_ptr<Preferences> makePreferences(const Machine& machine) {
    return makePreferencesFile(machine.configuration / "Vellmark" / "preferences.json");
}

} // namespace vellmark
