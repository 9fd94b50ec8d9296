#pragma once
// The HTML report: one self-contained page per run that a person reads at a glance. It draws
// from the same records the text reports are written from: the estimates with their standard
// errors and significance, the convergence verdict in words with its thresholds, the phase-2
// path and phase-3 traces; the goodness of fit's box plots of every statistic and descriptive
// measure with the observed value marked, and the degree, geodesic and triad-census
// distributions against the sample; the posterior predictive p-values of the Bayesian form;
// a simulation's traces and distributions. The page fetches nothing (no script, font or
// image): its plots are inline SVG, and every plotted value is also in a data-* attribute.

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "describe/network_profile.h"
#include "estimation/estimate_model.h"
#include "model/model.h"
#include "simulation/gof_task.h"
#include "simulation/simulate.h"

namespace vexa {

// What the page shows; the records present decide its sections (an estimation followed by a
// goodness of fit has both).
struct HtmlReport {
    const Model* model = nullptr;
    std::string network_name;
    std::string task;  // in words: "estimation", "goodness of fit", ...
    int32_t node_count = 0;
    const EstimationRecord* estimation = nullptr;
    const GofRecord* gof = nullptr;
    const SimulationRecord* simulation = nullptr;
    // A goodness of fit's distributions: the observed network's and each sample's (empty when
    // they were not collected; the plots of them are then left out).
    const NetworkProfile* observed_profile = nullptr;
    const std::vector<NetworkProfile>* sample_profiles = nullptr;
};

// A statistic whose observed value lies further than this many sample standard deviations from
// the sample mean is one the model does not reproduce (outside about the middle 95 % of a
// normal sample); a posterior predictive p-value below 0.05 says the same of the Bayesian form.
inline constexpr double gof_t_limit = 2.0;
inline constexpr double posterior_p_limit = 0.05;

void write_html_report(FILE* out, const HtmlReport& report);
// Writes the page to `path`, replacing what was there.
void write_html_file(const std::string& path, const HtmlReport& report);

// The sections, each a run of HTML elements (defined in html_report.cpp and html_sampling.cpp).
std::string estimation_section(const Model& model, const EstimationRecord& record);
std::string gof_section(const HtmlReport& report, const GofRecord& record);
std::string simulation_section(const Model& model, const SimulationRecord& record);

// "%.10g" of a value as an attribute's text: enough digits to compare with any text report.
std::string data_number(double value);

}  // namespace vexa
