#include "entry/missing_setup.h"

#include <cstdio>
#include <string>

namespace vexa::missing_detail {

namespace {

// "network file 'x'", or for a host's matrix "the network's matrix".
std::string network_source(const RunContext& context) {
    if (context.adjacency != nullptr) return "the network's matrix";
    return format_message("network file '%s'", context.settings.network_file.c_str());
}

}  // namespace

void refuse_settings(const RunContext& context, Proposal proposal, NetworkKind kind) {
    const RunSettings& s = context.settings;
    if (proposal == Proposal::swap || proposal == Proposal::receiver_move) {
        throw SettingError(format_message(
            "vexa: run file '%s': the %s sampler keeps the number of ties fixed, which a network "
            "with missing dyads does not know; choose the toggle or the tie/no-tie sampler",
            s.run_file.c_str(), proposal_name(proposal, kind)));
    }
    if (s.task == Task::estimation && context.method == EstimationMethod::equilibrium_expectation) {
        throw SettingError(format_message(
            "vexa: %s has missing dyads, which equilibrium expectation does not take; "
            "estimate by stochastic approximation (--method sa)",
            network_source(context).c_str()));
    }
}

void refuse_all_missing(const RunContext& context, int64_t missing, double dyads) {
    if (static_cast<double>(missing) < dyads) return;
    throw InputFileError(
        format_message("vexa: %s: every dyad is missing (\"NA\" or \".\"), so nothing was observed",
                       network_source(context).c_str()));
}

void say_missing(const RunContext& context, int64_t missing, double dyads) {
    std::fprintf(context.console,
                 "vexa: %s: %lld of %.0f dyads are missing (not observed); they are drawn from "
                 "the model given the observed ones\n",
                 network_source(context).c_str(), static_cast<long long>(missing), dyads);
    std::fflush(context.console);
}

}  // namespace vexa::missing_detail
