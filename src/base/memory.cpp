#include "base/memory.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__unix__)
#include <unistd.h>
#endif

namespace vexa {

double physical_memory_bytes() {
#if defined(_WIN32)
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (GlobalMemoryStatusEx(&status) != 0) return static_cast<double>(status.ullTotalPhys);
#elif defined(__unix__)
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_size = sysconf(_SC_PAGESIZE);
    if (pages > 0 && page_size > 0)
        return static_cast<double>(pages) * static_cast<double>(page_size);
#endif
    return 0.0;
}

}  // namespace vexa
