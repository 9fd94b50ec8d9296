"""Models as Python users write them: effect names, alternating effects with their lambda,
R-style term aliases with their arguments; and the settings of a run."""

from dataclasses import dataclass, asdict, fields
import numbers

from ._errors import VexaError
from ._network import BINARY, CONTINUOUS, CATEGORICAL, column, natural_kind
from . import _engine

PROPOSALS = ("toggle", "swap", "receiver_move", "tie_no_tie", "closure")

# Aliases that read an attribute of one kind: the column is handed over as that kind.
_ALIAS_KINDS = {"nodematch": CATEGORICAL, "nodecov": CONTINUOUS, "absdiff": CONTINUOUS,
                "nodeocov": CONTINUOUS, "nodeicov": CONTINUOUS, "nodefactor": BINARY,
                "nodeofactor": BINARY, "nodeifactor": BINARY}


def parse_terms(effects):
    """Each effect as (name, number or None, attribute or None): "edge", ("AS", 2),
    ("gwesp", 0.5), ("kstar", 2), ("nodematch", "grade")."""
    if isinstance(effects, (str, tuple)):
        effects = [effects]
    if not effects:
        raise VexaError("vexa: the model needs at least one effect")
    terms = []
    for k, e in enumerate(effects):
        if isinstance(e, str):
            terms.append((e, None, None))
            continue
        if not isinstance(e, (tuple, list)) or not e or not isinstance(e[0], str) or len(e) > 2:
            raise VexaError("vexa: effect %d must be a name or a (name, argument) pair such as "
                            "(\"AS\", 2), found %r" % (k + 1, e))
        if len(e) == 1:
            terms.append((e[0], None, None))
        elif isinstance(e[1], str):
            terms.append((e[0], None, e[1]))
        elif isinstance(e[1], numbers.Real) and not isinstance(e[1], bool):
            terms.append((e[0], float(e[1]), None))
        else:
            raise VexaError("vexa: effect '%s': its argument must be a number or an attribute's "
                            "name, found %r" % (e[0], e[1]))
    return terms


def _categorical_suffixes(directed):
    return [name.split("_", 1)[1] for name, kind, *_ in _engine.effect_list(directed)
            if kind == "categorical"]


def attribute_columns(terms, table, directed):
    """The attribute columns the model reads, each of the kind its effects need: a column
    named by a category effect (nodematch, Grade_Same_Category_edge) is categorical whatever
    its type; otherwise true/false columns are binary, numbers continuous, the rest
    categorical."""
    kinds = {}
    suffixes = _categorical_suffixes(directed)
    for name, _, attribute in terms:
        if attribute is not None and name in _ALIAS_KINDS and attribute in table.columns:
            kinds[attribute] = _ALIAS_KINDS[name]
    for name in table.columns:
        if name in kinds:
            continue
        prefix = str(name) + "_"
        if any(t[0] == prefix + s for t in terms for s in suffixes):
            kinds[name] = CATEGORICAL
        elif any(t[0].startswith(prefix) for t in terms):
            kinds[name] = natural_kind(table[name])
    return [column(table, name, kind) for name, kind in kinds.items()]


def resolve(terms, directed, columns, covariate):
    """The vexa effects of the terms, as (name, lambda)."""
    return _engine.resolve_terms(terms, directed, columns, covariate[0] if covariate else "")


def values_for(values, labels, what):
    """Starting values or parameters, one per effect: a sequence in effect order or a dict by
    label."""
    if values is None:
        return [0.0] * len(labels)
    if isinstance(values, dict):
        unknown = [k for k in values if k not in labels]
        if unknown:
            raise VexaError("vexa: %s name an effect not in the model: '%s'" % (what, unknown[0]))
        missing = [k for k in labels if k not in values]
        if missing:
            raise VexaError("vexa: %s give no value for effect '%s'" % (what, missing[0]))
        values = [values[k] for k in labels]
    values = [float(v) for v in values]
    if len(values) != len(labels):
        raise VexaError("vexa: %s hold %d values for %d effects" % (what, len(values), len(labels)))
    if not all(v == v and abs(v) != float("inf") for v in values):
        raise VexaError("vexa: %s must be finite numbers" % what)
    return values


@dataclass
class Settings:
    """How a task runs; the defaults are the R package's. `sampler` names the proposal (None:
    the automatic mode chooses); `output_dir` asks for the engine's report files there."""
    runs: int = 3
    subphases: int = 5
    gain: float = 0.1
    multiplication_factor: int = 2
    phase3_steps: int = 500
    burn_in: float = 10000
    iterations: float = 100000
    samples: int = 1000
    sampler: str = None
    degree_cap: int = None
    check: bool = False
    chains: int = None
    threads: int = None
    method: str = "sa"
    output_dir: str = None

    def __post_init__(self):
        lowest = {"runs": 1, "subphases": 0, "multiplication_factor": 1, "phase3_steps": 2,
                  "samples": 1, "degree_cap": 0, "chains": 1, "threads": 1}
        for name, low in lowest.items():
            value = getattr(self, name)
            if value is None and name in ("degree_cap", "chains", "threads"):
                continue
            if (isinstance(value, bool) or not isinstance(value, numbers.Integral)
                    or value < low or value > 2**31 - 1):
                raise VexaError("vexa: setting '%s' must be a whole number of %d or more, found %r"
                                % (name, low, value))
        for name in ("gain", "burn_in", "iterations"):
            value = getattr(self, name)
            if not isinstance(value, numbers.Real) or not 0 <= value < float("inf"):
                raise VexaError("vexa: setting '%s' must be a number of 0 or more, found %r"
                                % (name, value))
        if self.sampler is not None and self.sampler not in PROPOSALS:
            raise VexaError("vexa: setting 'sampler' must be one of %s" % ", ".join(PROPOSALS))
        if self.method not in ("sa", "ee"):
            raise VexaError("vexa: setting 'method' must be \"sa\" (stochastic approximation) "
                            "or \"ee\" (equilibrium expectation)")
        if self.chains is not None and self.chains > 1024:
            raise VexaError("vexa: setting 'chains' must be at most 1024")

    def engine(self):
        d = asdict(self)
        d["sampler_code"] = -1 if self.sampler is None else PROPOSALS.index(self.sampler)
        d["sampler"] = self.sampler or "toggle"
        d["check"] = 1 if self.check else 0
        return d


def settings_of(settings, overrides):
    """A Settings from a Settings, a dict or None, with keyword overrides."""
    if settings is None:
        settings = {}
    if isinstance(settings, Settings):
        settings = asdict(settings)
    if not isinstance(settings, dict):
        raise VexaError("vexa: settings must be a vexa.Settings or a dict")
    known = {f.name for f in fields(Settings)}
    for key in overrides:
        if key not in known:
            raise VexaError("vexa: unknown setting '%s'; vexa.Settings lists them" % key)
    return Settings(**{**settings, **overrides})
