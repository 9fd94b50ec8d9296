#include "entry/run_task.h"

#include <variant>

#include "base/text_file.h"
#include "report/tie_list_output.h"

namespace vexa::task_detail {

void start_console(Listeners& listeners, RunContext& context) {
    Console& console = listeners.console;
    console.text = console_progress(context.console, &context.bars);
    console.kind = context.settings.network_kind;
    console.labels = parameter_labels(context.model, LabelStyle::summary);
    listeners.parts.push_back(console_observer(console));
}

void say_no_network_saved(const RunContext& context) {
    if (context.save_network.empty() || context.settings.task == Task::simulation) return;
    std::fprintf(context.console,
                 "vexa: only a simulation saves its final network; this %s saves none\n",
                 task_name(context.settings.task));
    std::fflush(context.console);
}

void start_saving_network(RunContext& context, Listeners& listeners) {
    if (context.save_network.empty() || context.chains.cluster.rank != 0) return;
    const std::string path = context.save_network;
    OutFile(path, OpenMode::truncate).close();
    Console* console = &listeners.console;
    Observer saver;
    saver.sampling_ended = [path, console](const SamplingEnded& e) {
        if (!e.network) return;
        std::visit(
            [&](const auto* store) {
                write_tie_list_file(path, *store);
                console->text.say("vexa: the final network (%lld %s) is saved in '%s'\n",
                                  static_cast<long long>(tie_count(*store)),
                                  console->kind == NetworkKind::digraph ? "arcs" : "edges",
                                  path.c_str());
            },
            *e.network);
    };
    listeners.parts.push_back(saver);
}

void say_notes(const RunContext& context, const MatrixNotes& notes, const char* what,
               const std::string& path) {
    for (const std::string& line : matrix_note_lines(notes, what, path))
        std::fprintf(context.console, "%s\n", line.c_str());
}

std::unique_ptr<DyadMask> constraint_mask(const RunContext& context, NetworkKind kind) {
    const RunSettings& s = context.settings;
    if (s.constraint_given) {
        MatrixNotes notes;
        auto mask = std::make_unique<DyadMask>(
            read_dyad_mask(s.constraint_file, s.node_count, kind, &notes));
        say_notes(context, notes, "constraint", s.constraint_file);
        return mask;
    }
    if (context.constraint == nullptr) return nullptr;
    return std::make_unique<DyadMask>(
        dyad_mask_from_matrix(*context.constraint, s.node_count, kind));
}

void refuse_cap_below(const RunSettings& s, NetworkKind kind, int node, int32_t degree) {
    const char* word = kind == NetworkKind::graph ? "degree" : "out-degree";
    throw SettingError(format_message(
        "vexa: run file '%s', line %d (degree_cap): the cap %d is below the %s %d of node %d "
        "(row %d of network file '%s'); it must be at least the observed network's largest %s",
        s.run_file.c_str(), s.degree_cap_line, s.degree_cap, word, degree, node + 1, node + 1,
        s.network_file.c_str(), word));
}

std::vector<std::vector<double>> parameter_sets_of(const RunContext& context) {
    const RunSettings& s = context.settings;
    const int p = context.model.parameter_count();
    if (p == 0) {
        throw SettingError(format_message(
            "vexa: run file '%s' includes no effect, so there is no parameter set to draw under",
            s.run_file.c_str()));
    }
    if (context.parameter_sets != nullptr) {
        std::vector<std::vector<double>> sets;
        for (const std::vector<double>& set : *context.parameter_sets) {
            if (set.size() != static_cast<size_t>(p)) {
                throw SettingError(
                    format_message("vexa: %s: parameter set %zu holds %zu values for %d parameters",
                                   s.run_file.c_str(), sets.size() + 1, set.size(), p));
            }
            if (sets.size() < static_cast<size_t>(s.sample_count)) sets.push_back(set);
        }
        return sets;
    }
    ParameterSets read = read_parameter_sets(s.parameter_sets_file, p, s.sample_count);
    const int count = static_cast<int>(read.sets.size());
    if (count < s.sample_count) {
        std::fprintf(context.console,
                     "vexa: parameter sets file '%s' holds %d parameter sets where sample_count "
                     "asks for %d; all %d are used\n",
                     s.parameter_sets_file.c_str(), count, s.sample_count, count);
        std::fflush(context.console);
    }
    return std::move(read.sets);
}

void say_bounds(const RunContext& context, const GofRecord& record) {
    if (!record.sets || record.sets->empty + record.sets->complete == 0) return;
    std::fprintf(context.console,
                 "vexa: %d of %d draws ended at the empty network and %d at the complete "
                 "one: those parameter sets lie in a degenerate region\n",
                 record.sets->empty, record.sets->count, record.sets->complete);
    std::fflush(context.console);
}

EstimationSettings estimation_settings(const RunSettings& s) {
    EstimationSettings settings;
    settings.multiplication_factor = s.multiplication_factor;
    settings.subphase_count = s.subphase_count;
    settings.phase3_steps = s.phase3_steps;
    settings.start_a_value = s.start_a_value;
    return settings;
}

}  // namespace vexa::task_detail
