"""Estimates held to closed forms, networks in and out of networkx, errors and interrupts."""

import math
import os
import signal
import threading
import time

import networkx as nx
import numpy as np
import pandas as pd
import pytest
import scipy.sparse

import vexa

QUICK = {"runs": 1, "phase3_steps": 200, "progress": False}


def logit(p):
    return math.log(p / (1 - p))


def test_edge_alone_is_the_log_odds_of_the_density():
    # A model of independent ties: the maximum likelihood estimate is the density's log-odds.
    G = nx.florentine_families_graph()
    n, m = G.number_of_nodes(), G.number_of_edges()
    fit = vexa.estimate(G, ["edge"], seed=1, **QUICK)
    assert list(fit.estimates.columns) == ["estimate", "se", "t"]
    assert fit.estimates.loc["edge", "estimate"] == pytest.approx(logit(m / (n * (n - 1) / 2)),
                                                                  abs=1e-6)
    # A scipy matrix and a numpy array of the same network give the same estimate.
    A = nx.to_scipy_sparse_array(G)
    for same in (A, A.toarray()):
        again = vexa.estimate(same, ["edge"], seed=1, **QUICK)
        assert again.estimates.loc["edge", "estimate"] == pytest.approx(
            fit.estimates.loc["edge", "estimate"], abs=1e-9)


def test_arc_and_reciprocity_fit_the_dyad_states():
    # Dyads are independent with four states; with M mutual, A asymmetric and N null dyads the
    # likelihood is maximal at exp(arc) = A / (2N) and exp(2 arc + rec) = M / N.
    rng = np.random.default_rng(4)
    n = 14
    X = (rng.random((n, n)) < 0.25).astype(float)
    X[np.triu_indices(n, 1)] = np.where(rng.random(n * (n - 1) // 2) < 0.3, 1.0,
                                        X[np.triu_indices(n, 1)])
    np.fill_diagonal(X, 0)
    upper = np.triu_indices(n, 1)
    ties = X[upper] + X.T[upper]
    M, A, N = (ties == 2).sum(), (ties == 1).sum(), (ties == 0).sum()
    fit = vexa.estimate(nx.from_numpy_array(X, create_using=nx.DiGraph), ["arc", "reciprocity"],
                        seed=2, **QUICK)
    arc, rec = fit.estimates["estimate"]
    assert arc == pytest.approx(math.log(A / (2 * N)), abs=1e-6)
    assert 2 * arc + rec == pytest.approx(math.log(M / N), abs=1e-6)


def test_a_node_attribute_of_the_graph_enters_the_model():
    # edge + nodematch: a logistic regression on one dyad covariate, whose estimates are the
    # log-odds of a tie between different and between same categories.
    G = nx.florentine_families_graph()
    side = {v: ("north" if k % 3 else "south") for k, v in enumerate(sorted(G))}
    nx.set_node_attributes(G, side, "side")
    pairs = [(u, v) for k, u in enumerate(sorted(G)) for v in sorted(G)[k + 1:]]
    same = [p for p in pairs if side[p[0]] == side[p[1]]]
    other = [p for p in pairs if side[p[0]] != side[p[1]]]
    tied = lambda ps: sum(G.has_edge(*p) for p in ps) / len(ps)
    fit = vexa.estimate(G, ["edge", ("nodematch", "side")], seed=3, **QUICK)
    edge, match = fit.estimates["estimate"]
    assert edge == pytest.approx(logit(tied(other)), abs=1e-6)
    assert edge + match == pytest.approx(logit(tied(same)), abs=1e-6)
    assert fit.estimates.index[1].startswith("side")


def test_simulate_returns_graphs_of_the_network_kind_and_size():
    G = nx.florentine_families_graph()
    fit = vexa.estimate(G, ["edge", ("AS", 2)], seed=1, **QUICK)
    graphs = vexa.simulate(fit, 4, seed=5, burn_in=1000, thin=200, progress=False)
    assert len(graphs) == 4
    assert all(type(g) is nx.Graph and set(g) == set(G) for g in graphs)
    D = nx.gnp_random_graph(9, 0.3, seed=1, directed=True)
    digraphs = vexa.simulate(9, 3, effects=["arc", "reciprocity"], parameters=[-1.0, 1.0],
                             directed=True, seed=1, burn_in=100, thin=50, progress=False)
    assert [type(g) for g in digraphs] == [nx.DiGraph] * 3
    assert all(g.number_of_nodes() == D.number_of_nodes() for g in digraphs)
    # The same seed draws the same networks; a progress callable hears the share done go up
    # to 1.
    shares = []
    again = vexa.simulate(fit, 4, seed=5, burn_in=1000, thin=200, progress=shares.append)
    assert shares == sorted(shares) and shares[-1] == 1.0
    assert [sorted(g.edges()) for g in again] == [sorted(g.edges()) for g in graphs]


def test_goodness_of_fit_and_its_figure(tmp_path):
    G = nx.florentine_families_graph()
    # Effects given out of the vector's order: each must take its own estimate back, or the
    # samples would drift far from the observed counts.
    fit = vexa.estimate(G, [("AT", 2), "edge"], seed=1, **QUICK)
    assert fit.parameters() == list(fit.estimates["estimate"][["AT(2.00)", "edge"]])
    g = vexa.gof(fit, seed=2, burn_in=1000, iterations=20000, samples=100, progress=False)
    assert len(g.statistics) == 100
    assert g.table.loc["edge", "observed"] == G.number_of_edges()
    assert abs(g.table.loc["edge", "t"]) < 0.5 and abs(g.table.loc["AT", "t"]) < 0.5
    # The mean and spread are the samples' own.
    assert g.table.loc["edge", "mean"] == pytest.approx(g.statistics["edge"].mean())
    fit.plot_gof(g, path=tmp_path / "gof.png")
    assert (tmp_path / "gof.png").stat().st_size > 10000


def test_bayesian_gof_draws_one_network_under_each_set():
    # Edge alone: a draw under set theta has Binomial(45, logistic(theta)) edges. Sets split
    # between densities 0.1 and 0.9 give edge counts around 4.5 and 40.5, a spread no single
    # parameter gives.
    G = nx.gnp_random_graph(10, 0.5, seed=3)
    fit = vexa.estimate(G, ["edge"], seed=1, **QUICK)
    sets = [[logit(0.1)], [logit(0.9)]] * 100
    g = vexa.bayes_gof(fit, parameter_sets=sets, seed=4, burn_in=2000, progress=False)
    edges = g.statistics["edge"].to_numpy()
    assert len(edges) == 200
    assert abs(edges[0::2].mean() - 4.5) < 1.0 and abs(edges[1::2].mean() - 40.5) < 1.0
    assert 0.0 <= g.table.loc["edge", "p"] <= 1.0
    drawn = vexa.bayes_gof(fit, 50, seed=5, burn_in=500, progress=False)
    assert drawn.parameter_sets.shape == (50, 1)


def test_bad_input_raises_vexa_errors():
    G = nx.florentine_families_graph()
    cases = [
        (lambda: vexa.estimate(G, ["edge", "bogus"]), "no effect 'bogus'"),
        (lambda: vexa.estimate(np.ones((3, 4)), ["edge"]), "must be square"),
        (lambda: vexa.estimate(np.array([[0, 2], [2, 0]]), ["edge"]), "holds 2.0 at row 1"),
        (lambda: vexa.estimate(np.array([[0, 1], [0, 0]]), ["edge"], directed=False),
         "not symmetric at row 1, column 2"),
        (lambda: vexa.estimate(G, ["edge"], seed=-1), "the seed must be"),
        (lambda: vexa.estimate(G, ["edge"], runs=0), "setting 'runs'"),
        (lambda: vexa.estimate(G, ["edge", ("gwdegree", 0.5)]), "the closest is AS"),
        (lambda: vexa.estimate(G, ["edge", ("nodematch", "rank")]), "no attribute 'rank'"),
        (lambda: vexa.estimate(G, ["edge"], attributes=pd.DataFrame({"x": [1, 2]})),
         "2 rows for a network of 15 nodes"),
        (lambda: vexa.simulate(5, 0, effects=["edge"], parameters=[0]), "whole number"),
    ]
    for call, says in cases:
        with pytest.raises(vexa.VexaError, match=says.replace("(", r"\(")):
            call()


def test_ctrl_c_stops_the_engine_while_python_threads_run():
    # The engine runs without the interpreter's lock: a Python thread keeps counting, and a
    # SIGINT ends the run as KeyboardInterrupt long before the estimation would end.
    G = nx.gnp_random_graph(60, 0.1, seed=7)
    counted = [0]
    stop = threading.Event()

    def count():
        while not stop.is_set():
            counted[0] += 1
            time.sleep(0.001)

    counter = threading.Thread(target=count)
    counter.start()
    timer = threading.Timer(0.5, lambda: os.kill(os.getpid(), signal.SIGINT))
    timer.start()
    started = time.monotonic()
    try:
        with pytest.raises(KeyboardInterrupt):
            vexa.estimate(G, ["edge", ("AS", 2), ("AT", 2)], seed=1, auto=False, runs=5,
                          multiplication_factor=200, phase3_steps=5000, progress=False)
    finally:
        stop.set()
        counter.join()
        timer.cancel()
    assert time.monotonic() - started < 5
    assert counted[0] > 100
