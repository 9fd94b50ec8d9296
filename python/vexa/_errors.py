"""The errors vexa raises: the engine's one line, and a warning for a fit that did not converge."""

try:
    from ._vexa import VexaError
except ImportError:  # the module built beside the engine, found on the path (tests, build tree)
    from _vexa import VexaError


class VexaNotConverged(UserWarning):
    """An estimation ended without a converged run; its estimates are not to be trusted."""
