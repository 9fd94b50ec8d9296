#pragma once
// The processes a run is spread over. In the MPI build, started by mpirun, every process runs
// the same task on the same input; chain k of a task's chains belongs to process k mod P,
// which alone runs it, and process 0 gathers what the others drew and alone writes. Every
// other stretch of the run (reading, phases 1 and 2 of an estimation) each process computes
// alike from the same seeds, so all of them agree on it without a word. Without MPI, or run
// any other way, a run is one process, and these calls do nothing.

#include <cstdint>
#include <vector>

namespace vexa {

struct Cluster {
    int32_t rank = 0;
    int32_t processes = 1;

    bool spread() const { return processes > 1; }
    bool owns(int32_t chain) const { return chain % processes == rank; }
    int32_t owner(int32_t chain) const { return chain % processes; }
};

// The processes this one runs among: MPI's world when the engine was built with MPI and
// started by mpirun, else this process alone.
Cluster process_cluster();

// Sums each entry over the processes, in place: entries only their owner filled (the others
// 0) come out as the owner's, exactly. Every process calls it at the same point of the run.
void cluster_sum(const Cluster& cluster, std::vector<double>& values);

// Sends `values` to process `to` as the next message about `chain`. Safe from any thread.
void cluster_send(int32_t to, int32_t chain, const std::vector<double>& values);

// The next message about `chain` from process `from`. Safe from any thread.
std::vector<double> cluster_receive(int32_t from, int32_t chain);

// Holds MPI open for the life of a program in the MPI build (nothing otherwise). A program
// whose run failed in one process ends every process: the others would wait for it forever.
class ClusterSession {
public:
    ClusterSession(int* argc, char*** argv);
    ~ClusterSession();  // NOLINT(performance-trivially-destructible): not so with MPI
    ClusterSession(const ClusterSession&) = delete;
    ClusterSession& operator=(const ClusterSession&) = delete;
    void end_all(int status);
};

}  // namespace vexa
