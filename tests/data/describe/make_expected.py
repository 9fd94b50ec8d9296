#!/usr/bin/env python3
"""Expected descriptive statistics of the bundled undirected networks, computed with networkx.

Run once from the repository root; the C++ tests read only the files this writes:
    python3 tests/data/describe/make_expected.py

A network file is an n x n matrix; as the store reads it, a value of exactly 1 above the
diagonal is an edge and everything else is not.
"""

import os
import statistics
import sys

import networkx as nx

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.dirname(HERE)
NETWORKS = ["flomarriage.txt", "faux.mesa.high.txt"]
COMMAND = "python3 tests/data/describe/make_expected.py"


def read_network(path):
    with open(path) as f:
        values = f.read().split()
    n = int(round(len(values) ** 0.5))
    assert n * n == len(values), path
    g = nx.Graph()
    g.add_nodes_from(range(n))
    for a in range(n):
        for b in range(a + 1, n):
            if float(values[a * n + b]) == 1.0:
                g.add_edge(a, b)
    return g


def quartile(sorted_distances, numerator):
    """Smallest g such that at least numerator/4 of the pairs lie at distance g or less."""
    pairs = len(sorted_distances)
    for g in range(0, (sorted_distances[-1] if pairs else 0) + 1):
        if 4 * sum(1 for d in sorted_distances if d <= g) >= numerator * pairs:
            return g
    return 0


def describe(g):
    n = g.number_of_nodes()
    nodes = sorted(g.nodes())
    out = []
    degrees = [g.degree(v) for v in nodes]
    out.append(("nodes", [n]))
    out.append(("edges", [g.number_of_edges()]))
    out.append(("degrees", degrees))
    out.append(("transitivity", [nx.transitivity(g)]))
    local = nx.clustering(g)
    out.append(("average_clustering", [nx.average_clustering(g, count_zeros=True)]))
    out.append(("local_clustering_variance", [statistics.variance([local[v] for v in nodes])]))
    components = sorted((len(c) for c in nx.connected_components(g)), reverse=True)
    out.append(("component_sizes", components))

    lengths = dict(nx.all_pairs_shortest_path_length(g))
    counts = [0] * n  # entry d-1: pairs at distance d, d = 1 .. n-1
    distances = []
    for a in nodes:
        for b in nodes:
            if a < b:
                if b in lengths[a]:
                    counts[lengths[a][b] - 1] += 1
                    distances.append(lengths[a][b])
                else:
                    distances.append(n)  # no path counts as distance n
    unreachable = n * (n - 1) // 2 - sum(counts)
    out.append(("geodesics", counts[: n - 1] + [unreachable]))
    distances.sort()
    out.append(("geodesic_quartiles", [quartile(distances, q) for q in (1, 2, 3)]))

    tri = nx.triangles(g)
    out.append(("triangles", [tri[v] for v in nodes]))

    partner_counts = [0] * max(n - 1, 0)  # pairs with exactly k shared partners
    for a in nodes:
        for b in nodes:
            if a < b:
                partner_counts[len(list(nx.common_neighbors(g, a, b)))] += 1
    out.append(("shared_partner_histogram", partner_counts))

    # Ties of each node whose endpoints have no common neighbour.
    et0 = [sum(1 for u in g.neighbors(v) if not list(nx.common_neighbors(g, u, v))) for v in nodes]
    out.append(("ties_in_no_triangle", et0))
    return out


def text(value):
    return repr(float(value)) if isinstance(value, float) else str(value)


def main():
    for name in NETWORKS:
        g = read_network(os.path.join(DATA, name))
        target = os.path.join(HERE, name.replace(".txt", ".expected.txt"))
        with open(target, "w") as f:
            f.write("# written by: %s (networkx %s)\n" % (COMMAND, nx.__version__))
            for key, values in describe(g):
                f.write(key + " " + " ".join(text(v) for v in values) + "\n")
        print("wrote", target, file=sys.stderr)


if __name__ == "__main__":
    main()
