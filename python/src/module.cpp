// The bridge between Python and the engine: builds a task request from Python values, runs
// it with the interpreter's lock released, and hands back the result records as dicts. The
// engine's failures come back as one line, which the Python side raises as a VexaError;
// nothing here lets an engine error reach Python as a crash.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "base/errors.h"
#include "entry/api.h"
#include "entry/effect_aliases.h"
#include "records.h"

namespace py = pybind11;

namespace {

using Clock = std::chrono::steady_clock;

// The progress of a run, told to a Python callable as the share done, and the place where
// the engine, between steps, asks whether the user pressed Ctrl-C. The lock is taken back
// only there, at most every 50 ms, so the engine's threads run free of the interpreter.
struct Progress {
    py::object update;  // None, or a callable taking the share done
    bool estimation = false;
    double runs = 1.0;
    double run = 1.0;
    double burn_in = 0.0;
    double proposals = 0.0;
    Clock::time_point last{};
    // The share shown last: an estimation's plan shrinks as sub-phases end early, and a bar
    // that went back would read as lost work.
    double shown = 0.0;
    bool interrupted = false;
    std::optional<py::error_already_set> failure;  // the callback raised
};

// Shows the share (when given) and checks for signals; throws to stop the engine.
void call_back(Progress& p, double share) {
    const Clock::time_point now = Clock::now();
    if (now - p.last < std::chrono::milliseconds(50)) return;
    p.last = now;
    py::gil_scoped_acquire lock;
    if (PyErr_CheckSignals() != 0) {
        PyErr_Clear();
        p.interrupted = true;
        throw vexa::VexaError("vexa: the run was interrupted");
    }
    if (p.update.is_none() || share < 0.0) return;
    p.shown = std::min(1.0, std::max(p.shown, share));
    try {
        p.update(p.shown);
    } catch (py::error_already_set& e) {
        p.failure.emplace(std::move(e));
        throw vexa::VexaError("vexa: the progress callback failed");
    }
}

void steps(Progress& p, const vexa::StepsDone& e) {
    const double part = e.total > 0.0 ? e.done / e.total : 0.0;
    double share = -1.0;
    if (p.estimation) {
        if (e.stage == vexa::Stage::phase1 || e.stage == vexa::Stage::phase2 ||
            e.stage == vexa::Stage::phase3)
            share = (p.run - 1.0 + part) / p.runs;
    } else {
        const double total = std::max(1.0, p.burn_in + p.proposals);
        if (e.stage == vexa::Stage::burn_in) share = part * p.burn_in / total;
        if (e.stage == vexa::Stage::sampling) share = (p.burn_in + part * p.proposals) / total;
    }
    call_back(p, share);
}

vexa::Observer observer_of(Progress& p) {
    vexa::Observer o;
    o.steps_done = [&p](const vexa::StepsDone& e) { steps(p, e); };
    o.sample_drawn = [&p](const vexa::SampleDrawn&) { call_back(p, -1.0); };
    o.run_started = [&p](const vexa::RunStarted& e) {
        p.run = e.run;
        p.runs = std::max(p.runs, static_cast<double>(e.runs));
    };
    return o;
}

vexa::Task task_named(const std::string& task) {
    if (task == "simulation") return vexa::Task::simulation;
    if (task == "estimation") return vexa::Task::estimation;
    if (task == "gof") return vexa::Task::goodness_of_fit;
    if (task == "bayes") return vexa::Task::bayesian_goodness_of_fit;
    throw vexa::SettingError("vexa: unknown task '" + task + "'");
}

vexa::Proposal proposal_named(const std::string& name) {
    if (name == "swap") return vexa::Proposal::swap;
    if (name == "receiver_move") return vexa::Proposal::receiver_move;
    if (name == "tie_no_tie") return vexa::Proposal::tie_no_tie;
    if (name == "closure") return vexa::Proposal::closure;
    return vexa::Proposal::toggle;
}

// The settings a Python caller gives, by name; defaults as the R package has them.
void take_settings(const py::dict& s, vexa::TaskRequest& r) {
    vexa::RunSettings& rs = r.settings;
    const auto get = [&](const char* key, double fallback) {
        return s.contains(key) && !s[key].is_none() ? s[key].cast<double>() : fallback;
    };
    rs.proposal = proposal_named(s.contains("sampler") ? s["sampler"].cast<std::string>() : "");
    r.options.sampler_code = static_cast<int32_t>(get("sampler_code", -1));
    if (s.contains("degree_cap") && !s["degree_cap"].is_none()) {
        rs.degree_cap_given = true;
        rs.degree_cap = static_cast<int32_t>(get("degree_cap", 9999));
    }
    rs.subphase_count = static_cast<int32_t>(get("subphases", 5));
    rs.start_a_value = static_cast<float>(get("gain", 0.1));
    rs.multiplication_factor = static_cast<int32_t>(get("multiplication_factor", 2));
    rs.phase3_steps = static_cast<int32_t>(get("phase3_steps", 500));
    rs.estimation_runs = static_cast<int32_t>(get("runs", 3));
    rs.burn_in = get("burn_in", 10000);
    rs.iterations = get("iterations", 100000);
    rs.sample_count = static_cast<int32_t>(get("samples", 1000));
    r.options.chains = static_cast<int32_t>(get("chains", 0));
    r.options.threads = static_cast<int32_t>(get("threads", 0));
    r.options.confirm = get("check", 0) != 0.0;
    if (s.contains("method") && s["method"].cast<std::string>() == "ee")
        r.options.method = vexa::EstimationMethod::equilibrium_expectation;
    if (s.contains("output_dir") && !s["output_dir"].is_none()) {
        rs.output_directory = s["output_dir"].cast<std::string>();
        r.write_files = true;
    }
}

std::vector<vexa::AttributeColumn> columns_of(const py::list& attributes) {
    std::vector<vexa::AttributeColumn> columns;
    for (const py::handle a : attributes) {
        const auto t = a.cast<py::tuple>();
        vexa::AttributeColumn c;
        c.name = t[0].cast<std::string>();
        c.kind = static_cast<vexa::AttributeKind>(t[1].cast<int>());
        c.values = t[2].cast<std::vector<double>>();
        c.missing = t[3].cast<std::vector<uint8_t>>();
        columns.push_back(std::move(c));
    }
    return columns;
}

// Runs a task. `request`: task, directed, n, name, adjacency (n x n, row by row, or None),
// density, effects [(name, value, lambda)], attributes [(name, kind, values, missing)],
// covariate (name, values) or None, settings (dict), seed (int or None), automatic,
// keep_networks, and for a Bayesian goodness of fit ("bayes") parameter_sets, one list of
// values per set in parameter-vector order. Returns the result dict; raises KeyboardInterrupt when
// the user stopped it.
py::dict run_task(const py::dict& request, const py::object& update) {
    vexa::TaskRequest r;
    vexa::RunSettings& s = r.settings;
    s.task = task_named(request["task"].cast<std::string>());
    s.network_kind =
        request["directed"].cast<bool>() ? vexa::NetworkKind::digraph : vexa::NetworkKind::graph;
    s.node_count = request["n"].cast<int32_t>();
    s.network_name = request["name"].cast<std::string>();
    s.run_file = "vexa_" + s.network_name;
    s.initial_density = request["density"].cast<float>();
    take_settings(request["settings"].cast<py::dict>(), r);
    if (!request["adjacency"].is_none()) {
        const auto a = request["adjacency"].cast<py::array_t<double, py::array::c_style>>();
        r.adjacency.assign(a.data(), a.data() + a.size());
    }
    for (const py::handle e : request["effects"].cast<py::list>()) {
        const auto t = e.cast<py::tuple>();
        r.effects.push_back({t[0].cast<std::string>(), t[1].cast<double>(), t[2].cast<float>()});
    }
    r.attributes = columns_of(request["attributes"].cast<py::list>());
    if (!request["covariate"].is_none()) {
        const auto c = request["covariate"].cast<py::tuple>();
        r.covariate_given = true;
        r.covariate_name = c[0].cast<std::string>();
        r.covariate = c[1].cast<std::vector<double>>();
    }
    if (!request["seed"].is_none()) {
        r.options.fixed_seed = true;
        r.options.seed = request["seed"].cast<uint32_t>();
    }
    r.options.automatic = request["automatic"].cast<bool>();
    r.keep_networks = request["keep_networks"].cast<bool>();
    if (request.contains("parameter_sets"))
        r.parameter_sets = request["parameter_sets"].cast<std::vector<std::vector<double>>>();

    Progress progress;
    progress.update = update;
    progress.estimation = s.task == vexa::Task::estimation;
    progress.runs = std::max(1, s.estimation_runs);
    progress.burn_in = s.burn_in;
    progress.proposals = s.iterations;
    r.observer = observer_of(progress);
    vexa::TaskResult result;
    {
        py::gil_scoped_release free;
        result = vexa::run_request(r);
    }
    if (progress.failure) throw std::move(*progress.failure);
    if (progress.interrupted) {
        PyErr_SetNone(PyExc_KeyboardInterrupt);
        throw py::error_already_set();
    }
    return vexa_python::result_dict(result, s.node_count);
}

// The vexa effects that a list of terms names: [(name, number or None, attribute or None)]
// to [(name, lambda)]. Raises VexaError for an alias no vexa effect matches.
py::list resolve_terms(const py::list& terms, bool directed, const py::list& attributes,
                       const std::string& covariate_name) {
    const vexa::NetworkKind kind = directed ? vexa::NetworkKind::digraph : vexa::NetworkKind::graph;
    const std::vector<vexa::AttributeColumn> columns = columns_of(attributes);
    py::list out;
    for (const py::handle term : terms) {
        const auto t = term.cast<py::tuple>();
        vexa::AliasTerm a;
        a.name = t[0].cast<std::string>();
        a.has_number = !t[1].is_none();
        if (a.has_number) a.number = t[1].cast<double>();
        if (!t[2].is_none()) a.attribute = t[2].cast<std::string>();
        const vexa::EffectChoice choice = vexa::resolve_term(a, kind, columns, covariate_name);
        out.append(py::make_tuple(choice.name, static_cast<double>(choice.lambda)));
    }
    return out;
}

py::list effect_list(bool directed) {
    py::list out;
    for (const vexa::EffectEntry& e :
         vexa::effect_entries(directed ? vexa::NetworkKind::digraph : vexa::NetworkKind::graph))
        out.append(py::make_tuple(e.name, e.kind, e.argument, e.maps_to, e.meaning));
    return out;
}

}  // namespace

PYBIND11_MODULE(_vexa, m) {
    m.doc() = "The vexa engine, driven from Python (use the vexa package, not this module)";
    py::register_exception<vexa::VexaError>(m, "VexaError");
    m.def("run_task", &run_task, py::arg("request"), py::arg("update") = py::none());
    m.def("resolve_terms", &resolve_terms, py::arg("terms"), py::arg("directed"),
          py::arg("attributes"), py::arg("covariate_name"));
    m.def("effect_list", &effect_list, py::arg("directed"));
}
