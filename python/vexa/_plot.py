"""The goodness-of-fit figure: one panel per model statistic (the sampled values as a box, the
observed value as a red point), then the distributions of degrees, geodesic distances and,
for digraphs, the triad census (a box per value, the observed network as a red line)."""

import math

import numpy as np

TRIAD_CLASSES = ["300", "210", "120C", "120D", "120U", "201", "111D", "111U", "030T", "030C",
                 "102", "021D", "021C", "021U", "012", "003"]


def _padded(sample, observed):
    width = max(sample.shape[1] if sample.size else 0, len(observed))
    s = np.zeros((sample.shape[0], width))
    s[:, :sample.shape[1]] = sample
    o = np.zeros(width)
    o[:len(observed)] = observed
    return s, o


def _distribution(ax, sample, observed, labels, title, xlabel):
    ax.boxplot(sample, showfliers=False, patch_artist=True,
               boxprops={"facecolor": "0.9", "edgecolor": "0.4"})
    positions = np.arange(1, len(observed) + 1)
    ax.plot(positions, observed, color="red", lw=1.5, marker="o", ms=3)
    ax.set_xticks(positions)
    ax.set_xticklabels(labels, rotation=90 if len(labels) > 8 else 0, fontsize=7)
    ax.set_title(title, fontsize=9)
    ax.set_xlabel(xlabel, fontsize=8)


def _trimmed(sample, observed, first):
    """The columns from `first` to the last one any network uses."""
    s, o = _padded(sample, observed)
    used = np.flatnonzero((s.sum(axis=0) > 0) | (o > 0))
    last = max([first] + list(used))
    return s[:, first:last + 1], o[first:last + 1], list(range(first, last + 1))


def gof_figure(gof, path=None):
    from matplotlib.figure import Figure
    statistics = list(gof.statistics.columns)
    panels = len(statistics) + (4 if gof.directed else 2)
    columns = math.ceil(math.sqrt(panels))
    rows = math.ceil(panels / columns)
    fig = Figure(figsize=(3.2 * columns, 2.8 * rows), layout="constrained")
    axes = fig.subplots(rows, columns, squeeze=False).ravel()
    for ax in axes[panels:]:
        ax.set_visible(False)
    for k, name in enumerate(statistics):
        ax = axes[k]
        ax.boxplot(gof.statistics[name].to_numpy(), showfliers=False, patch_artist=True,
                   boxprops={"facecolor": "0.9", "edgecolor": "0.4"})
        ax.plot([1], [gof.table["observed"].iloc[k]], "o", color="red", ms=7)
        ax.set_title(name, fontsize=9)
        ax.set_xticks([])
        ax.set_xlabel("t = %.2f" % gof.table["t"].iloc[k], fontsize=8)
    profile = gof.observed_profile
    k = len(statistics)
    degrees = [(gof.degree, profile["degree"], "Degree distribution")]
    if gof.directed:
        degrees = [(gof.in_degree, profile["in_degree"], "In-degree distribution"),
                   (gof.degree, profile["degree"], "Out-degree distribution")]
    for sample, observed, title in degrees:
        s, o, keep = _trimmed(sample, observed, 0)
        _distribution(axes[k], s, o, [str(d) for d in keep], title, "degree")
        k += 1
    n = gof.n
    # Entry d counts the pairs at distance d, entry n those without a path.
    s, o = _padded(gof.geodesics, profile["geodesics"])
    wanting = max(0, n + 1 - len(o))
    s, o = np.pad(s, ((0, 0), (0, wanting))), np.pad(o, (0, wanting))
    fs, fo, keep = _trimmed(s[:, :n], o[:n], 1)
    _distribution(axes[k], np.column_stack([fs, s[:, n]]), np.append(fo, o[n]),
                  [str(d) for d in keep] + ["inf"], "Geodesic distribution", "distance")
    k += 1
    if gof.directed:
        s, o = _padded(gof.triads, profile["triads"])
        _distribution(axes[k], s, o, TRIAD_CLASSES[:len(o)], "Triad census", "class")
    distance = "not available" if np.isnan(gof.mahalanobis) else "%.2f" % gof.mahalanobis
    fig.suptitle("Goodness of fit: %d samples; Mahalanobis distance %s"
                 % (len(gof.statistics), distance))
    if path is not None:
        fig.savefig(path, dpi=100)
    return fig
