#include "app/SystemMenuBar.h"

namespace vellmark {

std::unique_ptr<SystemMenuBar> makeSystemMenuBar(MainMenuEvents /*events*/) {
    return nullptr;
}

} // namespace vellmark
