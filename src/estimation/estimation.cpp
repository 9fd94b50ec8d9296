#include "estimation/estimation.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>

#include "base/text_file.h"

namespace vexa {

namespace {

void print_values(FILE* out, const char* heading, const double* values, size_t count) {
    std::fputs(heading, out);
    for (size_t k = 0; k < count; ++k) std::fprintf(out, "%f\t", values[k]);
    std::fputs("\n", out);
}

void progress(const EstimationOutput& output, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
void progress(const EstimationOutput& output, const char* format, ...) {
    if (output.console == nullptr) return;
    va_list args;
    va_start(args, format);
    std::vfprintf(output.console, format, args);
    va_end(args);
    std::fflush(output.console);
}

// Runs K sampler steps: the counter starts at 0.0 and a step is taken while it is below K.
void run_steps(Graph& graph, GraphSampler& sampler, const double* theta, double steps, Rng& rng) {
    for (double k = 0.0; k < steps; k += 1.0) sampler_step(graph, sampler, theta, rng);
}

// Takes `draws` statistics vectors, K steps apart, from a chain that is never reset between
// them; returns them as rows and leaves their mean in `mean`.
Matrix draw_statistics(Graph& graph, GraphSampler& sampler, const std::vector<double>& theta,
                       int draws, double K, std::vector<double>& mean, Rng& rng) {
    const size_t count = theta.size();
    Matrix rows = make_matrix(std::max(draws, 0), static_cast<int>(count), 0.0);
    std::fill(mean.begin(), mean.end(), 0.0);
    for (int i = 0; i < draws; ++i) {
        run_steps(graph, sampler, theta.data(), K, rng);
        for (size_t k = 0; k < count; ++k) {
            mean[k] += graph.statistics[k];
            rows[i][k] = graph.statistics[k];
        }
    }
    for (double& m : mean) m /= draws;
    return rows;
}

// Centres the draws on their mean and adds their cross products onto D, then divides D by the
// number of draws, noting the diagonal. D is not cleared first: in phase 3 it still holds the
// phase-1 inverse, and that accumulation is part of the method.
void accumulate_covariance(Matrix& D, Matrix& draws, const std::vector<double>& mean,
                           std::vector<double>& variance) {
    const int p = D.rows;
    for (int i = 0; i < draws.rows; ++i) {
        double* row = draws[i];
        for (int j = 0; j < p; ++j) row[j] -= mean[static_cast<size_t>(j)];
    }
    for (int i = 0; i < draws.rows; ++i) {
        const double* row = draws[i];
        for (int j = 0; j < p; ++j) {
            double* d = D[j];
            for (int k = 0; k < p; ++k) d[k] += row[j] * row[k];
        }
    }
    const double count = draws.rows;
    for (int j = 0; j < p; ++j) {
        for (int k = 0; k < p; ++k) {
            D[j][k] /= count;
            if (j == k) variance[static_cast<size_t>(j)] = D[j][k];
        }
    }
}

}  // namespace

EstimationResult estimate_graph(Graph& graph, std::vector<double>& theta, Matrix& D,
                                GraphSampler& sampler, const EstimationSettings& settings,
                                const EstimationOutput& output, Rng& rng, SeedSource& seeds) {
    EstimationResult result;
    const int p = static_cast<int>(theta.size());
    const size_t count = theta.size();
    seeds.reseed(rng);
    std::vector<double> observed(count, 0.0), mean(count, 0.0), variance(count, 0.0);
    float a = settings.start_a_value;

    {
        OutFile report(output.report_path, OpenMode::append);
        std::fputs("original statistics:", report);
        for (size_t k = 0; k < count; ++k) {
            observed[k] = graph.statistics[k];
            std::fprintf(report, "%f\t", observed[k]);
        }
        print_values(report, "\nstarting parameters:", theta.data(), count);

        const double n = graph.node_count;
        const double d = density(graph);
        const double K = n * d * settings.multiplication_factor * (1.0 - d) * n;
        const int N1 = 3 * p + 7;
        std::fprintf(report,
                     "Phase1 started with the following setup:\n"
                     "a = %f\nnum of steps = %d\nnum of iterations in each step = %f\n"
                     "************************************\n",
                     static_cast<double>(a), N1, K);
        progress(output, "  phase 1: %d draws of %.0f steps\n", N1, std::ceil(K));

        Matrix draws = draw_statistics(graph, sampler, theta, N1, K, mean, rng);
        print_values(report, "mean statistics in phase1:", mean.data(), count);
        accumulate_covariance(D, draws, mean, variance);
        if (invert_in_place(D) == 0) {
            std::fputs("Degenerate Model!\n", report);
            report.close();
            progress(output, "  degenerate model: the statistics do not vary under these parameters\n");
            result.degenerate = true;
            return result;
        }
        print_values(report, "END PHASE1 parameter:", theta.data(), count);
        report.close();

        // Phase 2.
        OutFile phase2(output.report_path, OpenMode::append);
        std::fputs("Phase 2 started\n", phase2);
        std::vector<double> parameter_sum(count, 0.0), previous(count, 0.0), crossing(count, 0.0);
        for (int k = 0; k < settings.subphase_count; ++k) {
            if (k == 1) a = a + a;  // sub-phases 0 and 1 both run with the starting gain
            std::fprintf(phase2, "\n\nSubphase %d started with a valued %f\n", k, static_cast<double>(a));
            progress(output, "  phase 2, sub-phase %d (gain %g)\n", k, static_cast<double>(a));
            const double n_min = std::pow(2.0, 4.0 * k / 3.0) * (p + 7);
            const double n_max = n_min + 200.0;
            int i = 0;
            if (n_max > 0.0) {
                while (true) {
                    if (i > n_min) {
                        bool all_crossed = true;
                        for (const double c : crossing) all_crossed = all_crossed && c < 0.0;
                        if (all_crossed) break;
                    }
                    for (size_t l = 0; l < count; ++l) previous[l] = graph.statistics[l];
                    run_steps(graph, sampler, theta.data(), K, rng);
                    const double* z = graph.statistics.data();
                    for (int j = 0; j < p; ++j) {
                        for (int l = 0; l < p; ++l) {
                            theta[static_cast<size_t>(j)] -=
                                (z[l] - observed[static_cast<size_t>(l)]) * a * D[l][j];
                        }
                    }
                    for (size_t l = 0; l < count; ++l) {
                        crossing[l] += (z[l] - observed[l]) * (previous[l] - observed[l]);
                    }
                    for (size_t l = 0; l < count; ++l) parameter_sum[l] += theta[l];
                    ++i;
                    if (i >= n_max) break;
                }
            }
            std::fprintf(phase2, "\nSubphase %d has gone up to %d steps\n", k, i);
            std::fprintf(phase2, "Parameter after Subphase %d:", k);
            for (size_t j = 0; j < count; ++j) {
                // Sub-phase 0 ends with its last iterate, later ones with their average.
                if (k != 0) theta[j] = parameter_sum[j] / i;
                parameter_sum[j] = 0.0;
                crossing[j] = 0.0;
                std::fprintf(phase2, "%8.5f\t", theta[j]);
            }
            std::fputs("\n", phase2);
            a = a * 0.5f;
        }
        print_values(phase2, "END PHASE2 parameter:", theta.data(), count);
        phase2.close();

        // Phase 3.
        const int N3 = settings.phase3_steps;
        OutFile phase3(output.report_path, OpenMode::append);
        progress(output, "  phase 3: %d draws of %.0f steps\n", N3, std::ceil(K));
        run_sampler(graph, sampler, theta.data(), N3 * 0.1 * K, rng, seeds);
        std::fprintf(phase3,
                     "Phase3 started with the following setup:\n"
                     "num of steps = %d\nnum of iterations in each step = %f\n"
                     "***************************************\n",
                     N3, K);
        Matrix final_draws = draw_statistics(graph, sampler, theta, N3, K, mean, rng);
        print_values(phase3, "mean statistics in phase3:", mean.data(), count);
        accumulate_covariance(D, final_draws, mean, variance);
        invert_in_place(D);  // a singular phase-3 matrix is reported through its entries

        result.converged = true;
        result.t_ratios.assign(count, 0.0);
        result.standard_errors.assign(count, 0.0);
        for (size_t k = 0; k < count; ++k) {
            result.t_ratios[k] = -(mean[k] - observed[k]) * std::sqrt(1.0 / variance[k]);
            if (std::fabs(result.t_ratios[k]) >= 0.1) result.converged = false;
            result.standard_errors[k] = std::sqrt(D[static_cast<int>(k)][static_cast<int>(k)]);
        }
        result.covariance = D;
        write_estimation_summary(phase3, output.labels, theta, result.standard_errors, result.t_ratios);
        std::fputs("\nEstimated Covariance Matrix\n", phase3);
        write_covariance_matrix(phase3, D);
        phase3.close();
    }
    OutFile covariance(output.covariance_path, OpenMode::truncate);
    write_covariance_matrix(covariance, D);
    covariance.close();
    return result;
}

void write_estimation_summary(FILE* out, const std::vector<ParameterLabel>& labels,
                              const std::vector<double>& theta,
                              const std::vector<double>& standard_errors,
                              const std::vector<double>& t_ratios) {
    std::fputs("\nEstimation Result for Network SUMMARY (parameter, standard error, t-statistics)\n",
               out);
    std::fputs("NOTE: t-statistics = (observation - sample mean)/standard error\n"
               "effects\testimates\tstderr\tt-ratio\n",
               out);
    for (const ParameterLabel& label : labels) {
        const size_t k = static_cast<size_t>(label.position);
        const double estimate = theta[k];
        const double se = standard_errors[k];
        const double t = t_ratios[k];
        std::fprintf(out, "%s\t%f\t%.5f\t%.5f\t", labelled(label).c_str(), estimate, se, t);
        // Converged and significant: |t| below 0.1 and the estimate beyond two standard errors.
        const bool starred = std::fabs(t) < 0.1 && std::fabs(estimate) > 2.0 * se;
        std::fputs(starred ? "*\n" : "\n", out);
    }
}

void write_covariance_matrix(FILE* out, const Matrix& covariance) {
    for (int i = 0; i < covariance.rows; ++i) {
        for (int j = 0; j < covariance.cols; ++j) std::fprintf(out, "%f\t", covariance[i][j]);
        std::fputs("\n", out);
    }
    std::fputs("\n", out);
}

}  // namespace vexa
