#include "platform/UnusedMemory.h"

#include <cstddef>
#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace vellmark {
namespace {

/// The first segment of a library that is readable alone holds its symbol tables and relocations.
/// They are read while it is loaded and hardly ever after, but stay resident: 7 MB for all that Qt
/// brings. Nobody can have written to them, so that the file has them still.
int releaseLinkingTables(dl_phdr_info* library, std::size_t, void*) {
    const auto pageMask = ~(static_cast<ElfW(Addr)>(::sysconf(_SC_PAGESIZE)) - 1);
    for (int index = 0; index < library->dlpi_phnum; ++index) {
        const ElfW(Phdr)& segment = library->dlpi_phdr[index];
        if (segment.p_type != PT_LOAD || segment.p_flags != PF_R || segment.p_offset != 0)
            continue;
        const ElfW(Addr) begin = (library->dlpi_addr + segment.p_vaddr) & pageMask;
        const ElfW(Addr) end = (library->dlpi_addr + segment.p_vaddr + segment.p_memsz) & pageMask;
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void releaseUnusedMemory() {
    ::malloc_trim(0);
    ::dl_iterate_phdr(releaseLinkingTables, nullptr);
}

} // namespace vellmark
