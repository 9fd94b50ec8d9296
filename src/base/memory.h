#pragma once
// How much memory the machine has, for refusing a run that could not fit before it allocates.

#include <string>

namespace vexa {

// Bytes of physical memory; 0 when the system does not say (then nothing is refused).
double physical_memory_bytes();

// Bytes the system could give this process now without swapping (on Linux its own estimate,
// MemAvailable; elsewhere the free physical memory); 0 when the system does not say.
double available_memory_bytes();

// Bytes free for this process on the file system that holds `directory` ("" the working
// directory); 0 when the system does not say (then nothing is refused).
double available_disk_bytes(const std::string& directory);

}  // namespace vexa
