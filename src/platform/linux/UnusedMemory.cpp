#include "platform/UnusedMemory.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <malloc.h>
#include <memory>
#include <string_view>
#include <sys/mman.h>

namespace vellmark {

namespace {

/// Lets go of the pages of program text. They are the files' own and stay in the system's cache,
/// from where those that are needed come back in a few microseconds; what ran at the start alone
/// does not count as in use for days.
void unmapProgramText() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> maps(std::fopen("/proc/self/maps", "re"),
                                                               std::fclose);
    if (!maps) {
        return;
    }
    // What is executable and not writable has never been written, so that nothing is lost with it.
    char line[512];
    while (std::fgets(line, sizeof line, maps.get()) != nullptr) {
        std::uintptr_t start = 0;
        std::uintptr_t end = 0;
        char mode[5] = {};
        char file = 0;
        const int found = std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s %*s %*s %*s %c", &start,
                                      &end, mode, &file);
        if (found == 4 && std::string_view(mode) == "r-xp" && file == '/') {
            ::madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
        }
    }
}

} // namespace

void releaseUnusedMemory() {
    ::malloc_trim(0);
    unmapProgramText();
}

void keepLittleUnusedMemory() {
    // Left to itself, the limit grows with the largest block that was freed.
    ::mallopt(M_TRIM_THRESHOLD, 256 * 1024);
    // Each reading has a thread, which would get one of sixteen heaps and leave behind in it what
    // malloc_trim does not reach. None of them allocates enough to wait for another.
    ::mallopt(M_ARENA_MAX, 1);
}

} // namespace vellmark
