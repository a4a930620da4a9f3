"""Geometry for engineers: shapes, STEP files, checks, collisions, picks and replays.

    >>> import orvex
    >>> plate = orvex.box(60, 40, 10) - orvex.cylinder(5, 30, origin=(20, 20, -10))
    >>> round(plate.volume, 3)
    23214.602
    >>> plate.write("plate.step")

Read a STEP file, and look at what is in it:

    >>> model = orvex.read_step("gearbox.step")
    >>> for part in model:
    ...     print(part.name, part.shape.volume)

Lengths are in model units (millimetres for what was read from STEP), angles in radians unless a
name says degrees. Points and directions are sequences of three numbers. What the kernel cannot do
is an `orvex.KernelError` with the kernel's own message; input that is refused is a `ValueError`
that names the parameter. Long calls release the interpreter lock.

The product tree and the documents of the library are one per process. What this package hands out
are shapes, which belong to whoever holds them: two models can be open side by side.

See also: orvex.operations, a function for each modelling operation; orvex.replay, which runs the scripts that rebuild a model.
"""

from ._orvex import KernelError, __version__
from .analysis import check, compare, curvature, draft, min_radius, thickness, zebra
from .collision import collisions, interferences
from .document import Document, Feature, kinds
from .picking import Picker
from .shape import (Shape, box, compound, cone, cylinder, from_bytes, read, sphere, torus)
from .step import Model, Part, Product, read_step

__all__ = [
    "Document", "Feature", "KernelError", "Model", "Part", "Picker", "Product", "Shape", "__version__", "box", "check", "collisions",
    "compare", "compound", "cone", "curvature", "cylinder", "draft", "from_bytes", "interferences",
    "kinds", "min_radius", "read", "read_step", "sphere", "thickness", "torus", "zebra",
]
