#include "entry/console.h"

#include <cmath>

#include "estimation/confirmation.h"
#include "estimation/estimation.h"
#include "report/convergence_report.h"

namespace vexa {

namespace {

const char* bar_label_of(Stage stage) {
    switch (stage) {
        case Stage::burn_in: return "burn-in";
        case Stage::phase1:
        case Stage::phase2:
        case Stage::phase3: return "estimation";
        case Stage::sampling: return "sampling";
        case Stage::parameter_sets: return "parameter sets";
        case Stage::check_burn_in: return "long-chain check, burn-in";
        case Stage::check: return "long-chain check";
        case Stage::reading: return "reading the network";
        case Stage::counting: return "counting the network's pairs";
    }
    return "working";
}

void stage_started(Console& c, const StageStarted& e) {
    switch (e.stage) {
        case Stage::phase1:
            c.text.say("  phase 1: %d draws of %.0f steps\n", e.draws, std::ceil(e.steps_per_draw));
            break;
        case Stage::phase2:
            c.text.say("  phase 2, sub-phase %d (gain %g)\n", e.subphase,
                       static_cast<double>(e.gain));
            break;
        case Stage::phase3:
            c.text.say("  phase 3: %d draws of %.0f steps\n", e.draws, std::ceil(e.steps_per_draw));
            break;
        case Stage::check_burn_in:
            c.text.say(
                "  long-chain check: %d draws, one every %.0f steps, after %.0f steps of burn-in\n",
                e.draws, e.steps_per_draw, e.steps);
            break;
        default: break;
    }
    if (e.steps > 0.0 && e.stage != Stage::phase1 && e.stage != Stage::phase3)
        c.bar_for(bar_label_of(e.stage), e.steps);
}

void run_ended(Console& c, const RunEnded& e) {
    const EstimationRun& run = e.record;
    if (named_degenerate(run))
        c.text.say("  degenerate model: %s\n", degeneracy_text(run.degeneracy));
    // A digraph's runs also print their t-ratios, as the front end reads them.
    if (c.kind == NetworkKind::digraph && !run.t_ratios.empty()) {
        for (const double t : run.t_ratios) c.text.say("%lf\t", t);
        c.text.say("\n");
    }
    if (run.astray) {
        c.text.say("vexa: run %d did not converge: %s\n", e.run,
                   astray_text(run, c.labels).c_str());
    } else if (run.degenerate) {
        c.text.say("vexa: run %d found the model degenerate: %s\n", e.run,
                   degeneracy_advice(run, c.labels).c_str());
    } else {
        c.text.say("vexa: run %d %s\n", e.run, convergence_summary(e.check, c.labels).c_str());
    }
}

}  // namespace

ProgressBar& Console::bar_for(const std::string& label, double total) {
    if (!bar || bar_label != label) {
        bar.reset();
        bar.emplace(text, label, total);
        bar_label = label;
    }
    return *bar;
}

Observer console_observer(Console& console) {
    Console* c = &console;
    Observer o;
    o.stage_started = [c](const StageStarted& e) { stage_started(*c, e); };
    o.steps_done = [c](const StepsDone& e) {
        ProgressBar& bar = c->bar_for(bar_label_of(e.stage), e.total);
        bar.set_total(e.total);
        bar.update(e.done);
    };
    o.sample_drawn = [c](const SampleDrawn& e) { c->text.say("%.0f\t", e.number); };
    o.sampling_ended = [c](const SamplingEnded& e) {
        if (e.stage == Stage::parameter_sets) {
            c->text.say("\nAccepted %.0f changes.\n", e.accepted);
            return;
        }
        if (e.samples > 0.0) c->text.say("\n");
        c->text.say("Accepted %.0f changes.\n", e.accepted);
    };
    o.run_started = [c](const RunStarted& e) {
        c->text.say("vexa: estimation run %d of %d\n", e.run, e.runs);
    };
    o.run_ended = [c](const RunEnded& e) { run_ended(*c, e); };
    o.check_ended = [c](const CheckEnded& e) {
        const Confirmation& check = e.confirmation;
        c->text.say("vexa: the long-chain check at the estimate: %s\n",
                    confirmation_summary(check.confirmed, check.check, c->labels).c_str());
    };
    return o;
}

}  // namespace vexa
