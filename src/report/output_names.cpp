#include "report/output_names.h"

namespace vexa {

OutputNames form_output_names(const std::string& directory, const std::string& network_name) {
    const std::string stem = directory.empty() ? std::string() : directory + path_separator;
    auto name = [&](const char* suffix, const char* extension) {
        return stem + suffix + "_" + network_name + extension;
    };
    OutputNames names;
    names.start_statistics = name("start_statistics", ".txt");
    names.end_statistics = name("end_statistics", ".txt");
    names.parameter = name("parameter", ".txt");
    names.sample_statistics = name("sample_statistics", "");
    names.accept = name("accept", ".txt");
    names.simulation = name("simulation", ".txt");
    names.estimation = name("estimation", ".txt");
    names.gof = name("gof", ".txt");
    names.sim = name("sim", ".sps");
    names.degree_distribution = name("degree_distribution", ".txt");
    names.cluster_giant = name("cluster_giant", ".txt");
    names.geodesic_distribution = name("geodesic_distribution", ".txt");
    names.geodesic_quartiles = name("geodesic_quartiles", ".txt");
    names.pajek = name("pajek", ".paj");
    names.covariance = name("covariance", ".txt");
    names.logodds = name("logodds", ".txt");
    names.change_statistics = name("change_statistics", ".txt");
    names.triangle_distribution = name("triangle_distribution", ".txt");
    names.twopath_distribution = name("twopath_distribution", ".txt");
    names.et0nt_distribution = name("et0nt_distribution", ".txt");
    names.convergence = name("convergence", ".txt");
    names.html = name("report", ".html");
    return names;
}

}  // namespace vexa
