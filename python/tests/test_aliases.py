"""Each alias that maps to a vexa effect counts the same statistic: both are counted on small
networks, the alias by brute force from its definition here, the vexa effect by the engine."""

import itertools
import math

import networkx as nx
import numpy as np
import pandas as pd
import pytest

import vexa

N = 9


@pytest.fixture(scope="module")
def data():
    rng = np.random.default_rng(11)
    X = (rng.random((N, N)) < 0.4).astype(float)
    np.fill_diagonal(X, 0)
    U = np.triu(X, 1)
    U = U + U.T
    W = rng.normal(size=(N, N))
    W = W + W.T
    nodes = pd.DataFrame({"c": list("aabbcabca"), "x": rng.normal(size=N),
                          "z": rng.random(N) < 0.5})
    return U, X, W, nodes


def brute_graph(U, W, nodes):
    n = len(U)
    pairs = list(itertools.combinations(range(n), 2))
    edges = [(i, j) for i, j in pairs if U[i, j]]
    deg = U.sum(1)
    sp = lambda i, j: sum(U[i, k] and U[j, k] for k in range(n))
    gw = lambda d, ls: math.exp(d) * sum(1 - (1 - math.exp(-d)) ** l for l in ls)
    kstar = lambda k: sum(len(list(itertools.combinations(np.flatnonzero(U[v]), k)))
                          for v in range(n))
    c, x, z = nodes["c"], nodes["x"], nodes["z"]
    cycles = 0
    for q in itertools.combinations(range(n), 4):
        a, b, cc, d = q
        for p in ((a, b, cc, d), (a, b, d, cc), (a, cc, b, d)):
            cycles += all(U[p[k], p[(k + 1) % 4]] for k in range(4))
    trails = 0  # ordered walks along three distinct edges, each trail met twice
    for a, b, cc, d in itertools.product(range(n), repeat=4):
        steps = [frozenset(s) for s in ((a, b), (b, cc), (cc, d))]
        if all(U[tuple(s)] for s in ((a, b), (b, cc), (cc, d))) and len(set(steps)) == 3:
            trails += 1
    lam = 3.0
    return {
        "edges": len(edges),
        ("kstar", 2): kstar(2), ("kstar", 3): kstar(3), ("kstar", 4): kstar(4),
        ("kstar", 5): kstar(5),
        "triangle": sum(U[i, j] and U[j, k] and U[i, k]
                        for i, j, k in itertools.combinations(range(n), 3)),
        "isolates": int((deg == 0).sum()),
        ("cycle", 4): cycles,
        "threetrail": trails // 2,
        ("altkstar", lam): sum((-1) ** k * kstar(k) / lam ** (k - 2) for k in range(2, n)),
        ("gwesp", 0.7): gw(0.7, [sp(i, j) for i, j in edges]),
        ("gwdsp", 0.7): gw(0.7, [sp(i, j) for i, j in pairs]),
        ("nodematch", "c"): sum(c[i] == c[j] for i, j in edges),
        ("nodecov", "x"): sum(x[i] + x[j] for i, j in edges),
        ("absdiff", "x"): sum(abs(x[i] - x[j]) for i, j in edges),
        ("nodefactor", "z"): sum(int(z[i]) + int(z[j]) for i, j in edges),
        ("edgecov", "w"): sum(W[i, j] for i, j in edges),
    }


def brute_digraph(X, W, nodes):
    n = len(X)
    arcs = [(i, j) for i in range(n) for j in range(n) if X[i, j]]
    others = lambda i, j: [k for k in range(n) if k not in (i, j)]
    count = lambda i, j, test: sum(bool(test(k)) for k in others(i, j))
    gw = lambda d, ls: math.exp(d) * sum(1 - (1 - math.exp(-d)) ** l for l in ls)
    star = lambda degrees, k: sum(math.comb(int(d), k) for d in degrees)
    c, x, z = nodes["c"], nodes["x"], nodes["z"]
    d = 0.6
    return {
        "edges": len(arcs),
        "mutual": sum(X[i, j] and X[j, i] for i, j in itertools.combinations(range(n), 2)),
        ("istar", 2): star(X.sum(0), 2), ("istar", 3): star(X.sum(0), 3),
        ("ostar", 2): star(X.sum(1), 2), ("ostar", 3): star(X.sum(1), 3),
        "m2star": sum(X[i, k] and X[k, j] for i, j in itertools.permutations(range(n), 2)
                      for k in others(i, j)),
        "ttriple": sum(count(i, j, lambda k: X[i, k] and X[k, j]) for i, j in arcs),
        "ctriple": sum(count(i, j, lambda k: X[j, k] and X[k, i]) for i, j in arcs) // 3,
        ("dgwesp_OTP", d): gw(d, [count(i, j, lambda k: X[i, k] and X[k, j]) for i, j in arcs]),
        ("dgwesp_ITP", d): gw(d, [count(i, j, lambda k: X[j, k] and X[k, i]) for i, j in arcs]),
        ("dgwesp_OSP", d): gw(d, [count(i, j, lambda k: X[i, k] and X[j, k]) for i, j in arcs]),
        ("dgwesp_ISP", d): gw(d, [count(i, j, lambda k: X[k, i] and X[k, j]) for i, j in arcs]),
        ("dgwdsp_OTP", d): gw(d, [count(i, j, lambda k: X[i, k] and X[k, j])
                                  for i, j in itertools.permutations(range(n), 2)]),
        ("nodematch", "c"): sum(c[i] == c[j] for i, j in arcs),
        ("nodecov", "x"): sum(x[i] + x[j] for i, j in arcs),
        ("absdiff", "x"): sum(abs(x[i] - x[j]) for i, j in arcs),
        ("nodeocov", "x"): sum(x[i] for i, j in arcs),
        ("nodeicov", "x"): sum(x[j] for i, j in arcs),
        ("nodeofactor", "z"): sum(int(z[i]) for i, j in arcs),
        ("nodeifactor", "z"): sum(int(z[j]) for i, j in arcs),
        ("edgecov", "w"): sum(W[i, j] for i, j in arcs),
    }


@pytest.mark.parametrize("directed", [False, True])
def test_every_mapped_alias_counts_its_statistic(data, directed):
    U, X, W, nodes = data
    G = nx.from_numpy_array(X if directed else U,
                            create_using=nx.DiGraph if directed else nx.Graph)
    expected = brute_digraph(X, W, nodes) if directed else brute_graph(U, W, nodes)
    mapped = vexa.effects(directed)
    mapped = set(mapped[(mapped.kind == "alias") & (mapped.maps_to != "")].name)
    # A digraph's gwesp and gwdsp are its transitive kinds, dgwesp_OTP and dgwdsp_OTP (each
    # model names one of the two).
    same = {"gwesp": "dgwesp_OTP", "gwdsp": "dgwdsp_OTP"} if directed else {}
    assert mapped <= {t if isinstance(t, str) else t[0] for t in expected} | {
        "triangles", "twopath"} | set(same)
    terms = list(expected)
    counted = vexa.statistics(G, terms, attributes=nodes, covariates={"w": W})
    for term, value in zip(terms, counted):
        assert value == pytest.approx(expected[term], rel=2e-6, abs=1e-9), term
    for alias, kind in same.items():
        counted = vexa.statistics(G, [(alias, 0.6)]).iloc[0]
        assert counted == pytest.approx(expected[(kind, 0.6)], rel=2e-6), alias


def test_aliases_without_an_equal_effect_are_refused():
    G = nx.path_graph(4)
    for term, closest in [(("gwdegree", 0.5), "AS"), (("gwnsp", 0.5), "A2P")]:
        with pytest.raises(vexa.VexaError, match="the closest is " + closest):
            vexa.statistics(G, ["edges", term])
    # What the refusal says of gwdegree holds: AS at lambda = e^d is lambda (2 edges - gwdegree).
    G = nx.gnp_random_graph(12, 0.3, seed=2)
    lam = math.exp(0.4)
    gwdegree = lam * sum(1 - (1 - 1 / lam) ** d for _, d in G.degree())
    alternating = vexa.statistics(G, [("AS", lam)]).iloc[0]
    assert alternating == pytest.approx(lam * (2 * G.number_of_edges() - gwdegree), rel=1e-5)
    listed = vexa.effects()
    assert {"structural", "alias", "categorical"} <= set(listed.kind)
    assert listed.meaning.str.len().min() > 0
