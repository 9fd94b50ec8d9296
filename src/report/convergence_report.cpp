#include "report/convergence_report.h"

#include <cmath>

#include "base/errors.h"
#include "base/text_file.h"
#include "estimation/automatic.h"

namespace vexa {

namespace {

std::string name_at(const std::vector<ParameterLabel>& labels, int32_t position) {
    for (const ParameterLabel& label : labels) {
        if (label.position == position) return labelled(label);
    }
    return format_message("parameter %d", position + 1);
}

// What to do about an effect that drove a model to degeneracy: a Markov effect is better
// replaced by its alternating form; an alternating effect already is one, and wants a gentler
// start (a smaller gain) or a heavier damping of its higher counts. Its weights fall as
// powers of 1 / lambda, so a larger lambda brings it nearer the Markov count it damps (a
// triangle count as lambda grows); a lambda nearer 1 damps more.
std::string remedy_for(const std::vector<ParameterLabel>& labels, int32_t position) {
    for (const ParameterLabel& label : labels) {
        if (label.position == position && label.alternating) {
            return format_message(
                "%s is already an alternating effect: try a smaller start_a_value (gain), or a "
                "lambda nearer 1 than %.2f, which damps its higher counts more",
                labelled(label).c_str(), static_cast<double>(label.lambda));
        }
    }
    return "drop or change that effect (its geometrically weighted form, an alternating star, "
           "triangle or two-path, keeps such models in check)";
}

}  // namespace

std::string degeneracy_advice(const EstimationRun& run, const std::vector<ParameterLabel>& labels) {
    const std::string name = name_at(labels, run.culprit);
    switch (run.degeneracy) {
        case Degeneracy::singular:
            return "the statistics do not vary together under the starting parameters (their "
                   "covariance matrix is singular): check that every effect can change on this "
                   "network, or drop one";
        case Degeneracy::runaway:
            return format_message(
                "the parameter of %s ran away from %g to %g, more than %.0f standard errors; "
                "%s; the next run starts again from the starting values",
                name.c_str(), run.culprit_from, run.culprit_to, runaway_limit,
                remedy_for(labels, run.culprit).c_str());
        case Degeneracy::extreme_network:
            return "the chain reached the empty or the complete network, far from the observed "
                   "one: the model puts its weight on extreme networks; drop or change the "
                   "effects that drive it (the alternating forms of Markov effects keep such "
                   "models in check)";
        case Degeneracy::fixed_statistic:
            return format_message(
                "the statistic of %s stayed at %g in every phase-3 draw (observed %g): its "
                "parameter has pushed it to a bound; drop or change that effect",
                name.c_str(), run.culprit_to, run.culprit_from);
        case Degeneracy::far_statistic:
            return format_message(
                "the phase-3 draws of %s stayed far from its observed value (mean %g, observed "
                "%g, more than %.0f standard deviations away): the model cannot reproduce the "
                "observed network; %s",
                name.c_str(), run.culprit_to, run.culprit_from, far_limit,
                remedy_for(labels, run.culprit).c_str());
        case Degeneracy::none: break;
    }
    return "";
}

std::string astray_text(const EstimationRun& run, const std::vector<ParameterLabel>& labels) {
    const std::string name = name_at(labels, run.culprit);
    std::string what = "the chain reached the empty or the complete network in phase 2";
    if (run.degeneracy == Degeneracy::runaway) {
        what = format_message("the parameter of %s ran away from %g to %g in phase 2", name.c_str(),
                              run.culprit_from, run.culprit_to);
    } else if (run.degeneracy == Degeneracy::far_statistic) {
        what = format_message(
            "the phase-3 draws of %s stayed far from its observed value (mean %g, observed %g)",
            name.c_str(), run.culprit_to, run.culprit_from);
    }
    return what +
           ", taken for a path gone astray from a start far from the estimate; the next run "
           "starts again from the starting values with half the gain";
}

std::string confirmation_summary(bool confirmed, const ConvergenceCheck& check,
                                 const std::vector<ParameterLabel>& labels) {
    return format_message(
        "%s: largest t-ratio %.3f, overall maximum convergence ratio %.3f, smallest effective "
        "sample size %.0f (%s)",
        confirmed ? "confirmed" : "not confirmed", check.largest_t, check.overall_ratio,
        check.smallest_effective_size, name_at(labels, check.smallest_at).c_str());
}

std::string convergence_summary(const ConvergenceCheck& check,
                                const std::vector<ParameterLabel>& labels) {
    std::string text = format_message(
        "%s: largest t-ratio %.3f, overall maximum convergence ratio %.3f, smallest effective "
        "sample "
        "size %.0f (%s)",
        verdict_text(check.verdict), check.largest_t, check.overall_ratio,
        check.smallest_effective_size, name_at(labels, check.smallest_at).c_str());
    if (check.suggested_factor > 0) {
        text += format_message(
            "; fewer than %.0f effective draws make the t-ratios too noisy to judge convergence: a "
            "multiplication factor of %d would give enough",
            enough_effective_draws, check.suggested_factor);
    }
    return text;
}

void write_convergence_block(FILE* out, const char* heading, const ConvergenceCheck& check,
                             const std::vector<ParameterLabel>& labels,
                             const std::string& details) {
    print(out, "%s\n", heading);
    print(out, "effects\tt-ratio\teffective sample size\n");
    for (const ParameterLabel& label : labels) {
        const size_t k = static_cast<size_t>(label.position);
        if (k >= check.t_ratios.size()) continue;
        print(out, "%s\t%.5f\t%.0f\n", labelled(label).c_str(), check.t_ratios[k],
              check.effective_sizes[k]);
    }
    print(out, "largest t-ratio\t%.5f\n", check.largest_t);
    print(out, "overall maximum convergence ratio\t%.5f\n", check.overall_ratio);
    print(out, "%s", details.c_str());
    if (check.suggested_factor > 0) {
        print(out,
              "warning\tfewer than %.0f effective draws: the t-ratios are too noisy to judge "
              "convergence; "
              "a multiplication factor of %d would give enough\n",
              enough_effective_draws, check.suggested_factor);
    }
    print(out, "verdict\t%s\n\n", verdict_text(check.verdict));
}

std::string chain_lines(const EstimationRun& run) {
    if (run.phase3_chains <= 1) return "";
    return format_message(
        "phase-3 chains\t%d, side by side from the phase-2 estimate, each with a burn-in of a "
        "tenth of its draws; their draws are pooled, and a statistic's effective sample size is "
        "the sum of the chains' own\n",
        run.phase3_chains);
}

namespace {

std::string missing_lines(const EstimationRun& run) {
    if (run.given_draws == 0) return "";
    return format_message(
        "missing dyads\t%lld, missing at random: the observed statistics are the mean of %d "
        "draws of the missing dyads given the observed ones at the estimate, and the standard "
        "errors leave out the information the missing dyads would have given\n",
        static_cast<long long>(run.missing_dyads), run.given_draws);
}

}  // namespace

std::string method_lines(const EstimationRun& run) {
    if (run.method != EstimationMethod::equilibrium_expectation) return missing_lines(run);
    if (run.subphases.empty()) return "method\tequilibrium expectation (phase 2 not run)\n";
    return format_message(
        "method\tequilibrium expectation: one chain from the observed network, the parameters "
        "moved against the squared drift of the statistics after every %.0f steps; the "
        "estimate is the mean over the last stage, whose halves differ by at most %.2f "
        "standard errors (%d stages beyond the planned %d for the parameters to settle)\n",
        run.block_steps, run.last_drift, run.settling_stages,
        static_cast<int>(run.subphases.size()) - run.settling_stages);
}

std::string automatic_choices(const EstimationRun& run) {
    if (!run.automatic) return "";
    const std::string draws = format_message(
        "phase-3 draws\t%d (at most %d; the smallest effective sample size %.0f of %d wanted)\n",
        run.phase3_draws, run.phase3_cap, run.phase3_effective_draws, auto_effective_draws);
    if (run.phase2_skipped != Phase2Skip::no) {
        const char* why = run.phase2_skipped == Phase2Skip::exact_start
                              ? "the start is the maximum likelihood estimate, exact for a model "
                                "of independent dyads"
                              : "the start is the last run's estimate moved by one Newton step "
                                "from its phase-3 draws";
        return format_message(
                   "phase 2\tnot run: %s\n"
                   "steps per draw\t%.0f in phases 1 and 3 (the multiplication factor gives "
                   "%.0f; the slowest statistic's autocorrelation time was %.2f draws in phase "
                   "1)\n",
                   why, std::ceil(run.steps_per_draw), std::ceil(run.factor_steps_per_draw),
                   run.phase1_autocorrelation) +
               draws;
    }
    return format_message(
               "steps per draw\t%.0f in phases 1 and 2, %.0f in phase 3 (the multiplication "
               "factor gives %.0f; the slowest statistic's autocorrelation time was %.2f draws "
               "in phase 1 and %.2f in the last sub-phase)\n",
               std::ceil(run.phase1_steps_per_draw), std::ceil(run.steps_per_draw),
               std::ceil(run.factor_steps_per_draw), run.phase1_autocorrelation,
               run.phase2_autocorrelation) +
           draws;
}

}  // namespace vexa
