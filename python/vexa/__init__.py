"""vexa: exponential random graph models (p* models) of social networks, estimated,
simulated and tested for fit by the vexa engine.

    import networkx as nx, vexa
    G = nx.florentine_families_graph()
    fit = vexa.estimate(G, ["edge", ("AS", 2), ("AT", 2), "A2P"], seed=1)
    fit.estimates                 # estimate, se and t per effect
    fit.plot_gof(path="gof.png")  # the observed network against sampled ones
"""

from ._errors import VexaError, VexaNotConverged
from ._model import Settings
from ._api import estimate, gof, bayes_gof, simulate, statistics, effects
from ._results import Fit, GoodnessOfFit

__version__ = "0.1.0"
__all__ = ["estimate", "gof", "bayes_gof", "simulate", "statistics", "effects", "Settings",
           "Fit", "GoodnessOfFit",
           "VexaError", "VexaNotConverged"]
