#pragma once
// Where a run's files go: the names formed from the output directory and the network name, and
// which of the per-sample descriptive files a simulation or goodness of fit writes.

#include <string>

namespace vexa {

// The output names, formed right after the head of the run file, whether or not the
// task writes them: directory, separator, suffix word, '_', network name, extension.
struct OutputNames {
    std::string start_statistics;
    std::string end_statistics;
    std::string parameter;
    std::string sample_statistics;  // a prefix: writers append the sample number and ".txt"
    std::string accept;
    std::string simulation;
    std::string estimation;
    std::string gof;
    std::string sim;  // the SPSS syntax file, ".sps"
    std::string degree_distribution;
    std::string cluster_giant;
    std::string geodesic_distribution;
    std::string geodesic_quartiles;
    std::string pajek;  // ".paj"
    std::string covariance;
    std::string logodds;
    std::string change_statistics;
    std::string triangle_distribution;
    std::string twopath_distribution;
    std::string et0nt_distribution;
    std::string convergence;  // the verdict on each estimation run
    std::string html;         // the HTML report, ".html", written on request
};

// '/' on POSIX systems, '\' on Windows: the files land inside the output directory.
#ifdef _WIN32
inline constexpr char path_separator = '\\';
#else
inline constexpr char path_separator = '/';
#endif

// Forms every name from the directory and the network name. An empty directory means the
// working directory.
OutputNames form_output_names(const std::string& directory, const std::string& network_name);

// The per-sample files a simulation or goodness of fit writes beside its reports, as the run
// file's seven output flags turn them on. A digraph has no triangle, two-path or edge-triangle
// files, and its geodesic flag writes no quartile file.
struct SampleOutputs {
    bool pajek = false;  // each sample's matrix file and its block of the Pajek file
    bool degree_distribution = false;
    bool geodesic = false;
    bool cluster_giant = false;
    bool triangle_distribution = false;
    bool twopath_distribution = false;
    bool et0nt_distribution = false;

    bool any() const { return pajek || degree_distribution || geodesic || read_counts(); }
    // Whether a sample's rows read the store's pair and triangle counts.
    bool read_counts() const {
        return cluster_giant || triangle_distribution || twopath_distribution || et0nt_distribution;
    }
};

}  // namespace vexa
