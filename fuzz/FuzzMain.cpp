// Feeds one reader, the one that VELLMARK_FUZZ names, with whatever the fuzzer finds. Without a
// name it lists the readers and their dictionaries.

#include "ForeignReaders.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

namespace {

const vellmark::ForeignReader* chosen = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* const name = std::getenv("VELLMARK_FUZZ");
    chosen = vellmark::foreignReader(name ? name : "");
    if (chosen == nullptr) {
        for (const auto& reader : vellmark::foreignReaders()) {
            std::cout << reader.name << ' ' << reader.dictionary << '\n';
        }
        std::exit(name ? EXIT_FAILURE : EXIT_SUCCESS);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    chosen->read({reinterpret_cast<const char*>(data), size});
    return 0;
}
