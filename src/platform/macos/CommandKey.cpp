#include "platform/CommandKey.h"

namespace vellmark {

CommandKey commandKey() {
    return CommandKey::command;
}

} // namespace vellmark
