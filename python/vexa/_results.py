"""Results as plain classes of pandas and numpy values."""

import numpy as np
import pandas as pd


def _rows(rows):
    """Rows of unequal length as one array, padded with zeros."""
    width = max((len(r) for r in rows), default=0)
    out = np.zeros((len(rows), width))
    for k, r in enumerate(rows):
        out[k, :len(r)] = r
    return out


class Fit:
    """An estimate. `estimates`: a DataFrame indexed by effect with the columns estimate, se
    and t (the convergence t-ratio); `converged`, `verdict` (converged, converged but noisy,
    not converged, degenerate) and `reported_run` say whether to trust it; `effective_sizes`
    the phase-3 draws' effective sample size per statistic."""

    def __init__(self, result, model, settings, seed, auto):
        self.model = model
        self.settings = settings
        self.seed = seed
        self.auto = auto
        self.labels = list(result["labels"])
        self.slots = list(result["slots"])
        self.runs = result["runs"]
        self.converged = bool(result["converged"])
        self.reported_run = int(result["reported_run"])
        self.console = result["console"]
        shown = self.runs[self.reported_run - 1] if self.reported_run > 0 else self.runs[-1]
        self.verdict = shown["verdict"]
        self.verdicts = [r["verdict"] for r in self.runs]
        self.largest_t = shown["largest_t"]
        self.overall_ratio = shown["overall_ratio"]
        p = len(self.labels)
        finished = self.reported_run > 0

        def column(key):
            return shown[key] if finished and len(shown[key]) == p else [np.nan] * p

        self.estimates = pd.DataFrame(
            {"estimate": column("estimates"), "se": column("standard_errors"),
             "t": column("t_ratios")}, index=pd.Index(self.labels, name="effect"))
        sizes = shown["effective_sizes"]
        self.effective_sizes = pd.Series(sizes if len(sizes) == p else [np.nan] * p,
                                         index=self.labels)
        cov = np.array(shown["covariance"]) if finished else np.full((p, p), np.nan)
        self.covariance = pd.DataFrame(cov, index=self.labels, columns=self.labels)
        trace = np.array(shown["trace"])
        steps = ["start", "phase 1"] + ["sub-phase %d" % k for k in range(len(trace))]
        self.trace = pd.DataFrame(trace, columns=self.labels, index=steps[:len(trace)])
        self.observed = pd.Series(shown["observed"], index=self.labels)

    def parameters(self):
        """The estimates in the order the model's effects were given."""
        values = self.estimates["estimate"].to_numpy()
        return [float(values[s]) for s in self.slots]

    def note(self):
        """Why a fit that did not converge is not to be trusted, and what to try."""
        if self.reported_run == 0:
            return ("every run (%d) stopped before phase 3 and left no estimates; %s"
                    % (len(self.runs), self.runs[-1]["advice"]))
        if self.verdict == "converged but noisy":
            return ("the estimates are those of run %d of %d, whose t-ratios rest on too few "
                    "effective draws to be judged; try a larger multiplication_factor"
                    % (self.reported_run, len(self.runs)))
        return ("no run of %d converged; the estimates are those of run %d, whose largest |t| "
                "(%.3f) was the smallest; try more runs (runs=%d, each going on from the last) "
                "or a larger multiplication_factor"
                % (len(self.runs), self.reported_run, self.largest_t,
                   max(10, 2 * self.settings.runs)))

    def bayes_gof(self, sets=200, **options):
        """The Bayesian goodness of fit of this estimate (see vexa.bayes_gof)."""
        from ._api import bayes_gof
        return bayes_gof(self, sets, **options)

    def gof(self, **options):
        """Goodness of fit of this estimate (see vexa.gof)."""
        from ._api import gof
        return gof(self, **options)

    def simulate(self, n=1, **options):
        """n networks from this estimate (see vexa.simulate)."""
        from ._api import simulate
        return simulate(self, n, **options)

    def plot_gof(self, gof=None, path=None, seed=None, **options):
        """A goodness-of-fit figure (matplotlib): a box per statistic with the observed value,
        and the degree and geodesic distributions (digraphs: the triad census too). Runs
        vexa.gof(self, seed=seed, ...) unless `gof` is given; saves to `path` when given."""
        from ._plot import gof_figure
        if gof is None:
            gof = self.gof(seed=seed, **options)
        return gof_figure(gof, path)

    def __repr__(self):
        net = self.model.network
        ties = net.matrix.sum() / (1 if net.directed else 2)
        head = "vexa estimate of a %s of %d nodes and %d %s\n" % (
            "digraph" if net.directed else "graph", net.n, ties,
            "arcs" if net.directed else "edges")
        if not self.converged:
            head += "NOT CONVERGED (%s): %s\n" % (self.verdict, self.note())
        run = self.reported_run if self.reported_run > 0 else len(self.runs)
        head += "Run %d of %d: %s (largest |t| %.3f, overall convergence ratio %.3f)\n\n" % (
            run, len(self.runs), self.verdict, self.largest_t, self.overall_ratio)
        return head + self.estimates.to_string()


class GoodnessOfFit:
    """The observed network against sampled ones. `table`: observed, mean, sd and t per
    statistic and descriptive measure; `quartiles`: the geodesic quartiles; `mahalanobis`:
    the observed network's distance from the samples' mean (`mahalanobis_closer`: the share
    of samples nearer, in percent); `statistics`: one row per sample."""

    def __init__(self, result, network, parameter_sets=None):
        g = result["gof"]
        names = list(result["gof_labels"]) + list(g["measure_names"])
        c = g["comparisons"]
        self.directed = network.directed
        self.n = network.n
        self.table = pd.DataFrame({"observed": c["observed"], "mean": c["mean"], "sd": c["sd"],
                                   "t": c["t"]}, index=pd.Index(names, name="statistic"))
        q = g["quartiles"]
        self.quartiles = pd.DataFrame(q, index=pd.Index(["25%", "50%", "75%"], name="quartile"))
        self.mahalanobis = g["mahalanobis"]
        self.mahalanobis_closer = g["mahalanobis_closer"]
        self.statistics = pd.DataFrame(np.array(g["statistics"]).T,
                                       columns=list(result["gof_labels"]))
        self.measures = pd.DataFrame(np.array(g["measures"]).T, columns=list(g["measure_names"]))
        self.observed_profile = {k: np.array(v) for k, v in g["observed_profile"].items()}
        self.degree = _rows(g["degree"])
        self.in_degree = _rows(g["in_degree"]) if self.directed else None
        self.geodesics = _rows(g["geodesics"])
        self.triads = _rows(g["triads"]) if self.directed else None
        self.parameter_sets = None
        if parameter_sets is not None:
            # Posterior predictive p-values: twice the smaller share of draws at or above, and
            # at or below, the observed value.
            draws = np.column_stack([self.statistics.to_numpy(), self.measures.to_numpy()])
            observed = self.table["observed"].to_numpy()
            above = (draws >= observed - 1e-9).mean(axis=0)
            below = (draws <= observed + 1e-9).mean(axis=0)
            self.table["p"] = np.minimum(1.0, 2 * np.minimum(above, below))
            self.parameter_sets = pd.DataFrame(parameter_sets, columns=result["labels"])
            self.empty, self.complete = g["empty"], g["complete"]

    def plot(self, path=None):
        from ._plot import gof_figure
        return gof_figure(self, path)

    def __repr__(self):
        text = "vexa goodness of fit: %d samples of a %s of %d nodes\n\n%s\n\n%s\n" % (
            len(self.statistics), "digraph" if self.directed else "graph", self.n,
            self.table.to_string(), self.quartiles.to_string())
        if np.isnan(self.mahalanobis):
            return text + "\nMahalanobis distance: not available (collinear statistics)"
        return text + ("\nMahalanobis distance of the observed network: %.4f (%.1f%% of samples "
                       "lie nearer the sample mean)" % (self.mahalanobis, self.mahalanobis_closer))
