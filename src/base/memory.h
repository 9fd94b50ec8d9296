#pragma once
// The machine's memory, for refusing a network whose store could never fit before the
// allocation is tried.

namespace vexa {

// Bytes of physical memory, or 0 when the system does not say (then nothing is refused).
double physical_memory_bytes();

}  // namespace vexa
