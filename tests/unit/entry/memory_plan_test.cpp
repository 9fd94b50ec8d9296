// The memory a task is reckoned to need, against what its stores really hold.
#include "entry/memory_plan.h"

#include <gtest/gtest.h>

#include <string>

#include "base/errors.h"
#include "network/digraph.h"
#include "network/graph.h"

namespace vexa {
namespace {

template <class Vector>
double bytes_of(const Vector& v) {
    return static_cast<double>(v.capacity() * sizeof(typename Vector::value_type));
}

double held(const Graph& g) {
    return bytes_of(g.adjacency) + bytes_of(g.shared_partners) + bytes_of(g.degree_histogram) +
           bytes_of(g.degree) + bytes_of(g.shared_partner_histogram) + bytes_of(g.triangles) +
           bytes_of(g.triangle_histogram) + bytes_of(g.neighbour_lists);
}

double held(const Digraph& d) {
    return bytes_of(d.out_rows) + bytes_of(d.in_rows) + bytes_of(d.in_degree_values) +
           bytes_of(d.out_degree_values) + bytes_of(d.mutual_degree_values) +
           bytes_of(d.in_degree_histogram) + bytes_of(d.out_degree_histogram) +
           bytes_of(d.out_lists.entries) + bytes_of(d.in_lists.entries) +
           bytes_of(d.common_receivers) + bytes_of(d.common_senders) + bytes_of(d.two_paths);
}

TEST(MemoryPlan, StoreEstimatesCoverWhatTheStoresHold) {
    for (const int n : {2, 3, 63, 64, 65, 300}) {
        const Graph g = create_graph(n);
        const Graph copy = g;  // a copy reserves the same room
        for (const double actual : {held(g), held(copy)}) {
            EXPECT_GE(graph_store_bytes(n), actual) << n;
            EXPECT_LE(graph_store_bytes(n), actual + 64.0) << n;
        }
        const Digraph d = create_digraph(n);
        const Digraph dcopy = d;
        for (const double actual : {held(d), held(dcopy)}) {
            EXPECT_GE(digraph_store_bytes(n), actual) << n;
            EXPECT_LE(digraph_store_bytes(n), actual + 64.0) << n;
        }
    }
}

TEST(MemoryPlan, TasksCountTheirStoresAndAreRefusedWhenTheyDoNotFit) {
    RunSettings s;
    s.run_file = "big.txt";
    s.node_count = 10000;
    s.task = Task::simulation;
    EXPECT_EQ(task_memory(s, NetworkKind::graph, 3).stores, 1);
    s.task = Task::goodness_of_fit;
    s.iterations = 1000;
    s.thinning_interval = 1;
    const MemoryPlan gof = task_memory(s, NetworkKind::graph, 3);
    EXPECT_EQ(gof.stores, 2);
    EXPECT_GE(gof.other_bytes, 1000.0 * 3 * 8);  // the kept statistics
    s.task = Task::estimation;
    const MemoryPlan estimation = task_memory(s, NetworkKind::digraph, 3);
    EXPECT_EQ(estimation.stores, 2);
    EXPECT_EQ(estimation.store_bytes, digraph_store_bytes(10000));

    // A graph of 10,000 nodes: 2e8 bytes of shared partners (16 bits each), 4e8 reserved for
    // neighbours, 2e8 of triangle histogram and 1.3e7 of bit rows, about 8.1e8 bytes a store.
    EXPECT_NO_THROW(check_task_memory(s, NetworkKind::graph, 3, 0.0));  // unknown: not refused
    EXPECT_NO_THROW(check_task_memory(s, NetworkKind::graph, 3, 1.7e9));
    try {
        check_task_memory(s, NetworkKind::graph, 3, 1073741824.0);
        ADD_FAILURE() << "not refused";
    } catch (const SettingError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "vexa: run file 'big.txt' (node_count 10000): the estimation needs about 1.63 GB "
                  "of memory (2 network stores of 0.81 GB for a graph of 10000 nodes, and 0.00 GB "
                  "besides), but 1.07 GB are available; the run was not started");
    }

    // Chains hold a store each beside the observed network; a simulation from several chains
    // keeps its starting network too. The refusal says how many chains would fit.
    EXPECT_EQ(task_memory(s, NetworkKind::graph, 3, 4).stores, 5);
    s.task = Task::simulation;
    EXPECT_EQ(task_memory(s, NetworkKind::graph, 3, 4).stores, 5);
    try {
        check_task_memory(s, NetworkKind::graph, 3, 3.0e9, 8);
        ADD_FAILURE() << "not refused";
    } catch (const SettingError& e) {
        EXPECT_NE(std::string(e.what()).find("memory for 8 chains (a store each; 2 would fit) (9 "
                                             "network stores of 0.81 GB"),
                  std::string::npos)
            << e.what();
    }
}

TEST(MemoryPlan, SampleNetworkFilesThatWouldFillTheDiskAreRefused) {
    // 100 samples of a 100,000-node network: two matrices of 2 x 10^10 bytes each a sample.
    RunSettings s;
    s.run_file = "big.txt";
    s.output_directory = "out";
    s.node_count = 100000;
    s.task = Task::simulation;
    s.iterations = 1e6;
    s.thinning_interval = 1e4;
    s.outputs.pajek = true;
    EXPECT_NO_THROW(check_sample_files_disk(s, 0.0));  // unknown: not refused
    EXPECT_NO_THROW(check_sample_files_disk(s, 4.1e12));
    try {
        check_sample_files_disk(s, 7.3e10);
        ADD_FAILURE() << "not refused";
    } catch (const SettingError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "vexa: run file 'big.txt' (node_count 100000): the network files of 100 samples "
                  "would take about 4000.0 GB (40.000 GB a sample), but 73.0 GB are free in the "
                  "output directory 'out'; switch the Pajek output off, or keep fewer samples; "
                  "the run was not started");
    }
    s.outputs.pajek = false;
    EXPECT_NO_THROW(check_sample_files_disk(s, 7.3e10));
}

TEST(MemoryPlan, CopiesOfASparseNetworkAreRefusedWhenTheyDoNotFit) {
    RunSettings s;
    s.run_file = "big.txt";
    s.node_count = 100000;
    s.task = Task::goodness_of_fit;
    EXPECT_NO_THROW(check_copies_memory(s, 0.5e9, 8, 0.0));  // unknown: not refused
    EXPECT_NO_THROW(check_copies_memory(s, 0.5e9, 8, 4.1e9));
    EXPECT_NO_THROW(check_copies_memory(s, 0.5e9, 0, 1.0));  // no copy made
    try {
        check_copies_memory(s, 0.5e9, 8, 2.2e9);
        ADD_FAILURE() << "not refused";
    } catch (const SettingError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "vexa: run file 'big.txt' (node_count 100000): the goodness of fit's 8 copies "
                  "of the network need about 4.00 GB of memory (0.50 GB each), but 2.20 GB are "
                  "available (4 would fit: fewer chains need less); the run was not started");
    }
}

}  // namespace
}  // namespace vexa
