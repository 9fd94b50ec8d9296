"""The compiled engine: inside the installed package, or built beside the sources."""

try:
    from ._vexa import effect_list, resolve_terms, run_task
except ImportError:
    from _vexa import effect_list, resolve_terms, run_task

__all__ = ["effect_list", "resolve_terms", "run_task"]
