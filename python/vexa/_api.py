"""The functions of the vexa package: estimate, gof, simulate, effects."""

import numbers
import warnings

import numpy as np
import pandas as pd

from ._errors import VexaError, VexaNotConverged
from ._model import parse_terms, attribute_columns, resolve, values_for, settings_of
from ._network import Network, as_network, attribute_table, covariate_matrix
from ._results import Fit, GoodnessOfFit
from ._run import run
from . import _engine


class _Model:
    """A network with the model's resolved effects, attributes and covariate."""

    def __init__(self, network, effects, attributes=None, covariates=None):
        self.network = network
        self.terms = parse_terms(effects)
        self.attributes = attributes
        self.covariates = covariates
        table = attribute_table(network, attributes)
        self.columns = attribute_columns(self.terms, table, network.directed)
        self.covariate = covariate_matrix(covariates, network.n)
        self.effects = resolve(self.terms, network.directed, self.columns, self.covariate)


def estimate(G, effects, attributes=None, covariates=None, *, directed=None, seed=None,
             auto=True, start=None, settings=None, progress=None, **options):
    """Estimates an exponential random graph model of G.

    G: a networkx Graph or DiGraph (its node attributes are read), a numpy array or a scipy
    sparse matrix (`directed` says its kind; unsaid, a symmetric matrix is a graph).
    effects: names ("edge", "AS"), (name, lambda) pairs (("AS", 2)), attribute effects
    ("grade_Same_Category_edge") and aliases (("gwesp", 0.5), ("nodematch", "grade"));
    vexa.effects() lists them. attributes: a DataFrame, one row per node. covariates:
    {"name": n x n matrix}. auto: the automatic mode (the command line's --auto). start:
    starting values. settings, **options: vexa.Settings fields (runs=10, ...). progress: a
    bar (True), none (False) or a callable taking the share done.
    """
    if not isinstance(auto, bool):
        raise VexaError("vexa: auto must be True or False")
    model = _Model(as_network(G, directed), effects, attributes, covariates)
    s = settings_of(settings, options)
    values = values_for(start, [name for name, _ in model.effects], "starting values")
    result = run("estimation", model.network, model.effects, values, model.columns,
                 model.covariate, s, seed, automatic=auto, progress=progress)
    fit = Fit(result, model, s, seed, auto)
    if not fit.converged:
        warnings.warn("vexa: the fit did not converge (%s): %s" % (fit.verdict, fit.note()),
                      VexaNotConverged, stacklevel=2)
    return fit


def _source(x, effects, parameters, attributes, covariates, directed):
    """The model and parameters of a task: a fit's, or a network's (or node count's) with the
    effects and parameters given."""
    if isinstance(x, Fit):
        if x.estimates["estimate"].isna().any():
            raise VexaError("vexa: the fit has no estimates: every run was degenerate")
        return x.model, x.parameters()
    if effects is None or parameters is None:
        raise VexaError("vexa: without a fit, give the effects and their parameters")
    if isinstance(x, numbers.Integral) and not isinstance(x, bool):
        if x < 1:
            raise VexaError("vexa: the node count must be a whole number of 1 or more")
        network = Network(np.zeros((x, x)), bool(directed), list(range(x)))
    else:
        network = as_network(x, directed)
    model = _Model(network, effects, attributes, covariates)
    if isinstance(parameters, dict):
        raise VexaError("vexa: give the parameters as a list in the order of the effects")
    return model, values_for(parameters, [name for name, _ in model.effects], "parameters")


def gof(x, effects=None, parameters=None, attributes=None, covariates=None, *, directed=None,
        seed=None, settings=None, progress=None, **options):
    """Goodness of fit: the observed network against networks sampled from a fit (or from a
    network's model with the parameters given). Settings: burn_in, iterations, samples (one
    kept every iterations / samples steps)."""
    model, values = _source(x, effects, parameters, attributes, covariates, directed)
    s = settings_of(settings if settings is not None else getattr(x, "settings", None), options)
    result = run("gof", model.network, model.effects, values, model.columns, model.covariate,
                 s, seed, progress=progress)
    return GoodnessOfFit(result, model.network)


def bayes_gof(fit, sets=200, *, seed=None, burn_in=10000, parameter_sets=None, progress=None,
              settings=None, **options):
    """The Bayesian goodness of fit: the observed network against one network per parameter
    set, each drawn after `burn_in` steps from the observed network under its set, so that the
    estimate's uncertainty is carried along. The sets are drawn from the normal distribution
    around the fit's estimates with its covariance (`sets` of them, from `seed`), or given as
    `parameter_sets` (one row per set, in the order of fit.estimates). The result's table has
    the posterior predictive p-values beside the t-ratios."""
    if not isinstance(fit, Fit):
        raise VexaError("vexa: the Bayesian goodness of fit needs a fit")
    if fit.estimates["estimate"].isna().any():
        raise VexaError("vexa: the fit has no estimates: every run was degenerate")
    if parameter_sets is None:
        if isinstance(sets, bool) or not isinstance(sets, numbers.Integral) or sets < 1:
            raise VexaError("vexa: sets must be a whole number, 1 or more")
        rng = np.random.default_rng(seed)
        parameter_sets = rng.multivariate_normal(fit.estimates["estimate"].to_numpy(),
                                                 fit.covariance.to_numpy(), size=sets,
                                                 method="eigh")
    parameter_sets = np.atleast_2d(np.asarray(parameter_sets, dtype=float))
    if parameter_sets.shape[1] != len(fit.labels) or not np.all(np.isfinite(parameter_sets)):
        raise VexaError("vexa: each parameter set must hold %d finite values" % len(fit.labels))
    model = fit.model
    s = settings_of(settings if settings is not None else fit.settings,
                    dict(options, burn_in=burn_in))
    result = run("bayes", model.network, model.effects, fit.parameters(), model.columns,
                 model.covariate, s, seed, progress=progress, parameter_sets=parameter_sets)
    return GoodnessOfFit(result, model.network, parameter_sets=parameter_sets)


def simulate(x, n=1, *, effects=None, parameters=None, attributes=None, covariates=None,
             directed=False, seed=None, burn_in=10000, thin=1000, density=None, progress=None,
             settings=None, **options):
    """n networks drawn from a fit's model (or from effects and parameters on a network or a
    node count), one every `thin` steps after `burn_in` steps, as networkx graphs of the
    network's kind with its node labels and attributes. The chain starts from a random
    network of the observed density (`density` to choose another)."""
    import networkx as nx
    if isinstance(n, bool) or not isinstance(n, numbers.Integral) or n < 1:
        raise VexaError("vexa: simulate needs a whole number of networks, 1 or more, found %r"
                        % (n,))
    if isinstance(thin, bool) or not isinstance(thin, numbers.Integral) or thin < 1:
        raise VexaError("vexa: thin must be a whole number of steps, 1 or more")
    model, values = _source(x, effects, parameters, attributes, covariates, directed)
    network = model.network
    if density is None:
        pairs = network.n * (network.n - 1)
        density = network.matrix.sum() / pairs if pairs else 0.0
    if not 0.0 <= density <= 1.0:
        raise VexaError("vexa: density must lie between 0 and 1")
    s = settings_of(settings if settings is not None else getattr(x, "settings", None),
                    dict(options, burn_in=burn_in, iterations=n * thin, samples=n))
    result = run("simulation", network, model.effects, values, model.columns, model.covariate,
                 s, seed, keep_networks=True, density=density, progress=progress, observed=False)
    graphs = []
    data = network.node_data.to_dict("index") if len(network.node_data.columns) else {}
    for ties in result["networks"]:
        g = nx.DiGraph() if network.directed else nx.Graph()
        g.add_nodes_from((v, dict(data.get(v, {}))) for v in network.nodes)
        g.add_edges_from((network.nodes[i], network.nodes[j]) for i, j in ties)
        graphs.append(g)
    return graphs


def statistics(G, effects, attributes=None, covariates=None, *, directed=None):
    """The model's statistics of the network G, as vexa counts them: a Series indexed by
    effect, in the order the effects were given."""
    model = _Model(as_network(G, directed), effects, attributes, covariates)
    s = settings_of(None, {"burn_in": 0, "iterations": 1, "samples": 1})
    result = run("gof", model.network, model.effects, [0.0] * len(model.effects), model.columns,
                 model.covariate, s, 1, progress=False)
    observed, labels = result["gof"]["observed"], result["labels"]
    slots = result["slots"]
    return pd.Series([observed[k] for k in slots], index=[labels[k] for k in slots])


def effects(directed=False):
    """The effects vexa counts and the aliases it takes, with what each counts, as a
    DataFrame: name, kind (structural, binary, continuous, categorical, covariate or alias),
    argument (lambda, k, decay, attribute, covariate), maps_to (an alias's vexa effect) and
    meaning."""
    rows = _engine.effect_list(bool(directed))
    return pd.DataFrame(rows, columns=["name", "kind", "argument", "maps_to", "meaning"])
