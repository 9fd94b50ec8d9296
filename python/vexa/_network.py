"""Networks and node attributes as the engine takes them: a 0/1 matrix and typed columns."""

from dataclasses import dataclass, field

import numpy as np
import pandas as pd

from ._errors import VexaError

BINARY, CONTINUOUS, CATEGORICAL = 0, 1, 2


@dataclass
class Network:
    matrix: np.ndarray  # n x n of 0.0 and 1.0, zero diagonal
    directed: bool
    nodes: list  # node labels in matrix order
    node_data: pd.DataFrame = field(default_factory=pd.DataFrame)  # networkx node attributes

    @property
    def n(self):
        return len(self.nodes)


def _is_networkx(G):
    return hasattr(G, "is_directed") and hasattr(G, "nodes") and hasattr(G, "edges")


def as_network(G, directed=None):
    """A networkx graph, a numpy array or a scipy sparse matrix as a Network."""
    node_data = pd.DataFrame()
    if _is_networkx(G):
        if directed is not None and bool(directed) != G.is_directed():
            raise VexaError("vexa: directed=%s contradicts the networkx graph, which is %s"
                            % (directed, "directed" if G.is_directed() else "undirected"))
        directed = G.is_directed()
        nodes = list(G.nodes())
        index = {v: k for k, v in enumerate(nodes)}
        m = np.zeros((len(nodes), len(nodes)))
        for u, v in G.edges():
            m[index[u], index[v]] = 1.0
            if not directed:
                m[index[v], index[u]] = 1.0
        node_data = pd.DataFrame([G.nodes[v] for v in nodes], index=nodes)
    else:
        if hasattr(G, "toarray"):  # a scipy sparse matrix or array
            G = G.toarray()
        try:
            m = np.array(G, dtype=float)
        except (TypeError, ValueError):
            raise VexaError("vexa: the network must be a networkx graph, a numpy array or a "
                            "scipy sparse matrix, not %s" % type(G).__name__) from None
        if m.ndim != 2 or m.shape[0] != m.shape[1] or m.shape[0] < 1:
            raise VexaError("vexa: the network matrix must be square with at least 1 node, "
                            "found shape %s" % (m.shape,))
        nodes = list(range(m.shape[0]))
    np.fill_diagonal(m, 0.0)
    bad = np.argwhere(~np.isin(m, (0.0, 1.0)))
    if len(bad):
        r, c = bad[0]
        raise VexaError("vexa: the network matrix holds %s at row %d, column %d; ties are 1 and "
                        "non-ties 0" % (m[r, c], r + 1, c + 1))
    if directed is None:
        directed = not np.array_equal(m, m.T)
    if not directed and not np.array_equal(m, m.T):
        r, c = np.argwhere(m != m.T)[0]
        raise VexaError("vexa: the undirected network's matrix is not symmetric at row %d, "
                        "column %d" % (r + 1, c + 1))
    return Network(m, bool(directed), nodes, node_data)


def attribute_table(network, attributes):
    """The node attributes of the network's graph, joined by those given (a DataFrame with one
    row per node, in node order or indexed by the nodes)."""
    table = network.node_data.copy()
    if attributes is None:
        return table
    if isinstance(attributes, dict):
        attributes = pd.DataFrame(attributes)
    if not isinstance(attributes, pd.DataFrame):
        raise VexaError("vexa: attributes must be a pandas DataFrame, one column per attribute")
    if len(attributes) != network.n:
        raise VexaError("vexa: attributes have %d rows for a network of %d nodes"
                        % (len(attributes), network.n))
    if set(attributes.index) == set(network.nodes):
        attributes = attributes.loc[network.nodes]
    attributes = attributes.set_axis(network.nodes, axis=0)
    for name in attributes.columns:
        table[name] = attributes[name]
    return table


def column(table, name, kind):
    """One attribute as the engine takes it: (name, kind, values, missing). A categorical
    column's categories become the numbers 1, 2, ... in sorted order."""
    if name not in table.columns:
        raise VexaError("vexa: no attribute '%s'; the network's nodes and the attributes give %s"
                        % (name, ", ".join(map(str, table.columns)) or "none"))
    x = table[name]
    missing = x.isna().to_numpy()
    if kind == CATEGORICAL:
        codes, _ = pd.factorize(x, sort=True)
        values = codes.astype(float) + 1.0
    else:
        try:
            values = pd.to_numeric(x.where(~x.isna(), 0)).to_numpy(dtype=float)
        except (TypeError, ValueError):
            raise VexaError("vexa: attribute '%s' is not numeric; a category needs a categorical "
                            "effect (nodematch, Same_Category_edge)" % name) from None
        if not np.all(np.isfinite(values)):
            raise VexaError("vexa: attribute '%s' holds an infinite value" % name)
    values[missing] = 0.0
    return (str(name), kind, values.tolist(), missing.astype(np.uint8).tolist())


def natural_kind(series):
    """The kind a column is read as unless an effect asks otherwise: true/false columns binary,
    numbers continuous, anything else categorical."""
    if pd.api.types.is_bool_dtype(series):
        return BINARY
    if pd.api.types.is_numeric_dtype(series):
        return CONTINUOUS
    values = series.dropna()
    if len(values) and all(isinstance(v, (bool, np.bool_)) for v in values):
        return BINARY
    return CATEGORICAL


def covariate_matrix(covariates, n):
    """The one covariate as (name, n x n values row by row), or None."""
    if covariates is None:
        return None
    if not isinstance(covariates, dict) or len(covariates) != 1:
        raise VexaError("vexa: covariates must be one named n x n matrix, as {'name': matrix}")
    (name, m), = covariates.items()
    if hasattr(m, "toarray"):
        m = m.toarray()
    m = np.array(m, dtype=float)
    if m.shape != (n, n):
        raise VexaError("vexa: covariate '%s' must be a %d x %d matrix, found shape %s"
                        % (name, n, n, m.shape))
    m = np.nan_to_num(m, nan=0.0, posinf=np.inf, neginf=-np.inf)
    if not np.all(np.isfinite(m)):
        raise VexaError("vexa: covariate '%s' holds an infinite value" % name)
    return (str(name), m.ravel().tolist())
