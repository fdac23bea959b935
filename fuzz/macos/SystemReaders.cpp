#include "ForeignReaders.h"

namespace vellmark {

std::vector<ForeignReader> systemReaders() {
    return {};
}

} // namespace vellmark
