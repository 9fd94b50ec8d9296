"""The Florentine marriage network: estimate the alternating model (edge, AS, AT and A2P with
lambda 2), test its goodness of fit against 1,000 sampled networks, and save the figure.

    /usr/bin/python3 python/examples/flomarriage.py [FIGURE.png]

The same fit through the command line: from examples/, `../build/vexa --seed 1 --auto
flomarriage_alternating.txt` (vexa.estimate's auto=True is the command line's --auto).
"""

import os
import sys
import time

import networkx as nx
import numpy as np

import vexa

started = time.monotonic()
root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
families = ["Acciaiuoli", "Albizzi", "Barbadori", "Bischeri", "Castellani", "Ginori",
            "Guadagni", "Lamberteschi", "Medici", "Pazzi", "Peruzzi", "Pucci", "Ridolfi",
            "Salviati", "Strozzi", "Tornabuoni"]
# The bundled matrix holds the 16 families, Pucci among them without a marriage (networkx's
# florentine_families_graph leaves it out).
matrix = np.loadtxt(os.path.join(root, "examples", "flomarriage.txt"))
G = nx.relabel_nodes(nx.from_numpy_array(matrix), dict(enumerate(families)))

fit = vexa.estimate(G, ["edge", ("AS", 2), ("AT", 2), ("A2P", 2)], seed=1, runs=10)
print(fit, end="\n\n")
gof = fit.gof(seed=2)
print(gof, end="\n\n")
path = sys.argv[1] if len(sys.argv) > 1 else "flomarriage_gof.png"
fit.plot_gof(gof, path=path)
print("figure saved to %s; %.2f s from start to figure" % (path, time.monotonic() - started))
