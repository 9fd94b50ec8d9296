#include "base/memory.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

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

double available_memory_bytes() {
#if defined(_WIN32)
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (GlobalMemoryStatusEx(&status) != 0) return static_cast<double>(status.ullAvailPhys);
#endif
#if defined(__linux__)
    // Free memory alone leaves out the file cache the kernel would give up at once.
    if (FILE* info = std::fopen("/proc/meminfo", "r")) {
        char line[256];
        double kilobytes = -1.0;
        while (std::fgets(line, sizeof line, info) != nullptr) {
            if (std::sscanf(line, "MemAvailable: %lf kB", &kilobytes) == 1) break;
        }
        std::fclose(info);
        if (kilobytes >= 0.0) return kilobytes * 1024.0;
    }
#endif
#if defined(__unix__) && defined(_SC_AVPHYS_PAGES)
    const long pages = sysconf(_SC_AVPHYS_PAGES);
    const long page_size = sysconf(_SC_PAGESIZE);
    if (pages > 0 && page_size > 0)
        return static_cast<double>(pages) * static_cast<double>(page_size);
#endif
    return 0.0;
}

double available_disk_bytes(const std::string& directory) {
    std::error_code error;
    const std::filesystem::space_info space =
        std::filesystem::space(directory.empty() ? "." : directory, error);
    if (error) return 0.0;
    return static_cast<double>(space.available);
}

}  // namespace vexa
