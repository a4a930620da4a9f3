"""Picks: what a line meets."""

from __future__ import annotations

from typing import Iterable, List, Sequence

from . import _orvex
from ._orvex import PickResult, Shape

__all__ = ["PickResult", "Picker"]


class Picker:
    """Finds what a line meets, the nearest first.

    level: "vertex", "edge", "face" or "solid".
    tolerance: how far the line may pass by a vertex or an edge, in model units.
    A shape that was changed in place has to be given anew.
    """

    def __init__(self, shapes: Iterable[Shape], *, level: str = "face",
                 tolerance: float = 0.1) -> None:
        if not tolerance >= 0:
            raise ValueError("tolerance: 0 or above")
        self._system = _orvex.PickingSystem()
        self._system.set_level(level)
        self._system.set_tolerance(tolerance)
        self._system.set_shapes(list(shapes))

    def pick(self, origin: Sequence[float], direction: Sequence[float]) -> List[PickResult]:
        """All hits of the line through `origin` along `direction`, which need not be a unit."""
        return self._system.pick(origin, direction)


def _repr(self: PickResult) -> str:
    x, y, z = self.point
    return f"<orvex.PickResult: {self.level} of shape {self.shape_index} at ({x:g}, {y:g}, {z:g})>"


setattr(PickResult, "__repr__", _repr)
