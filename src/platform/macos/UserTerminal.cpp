#include "platform/UserTerminal.h"

namespace vellmark {

// Terminal is part of the system. It keeps a window open whose program has ended, and says so.
std::vector<UserTerminal> userTerminals(const Machine& /*machine*/) {
    return {{.program = "/usr/bin/open",
             .arguments = {"-a", "Terminal"},
             .opensFile = true,
             .closesAtEnd = false}};
}

} // namespace vellmark
