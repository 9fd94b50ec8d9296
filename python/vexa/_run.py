"""One task through the engine: the request, the progress bar, the engine's error as a
VexaError."""

import numbers
import os
import sys

from ._errors import VexaError
from . import _engine


class _PlainLine:
    """A progress line on standard error, for when tqdm is not installed."""

    def __init__(self):
        self.shown = -1

    def __call__(self, share):
        percent = int(share * 100)
        if percent != self.shown:
            self.shown = percent
            sys.stderr.write("\rvexa: %3d%%" % percent)
            sys.stderr.flush()

    def close(self):
        if self.shown >= 0:
            sys.stderr.write("\n")


class _Tqdm:
    def __init__(self, tqdm, what):
        self.bar = tqdm(total=1000, desc="vexa " + what, leave=False,
                        bar_format="{desc}: {percentage:3.0f}%|{bar}| {elapsed}<{remaining}")

    def __call__(self, share):
        self.bar.update(int(share * 1000) - self.bar.n)

    def close(self):
        self.bar.close()


def progress_of(progress, what):
    """The callable the engine's events move, and what closes it. `progress`: None (a bar when
    standard error is a terminal), True, False or a callable taking the share done."""
    if progress is None:
        progress = sys.stderr.isatty()
    if callable(progress) and not isinstance(progress, bool):
        return progress, lambda: None
    if not progress:
        return None, lambda: None
    try:
        from tqdm import tqdm
        bar = _Tqdm(tqdm, what)
    except ImportError:
        bar = _PlainLine()
    return bar, bar.close


def check_seed(seed):
    if seed is None:
        return None
    if (isinstance(seed, bool) or not isinstance(seed, numbers.Integral)
            or not 0 <= seed <= 4294967295):
        raise VexaError("vexa: the seed must be a whole number from 0 to 4294967295, found %r"
                        % (seed,))
    return int(seed)


def run(task, network, effects, values, columns, covariate, settings, seed, automatic=False,
        keep_networks=False, density=0.0, progress=None, observed=True, parameter_sets=None):
    """Runs one task; `effects` as (name, lambda), `values` one per effect. Returns the
    engine's result dict. Ctrl-C stops the engine and raises KeyboardInterrupt."""
    engine_settings = settings.engine()
    if settings.output_dir is not None:
        os.makedirs(settings.output_dir, exist_ok=True)
        engine_settings["output_dir"] = os.path.abspath(settings.output_dir)
    request = {
        "task": task, "directed": network.directed, "n": network.n, "name": task,
        "adjacency": network.matrix if observed else None, "density": float(density),
        "effects": [(name, float(v), float(lam)) for (name, lam), v in zip(effects, values)],
        "attributes": columns, "covariate": covariate, "settings": engine_settings,
        "seed": check_seed(seed), "automatic": bool(automatic),
        "keep_networks": bool(keep_networks),
    }
    if parameter_sets is not None:
        request["parameter_sets"] = [list(map(float, s)) for s in parameter_sets]
    update, close = progress_of(progress, task)
    try:
        result = _engine.run_task(request, update)
        if update is not None and not result["error"]:
            update(1.0)  # a run that converged early ends short of its plan
    finally:
        close()
    if result["error"]:
        raise VexaError(result["error"])
    return result
