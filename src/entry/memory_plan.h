#pragma once
// What a task will hold in memory, reckoned from its settings before anything is allocated, so
// that a network too large for the machine is refused with the numbers instead of being found
// out by the allocator halfway through a run.

#include "entry/run_context.h"
#include "network/network_kind.h"

namespace vexa {

struct MemoryPlan {
    int stores = 0;            // network stores alive at once
    int chains = 1;            // chains side by side, a store each
    double store_bytes = 0.0;  // each
    double other_bytes = 0.0;  // the constraint, the kept samples and draws
    double total() const { return stores * store_bytes + other_bytes; }
};

// The task's needs: a simulation from one chain samples on its one store; otherwise the
// observed (or starting) network stays beside the store of each of the `chains` chains.
MemoryPlan task_memory(const RunSettings& settings, NetworkKind kind, int parameters,
                       int chains = 1);

// Throws SettingError naming the estimate and the memory available when the plan does not fit
// in `available` bytes (0: unknown, nothing is refused).
void check_task_memory(const RunSettings& settings, NetworkKind kind, int parameters,
                       double available, int chains = 1);

// Each sample's network files (its matrix file and its block of the Pajek file, about 2 n^2
// bytes each) grow with n^2: throws SettingError naming the figures when the samples the run
// keeps would not fit in `available` bytes of disk (0: unknown, nothing is refused).
void check_sample_files_disk(const RunSettings& settings, double available);

// A network held in a sparse store grows with its ties, so its copies are reckoned once it is
// read: throws SettingError naming the figures when `copies` copies of `store_bytes` each do
// not fit in `available` bytes (0: unknown, nothing is refused).
void check_copies_memory(const RunSettings& settings, double store_bytes, int copies,
                         double available);

}  // namespace vexa
