// Any output is laid out, as text of a size that its own allows; what moves no cursor stays as it
// is.

#include "text/TerminalLayout.h"
#include "text/TerminalText.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace vellmark;
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    const std::string text = laidOutText(output);
    const bool isBounded = text.size() <= 16 * size + 300000;
    const bool isKept = movesCursor(output) || text == stripANSI(output);
    const bool isText = !movesCursor(output) || isValidUTF8(text + drawnText(output));
    if (!isBounded || !isKept || !isText) {
        std::abort();
    }
    return 0;
}
