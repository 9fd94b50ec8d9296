#!/usr/bin/python3
"""Checks an HTML report of vexa against the text reports of the same run, and (with --png)
the screenshot a browser made of it.

  check_html_report.py HTML OUTDIR NAME [--network FILE --kind graph|digraph] [--png PNG]

The page must fetch nothing (no script, no external source, stylesheet or font). Every value
the page plots carries data-* attributes; each is set beside the number the text report prints
for it, within the last printed digit: the estimates, standard errors, t-ratios and stars of
the estimation report, the verdict of the convergence file, the goodness-of-fit table (p-values
of the Bayesian form too), the triad census block, the mean count per degree and per distance
over the per-sample degree and geodesic files (and the observed degrees, recounted from the
network file), and a simulation's means and standard deviations over its sample statistics.
The screenshot must not be blank: many non-white pixels, many colours, and the red of the
observed values. Exits 1 with one line per fault.
"""
import argparse
import html.parser
import math
import os
import re
import sys

faults = []


def fault(text):
    faults.append(text)


class Items(html.parser.HTMLParser):
    """Every element with a class and data-* attributes, as (class, {name: value})."""

    def __init__(self):
        super().__init__()
        self.items = []
        self.tags = []

    def handle_starttag(self, tag, attrs):
        self.tags.append((tag, dict(attrs)))
        values = {k[5:]: v for k, v in attrs if k.startswith("data-")}
        cls = dict(attrs).get("class", "")
        if values:
            self.items.append((cls.split()[0] if cls else tag, values))


def number(text):
    return float("nan") if text in ("nan", "-nan") else float(text)


def close(a, b, tolerance):
    if math.isnan(a) or math.isnan(b):
        return math.isnan(a) and math.isnan(b)
    return abs(a - b) <= tolerance * (1.0 + 1e-9)


def printed_tolerance(text):
    """Half a unit in the last printed digit of a number in a text report."""
    decimals = len(text.split(".")[1]) if "." in text else 0
    return 0.5 * 10 ** -decimals + 1e-12


def check_fetches(page):
    for pattern in (r"<script", r"<link", r"<img", r"<iframe", r"\bsrc\s*=", r"url\(", r"@import",
                    r"href\s*="):
        if re.search(pattern, page, re.I):
            fault("the page would fetch something: it has %s" % pattern)


def of_class(items, cls):
    return [v for c, v in items if c == cls]


def last_table(lines, heading):
    """The rows under the last line that starts with `heading`, up to a blank line."""
    starts = [k for k, line in enumerate(lines) if line.startswith(heading)]
    if not starts:
        return []
    rows = []
    for line in lines[starts[-1] + 1:]:
        if not line.strip():
            break
        rows.append(line.rstrip("\n").split("\t"))
    return rows


def compare(what, html_value, text_value):
    if not close(number(html_value), number(text_value), printed_tolerance(text_value)):
        fault("%s: the page has %s, the text report %s" % (what, html_value, text_value))


def check_estimation(items, outdir, name):
    rows = of_class(items, "estimate")
    if not rows:
        return 0
    lines = open(os.path.join(outdir, "estimation_%s.txt" % name)).readlines()
    table = {r[0]: r for r in last_table(lines, "effects\testimates")}
    for row in rows:
        text = table.get(row["effect"])
        if text is None:
            fault("estimate of %s: not in the estimation report" % row["effect"])
            continue
        compare("estimate of " + row["effect"], row["estimate"], text[1])
        compare("standard error of " + row["effect"], row["se"], text[2])
        compare("t-ratio of " + row["effect"], row["t"], text[3])
        starred = len(text) > 4 and text[4].strip() == "*"
        if starred != (row["significant"] == "1"):
            fault("significance of %s differs from the report's star" % row["effect"])
    verdicts = re.findall(r"^verdict\t(.*)$",
                          open(os.path.join(outdir, "convergence_%s.txt" % name)).read(), re.M)
    runs = of_class(items, "run")
    if not runs or not verdicts or runs[-1]["verdict"] != verdicts[-1]:
        fault("verdict: the page has %s, the convergence file %s" %
              (runs[-1]["verdict"] if runs else "none", verdicts[-1] if verdicts else "none"))
    return len(rows)


def check_gof(items, outdir, name):
    boxes = of_class(items, "box")
    if not boxes:
        return 0
    lines = open(os.path.join(outdir, "gof_%s.txt" % name)).readlines()
    table = {r[0]: r for r in last_table(lines, "effects\tobserved")}
    for box in boxes:
        text = table.get(box["name"])
        if text is None:
            fault("goodness of fit of %s: not in the report" % box["name"])
            continue
        for column, key in ((1, "observed"), (2, "mean"), (3, "sd"), (4, "t"), (5, "p")):
            if key in box or column < 5:
                compare("%s of %s" % (key, box["name"]), box[key], text[column])
    census = {r[0]: r for r in last_table(lines, "Triad\tobserved")}
    for item in of_class(items, "dist"):
        if item["kind"] == "triad":
            text = census[item["category"]]
            compare("observed triads " + item["category"], item["observed"], text[1])
            compare("mean triads " + item["category"], item["mean"], text[2])
    return len(boxes)


def columns(path):
    """A per-sample file as its header and its rows of numbers (comment lines skipped)."""
    lines = [l for l in open(path).read().splitlines() if l and not l.startswith("#")]
    header = lines[0].rstrip("\t").split("\t")
    return header, [[float(x) for x in l.rstrip("\t").split("\t")] for l in lines[1:]]


def mean_counts(per_sample):
    """Mean over the samples of the number of nodes at each degree."""
    top = max(max(row) for row in per_sample)
    means = [0.0] * (int(top) + 1)
    for row in per_sample:
        for value in row:
            means[int(value)] += 1.0 / len(per_sample)
    return means


def check_against(items, kind, expected, what):
    found = {i["category"]: i for i in of_class(items, "dist") if i["kind"] == kind}
    if not found:
        return 0  # the page does not plot this distribution (a simulation's)
    for category, value in expected.items():
        if category in found:
            if not close(number(found[category][what]), value, 1e-6):
                fault("%s %s %s: the page has %s, the files give %.10g" %
                      (kind, what, category, found[category][what], value))
        elif value != 0.0:
            fault("%s %s: the files give %.10g, the page has no such category" %
                  (kind, category, value))
    return len(found)


def observed_degrees(network, digraph):
    rows = [[float(x) for x in l.split()] for l in open(network).read().splitlines() if l.strip()]
    n = len(rows)
    out_degrees = [sum(1 for j in range(n) if j != i and rows[i][j] == 1) for i in range(n)]
    in_degrees = [sum(1 for i in range(n) if i != j and rows[i][j] == 1) for j in range(n)]
    if not digraph:
        # A graph's matrix counts its upper triangle.
        out_degrees = [sum(1 for j in range(n) if j != i and rows[min(i, j)][max(i, j)] == 1)
                       for i in range(n)]
    return in_degrees, out_degrees


def check_distributions(items, outdir, name, network, digraph):
    checked = 0
    path = os.path.join(outdir, "degree_distribution_%s.txt" % name)
    if os.path.exists(path):
        header, rows = columns(path)
        parts = {"degree": "d"} if not digraph else {"in-degree": "ind", "out-degree": "outd"}
        for kind, prefix in parts.items():
            picked = [k for k, h in enumerate(header) if re.fullmatch(prefix + r"\d+", h)]
            means = mean_counts([[row[k] for k in picked] for row in rows])
            checked += check_against(items, kind, {str(d): m for d, m in enumerate(means)}, "mean")
        if network:
            in_d, out_d = observed_degrees(network, digraph)
            for kind, degrees in (("in-degree", in_d), ("out-degree", out_d), ("degree", out_d)):
                if kind == "degree" and digraph or kind != "degree" and not digraph:
                    continue
                counts = mean_counts([degrees])
                check_against(items, kind, {str(d): c for d, c in enumerate(counts)}, "observed")
    path = os.path.join(outdir, "geodesic_distribution_%s.txt" % name)
    if os.path.exists(path):
        header, rows = columns(path)
        expected = {}
        for k, h in enumerate(header):
            category = "no path" if h == "geoInf" else h[3:]
            expected[category] = sum(row[k] for row in rows) / len(rows)
        checked += check_against(items, "geodesic", expected, "mean")
    return checked


def check_simulation(items, outdir, name):
    traces = [t for t in of_class(items, "trace") if "count" in t]
    if not traces:
        return 0
    header, rows = columns(os.path.join(outdir, "sample_statistics_%s.txt" % name))
    for trace in traces:
        k = header.index(trace["name"])
        values = [row[k] for row in rows]
        mean = sum(values) / len(values)
        sd = math.sqrt(sum((v - mean) ** 2 for v in values) / (len(values) - 1))
        # The file prints weighted statistics with two decimals.
        if not close(number(trace["mean"]), mean, 0.005) or not close(number(trace["sd"]), sd,
                                                                     0.01):
            fault("simulation of %s: the page has mean %s sd %s, the file %.4f %.4f" %
                  (trace["name"], trace["mean"], trace["sd"], mean, sd))
    return len(traces)


def check_png(path, observed):
    from PIL import Image
    image = Image.open(path).convert("RGB")
    pixels = list(image.getdata())
    inked = sum(1 for p in pixels if p != (255, 255, 255))
    colours = len(set(pixels))
    red = sum(1 for r, g, b in pixels if r > 180 and g < 90 and b < 90)
    share = inked / len(pixels)
    # A page with observed values draws them in red.
    if share < 0.01 or colours < 16 or (observed and red < 50):
        fault("%s looks blank: %.1f%% non-white pixels, %d colours, %d red pixels" %
              (path, 100 * share, colours, red))
    return share, colours, red


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("html")
    parser.add_argument("outdir")
    parser.add_argument("name")
    parser.add_argument("--network")
    parser.add_argument("--kind", default="graph")
    parser.add_argument("--png")
    args = parser.parse_args()
    page = open(args.html, encoding="utf-8").read()
    check_fetches(page)
    reader = Items()
    reader.feed(page)
    counts = {
        "estimates": check_estimation(reader.items, args.outdir, args.name),
        "gof": check_gof(reader.items, args.outdir, args.name),
        "distributions": check_distributions(reader.items, args.outdir, args.name, args.network,
                                             args.kind == "digraph"),
        "simulation": check_simulation(reader.items, args.outdir, args.name),
    }
    if sum(counts.values()) == 0:
        fault("%s: nothing to check" % args.html)
    summary = ", ".join("%s %d" % kv for kv in counts.items() if kv[1])
    if args.png:
        share, colours, red = check_png(args.png, 'class="observed"' in page)
        summary += "; png %.1f%% inked, %d colours, %d red pixels" % (100 * share, colours, red)
    for line in faults:
        print("check_html_report: " + line)
    print("%s: %s: %s" % (os.path.basename(args.html), "FAILED" if faults else "ok", summary))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
