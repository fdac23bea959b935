#include "platform/CommandKey.h"

namespace vellmark {

CommandKey commandKey() {
    return CommandKey::control;
}

} // namespace vellmark
