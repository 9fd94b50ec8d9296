#pragma once
// Graph run files for end-to-end tests, built from a few settings, and a guard that runs a
// test in its own working directory (update files land there).

#include <filesystem>
#include <map>
#include <string>
#include <utility>

namespace vexa::testing {

struct GraphRunFile {
    std::string name = "net";
    std::string directory = "out";
    std::string network_file;  // tasks 2 and 3
    int task = 2;
    int nodes = 16;
    double initial_density = 0.1;  // task 1
    int sampler_variant = 0;
    int degree_cap = -1;  // -1: no cap row
    std::string constraint_file;
    // Included effects by their run-file name: starting value and lambda.
    std::map<std::string, std::pair<double, double>> effects;
    // Estimation.
    int subphases = 5;
    double gain = 0.1;
    int factor = 2;
    int phase3 = 500;
    int runs = 1;
    int gof_after = 0;
    // Simulation and goodness of fit: Pajek, degree, geodesic, cluster, triangle, two-path, et0nt.
    int flags[7] = {0, 0, 0, 0, 0, 0, 0};
    double burn_in = 0;
    double iterations = 0;
    int samples = 1;

    std::string text() const;
    // Writes the run file into dir and returns its path.
    std::string write(const std::string& dir, const std::string& file = "run.txt") const;
};

struct WorkingDirectory {
    std::filesystem::path saved = std::filesystem::current_path();
    explicit WorkingDirectory(const std::string& dir) { std::filesystem::current_path(dir); }
    ~WorkingDirectory() { std::filesystem::current_path(saved); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
};

}  // namespace vexa::testing
