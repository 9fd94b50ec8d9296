// A run spread over MPI's processes. Chains send from their own threads, so every MPI call
// goes through one lock unless the library takes calls from any thread at once; a receive
// polls, letting the lock go between tries, so that a thread waiting for one chain's message
// never keeps another thread from its own.
#include <mpi.h>

#include <chrono>
#include <mutex>
#include <thread>

#include "sampler/cluster.h"

namespace vexa {

namespace {

// MPI is one per process by its nature; so is the lock around it.
std::mutex& mpi_lock() {
    static std::mutex lock;
    return lock;
}

bool mpi_running() {
    int initialized = 0;
    int finalized = 0;
    MPI_Initialized(&initialized);
    MPI_Finalized(&finalized);
    return initialized != 0 && finalized == 0;
}

}  // namespace

Cluster process_cluster() {
    Cluster cluster;
    if (!mpi_running()) return cluster;
    const std::lock_guard<std::mutex> held(mpi_lock());
    MPI_Comm_rank(MPI_COMM_WORLD, &cluster.rank);
    MPI_Comm_size(MPI_COMM_WORLD, &cluster.processes);
    return cluster;
}

void cluster_sum(const Cluster& cluster, std::vector<double>& values) {
    if (!cluster.spread() || values.empty()) return;
    const std::lock_guard<std::mutex> held(mpi_lock());
    MPI_Allreduce(MPI_IN_PLACE, values.data(), static_cast<int>(values.size()), MPI_DOUBLE, MPI_SUM,
                  MPI_COMM_WORLD);
}

void cluster_send(int32_t to, int32_t chain, const std::vector<double>& values) {
    MPI_Request request;
    {
        const std::lock_guard<std::mutex> held(mpi_lock());
        MPI_Isend(values.data(), static_cast<int>(values.size()), MPI_DOUBLE, to, chain,
                  MPI_COMM_WORLD, &request);
    }
    for (int done = 0;;) {
        {
            const std::lock_guard<std::mutex> held(mpi_lock());
            MPI_Test(&request, &done, MPI_STATUS_IGNORE);
        }
        if (done != 0) return;
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
}

std::vector<double> cluster_receive(int32_t from, int32_t chain) {
    MPI_Status status;
    for (int arrived = 0;;) {
        {
            const std::lock_guard<std::mutex> held(mpi_lock());
            MPI_Iprobe(from, chain, MPI_COMM_WORLD, &arrived, &status);
            if (arrived != 0) {
                int count = 0;
                MPI_Get_count(&status, MPI_DOUBLE, &count);
                std::vector<double> values(static_cast<size_t>(count), 0.0);
                MPI_Recv(values.data(), count, MPI_DOUBLE, from, chain, MPI_COMM_WORLD,
                         MPI_STATUS_IGNORE);
                return values;
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
}

ClusterSession::ClusterSession(int* argc, char*** argv) {
    int provided = 0;
    MPI_Init_thread(argc, argv, MPI_THREAD_SERIALIZED, &provided);
}

ClusterSession::~ClusterSession() {
    if (mpi_running()) MPI_Finalize();
}

void ClusterSession::end_all(int status) {
    if (process_cluster().spread()) MPI_Abort(MPI_COMM_WORLD, status);
}

}  // namespace vexa
