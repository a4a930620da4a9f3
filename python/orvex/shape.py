"""Shapes: making, combining, measuring, reading and writing them."""

from __future__ import annotations

import os
import pathlib
import tempfile
from typing import TYPE_CHECKING, Callable, NamedTuple, Union

from . import _orvex
from ._orvex import Shape, box, compound, cone, cylinder, sphere, torus

if TYPE_CHECKING:
    import numpy

__all__ = ["Mesh", "Shape", "box", "compound", "cone", "cylinder", "from_bytes", "read", "sphere",
           "torus"]

PathLike = Union[str, "os.PathLike[str]"]


class Mesh(NamedTuple):
    """Triangles of a shape, as numpy arrays."""

    vertices: numpy.ndarray
    """Float64, (n, 3): places in model units. Faces do not share vertices."""
    triangles: numpy.ndarray
    """Int32, (m, 3): rows of `vertices`, counter-clockwise seen from outside."""
    faces: numpy.ndarray
    """Int32, (m,): the face of each triangle, from 1 in the order of the shape."""


def _mesh(self: Shape, linear_deflection: float = 0.1, angular_deflection: float = 0.5) -> Mesh:
    """The shape as triangles.

    linear_deflection: how far triangles may lie off the surface, in model units.
    angular_deflection: the largest angle between neighbours, in radians.
    A mesh that is on the shape already and fine enough is used as it is.
    """
    return Mesh(*self.mesh_arrays(linear_deflection, angular_deflection))


def _replaced(path: PathLike, write: Callable[[str], None]) -> None:
    """Writes beside the place and gives the file its name in one step."""
    target = pathlib.Path(path)
    if target.parent and not target.parent.is_dir():
        raise FileNotFoundError(f"{target}: there is no folder {target.parent}")
    handle, name = tempfile.mkstemp(dir=target.parent, prefix=f".{target.stem}.",
                                    suffix=target.suffix)
    os.close(handle)
    try:
        write(name)
        os.replace(name, target)
    finally:
        if os.path.exists(name):
            os.unlink(name)


def _write(self: Shape, path: PathLike, *, linear_deflection: float = 0.1,
           angular_deflection: float = 0.5) -> None:
    """Writes the shape to a file, by its ending: .brep, .step, .stp, .igs, .iges or .stl.

    The deflections are those of `mesh`, for .stl alone. A file that was there stays as it was
    unless the new one is whole.
    Errors: ValueError for another ending or a null shape, KernelError, OSError.
    """
    if self.is_null:
        raise ValueError("shape: it is null")
    ending = pathlib.Path(path).suffix.lower()
    if ending == ".brep":
        _replaced(path, lambda name: _write_bytes(name, self.to_bytes()))
    elif ending in (".step", ".stp"):
        _replaced(path, lambda name: _orvex.write_step(self, name))
    elif ending in (".igs", ".iges"):
        _replaced(path, lambda name: _orvex.write_iges(self, name))
    elif ending == ".stl":
        _replaced(path, lambda name: _orvex.write_stl(self, name, linear_deflection,
                                                      angular_deflection))
    else:
        raise ValueError(f"path: {path} ends in none of .brep, .step, .stp, .igs, .iges, .stl")


def _write_bytes(name: str, data: bytes) -> None:
    with open(name, "wb") as file:
        file.write(data)


def from_bytes(data: bytes) -> Shape:
    """The shape in a text of the kernel's BREP format, as `Shape.to_bytes` gives it."""
    return _orvex.shape_from_bytes(data)


def read(path: PathLike) -> Shape:
    """Reads a file of one shape, by its ending: .brep, .step, .stp, .igs, .iges or .stl.

    An .stl file comes as a face that carries its triangles and has no surface: `mesh` gives them.
    Several free shapes of a STEP file come as a compound; `read_step` tells their names.
    Errors: ValueError for another ending, OSError, KernelError for a file that cannot be read.
    """
    ending = pathlib.Path(path).suffix.lower()
    if ending in (".step", ".stp"):
        from .step import read_step
        shapes = [part.shape for part in read_step(path)]
        return shapes[0] if len(shapes) == 1 else compound(shapes)
    with open(path, "rb") as file:
        if ending == ".brep":
            try:
                return from_bytes(file.read())
            except ValueError:
                raise _orvex.KernelError(f"{path}: no shape in the kernel's BREP format") from None
    if ending in (".igs", ".iges"):
        return _orvex.read_iges(os.fspath(path))
    if ending == ".stl":
        return _orvex.read_stl(os.fspath(path))
    raise ValueError(f"path: {path} ends in none of .brep, .step, .stp, .igs, .iges, .stl")


def _repr(self: Shape) -> str:
    if self.is_null:
        return "<orvex.Shape: null>"
    return f"<orvex.Shape: {self.kind}, {len(self.faces)} faces>"


def _fuse(self: Shape, other: Shape) -> Shape:
    return _plain(self.fused(other))


def _cut(self: Shape, other: Shape) -> Shape:
    return _plain(self.cut(other))


def _common(self: Shape, other: Shape) -> Shape:
    return _plain(self.common(other))


def _plain(shape: Shape) -> Shape:
    """A compound of one solid is that solid."""
    return shape.solids[0] if shape.kind == "compound" and len(shape.solids) == 1 else shape


Shape.__doc__ = """A solid, face, edge or any other shape of the kernel; never changed in place.

`a + b`, `a - b` and `a & b` fuse, cut and intersect. Shapes are equal if they are the same piece
of a model at the same place; `orvex.compare` tells whether two are alike. They pickle.
"""
Shape.__module__ = "orvex"
for _name, _method in {"__repr__": _repr, "mesh": _mesh, "write": _write, "__add__": _fuse,
                       "__sub__": _cut, "__and__": _common}.items():
    setattr(Shape, _name, _method)
