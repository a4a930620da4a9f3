"""Comparing, checking and measuring shapes."""

from __future__ import annotations

from typing import Iterable, Union

from . import _orvex
from ._orvex import (CheckReport, EquivalenceReport, Shape, compare, curvature, draft, min_radius,
                     thickness, zebra)

__all__ = ["CheckReport", "EquivalenceReport", "check", "compare", "curvature", "draft",
           "min_radius", "thickness", "zebra"]


def check(shapes: Union[Shape, Iterable[Shape]], **thresholds: float) -> CheckReport:
    """Finds what is wrong or troublesome: invalid topology, open shells, short edges, tiny faces.

    thresholds: short_edge, small_hole_radius, small_blend_radius, small_chamfer_width (model
        units), tiny_face_area, max_issues_per_shape.
    """
    listed = [shapes] if isinstance(shapes, Shape) else list(shapes)
    return _orvex.check(listed, **thresholds)  # type: ignore[arg-type]


def _equivalence_repr(self: EquivalenceReport) -> str:
    words = "equivalent" if self.equivalent else ", ".join(self.failures)
    return f"<orvex.EquivalenceReport: {words}>"


def _check_repr(self: CheckReport) -> str:
    return (f"<orvex.CheckReport: {self.critical_count} critical, {self.warning_count} warnings, "
            f"{self.info_count} notes>")


setattr(EquivalenceReport, "__repr__", _equivalence_repr)
setattr(CheckReport, "__repr__", _check_repr)
