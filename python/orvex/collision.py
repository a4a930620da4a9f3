"""Collisions between shapes."""

from __future__ import annotations

from typing import Iterable, List, Tuple

from . import _orvex
from ._orvex import Collision, Shape

__all__ = ["Collision", "collisions", "interferences"]


def collisions(shapes: Iterable[Shape], *, preset: str = "balanced",
               overlap_shapes: bool = False) -> List[Collision]:
    """The pairs of shapes that touch, overlap or hold each other.

    preset: "fast" (meshes alone), "balanced", "strict" (everything exactly) or "accurate".
    overlap_shapes: keep the common of each overlapping pair.
    Returns: one `Collision` for each such pair, by the places of the shapes in the list. One that
        `is_contact` touches without a common volume.
    """
    found = _orvex.collisions(list(shapes), preset=preset, overlap_shapes=overlap_shapes)
    return [result for result in found if result.has_collision]


def interferences(shapes: Iterable[Shape], tolerance: float = 0.0) -> List[Tuple[int, int]]:
    """The pairs of places whose shapes have a common of a volume above the tolerance."""
    return _orvex.interferences(list(shapes), tolerance)


def _repr(self: Collision) -> str:
    state = "contact" if self.is_contact else f"overlap of {self.overlap_volume:g}"
    return f"<orvex.Collision: {self.first} and {self.second}, {state}>"


setattr(Collision, "__repr__", _repr)
