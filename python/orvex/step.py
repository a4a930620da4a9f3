"""Reading STEP files."""

from __future__ import annotations

import json
import os
from typing import Any, Callable, Dict, Iterator, List, NamedTuple, Optional, Tuple, Union

from . import _orvex
from ._orvex import Shape

PathLike = Union[str, "os.PathLike[str]"]
Progress = Callable[[str, float], Any]

_POLL_SECONDS = 0.05


class Part(NamedTuple):
    """A free shape of a file, where it stands."""

    shape: Shape
    name: str
    """Unique in the file."""
    color: Optional[Tuple[float, float, float]]
    """Red, green and blue from 0 to 1, linear; None for a part without one."""


class Product(NamedTuple):
    """A node of the product tree: an assembly, or the occurrence of a part."""

    name: str
    part: Optional[Part]
    """The part of the model that it is; None for an assembly, and below one that came as a whole."""
    placement: Tuple[Tuple[float, float, float, float], ...]
    """In its parent: four rows, the last column the translation in millimetres."""
    children: Optional[Tuple["Product", ...]]
    """None for a part."""

    def walk(self, depth: int = 0) -> "Iterator[Tuple[int, Product]]":
        """The node and all below it, each with its depth, in the order of display."""
        yield depth, self
        for child in self.children or ():
            yield from child.walk(depth + 1)


class Model:
    """What a STEP file holds: its free shapes in order, and the documents of a replay.

    `len(model)`, `model[0]` and loops give `Part`s. Ids of faces, shells and solids count from 1 in
    the order of the file's shapes.
    """

    def __init__(self, path: str, read: Any) -> None:
        self.path = path
        self._read = read
        self.parts: List[Part] = [Part(*item) for item in read.items]
        named = {part.name: part for part in self.parts}
        self.tree: Tuple[Product, ...] = tuple(_product(node, named) for node in read.product_tree)
        """The roots of the product tree."""

    def __len__(self) -> int:
        return len(self.parts)

    def __getitem__(self, index: int) -> Part:
        return self.parts[index]

    def __iter__(self) -> Iterator[Part]:
        return iter(self.parts)

    def __repr__(self) -> str:
        return f"<orvex.Model: {os.path.basename(self.path)}, {len(self)} shapes>"

    @property
    def report(self) -> dict:
        """Schema, unit, counts, the kernel's messages and what was lost; see `read_step`."""
        return self._read.report

    @property
    def manifest(self) -> dict:
        """Counts, ids of shells and solids, features by kind."""
        return json.loads(self._read.manifest())

    @property
    def summary(self) -> dict:
        """Every entity with its ids and counts."""
        return json.loads(self._read.summary())

    @property
    def features(self) -> list:
        """The feature candidates."""
        return json.loads(self._read.features())

    @property
    def solid_ids(self) -> List[int]:
        return self.manifest["solidIds"]

    def plan(self, *, face: int = 0, shell: int = 0, solid: int = 0) -> dict:
        """The steps that rebuild one face, shell or solid; without steps for an unknown id."""
        return json.loads(self._of("plan", face, shell, solid))

    def payload(self, *, face: int = 0, shell: int = 0, solid: int = 0) -> dict:
        """Its exact geometry; empty for an unknown id."""
        return json.loads(self._of("payload", face, shell, solid))

    def script(self, *, face: int = 0, shell: int = 0, solid: int = 0) -> str:
        """The Python script that rebuilds it in a host; `orvex.replay` is one."""
        return self._of("script", face, shell, solid)

    def _of(self, document: str, face: int, shell: int, solid: int) -> str:
        ids = {"face": face, "shell": shell, "solid": solid}
        named = [(kind, number) for kind, number in ids.items() if number]
        if len(named) != 1 or named[0][1] < 0:
            raise ValueError("name one of face, shell and solid, by an id from 1")
        kind, number = named[0]
        return getattr(self._read, f"{kind}_{document}")(number)


def _product(node: Any, named: Dict[str, Part]) -> Product:
    name, shape, placement, children = node
    below = None if children is None else tuple(_product(child, named) for child in children)
    return Product(name, named.get(shape), placement, below)


def read_step(path: PathLike, *, progress: Optional[Progress] = None, isolated: bool = False,
              time_limit: float = 0.0, report: bool = True) -> Model:
    """Reads a STEP file.

    progress: called with the stage ("parse", "transfer", "collect", "hand-over") and its fraction
        from 0 to 1, -1 where that is unknown. What it raises ends the read.
    isolated: read in a process of its own, which a file from strangers may take down; costs some
        60 ms.
    time_limit: seconds after which an isolated read is given up; 0 for never.
    report: collect what `Model.report` tells.
    Errors: OSError for a file that is not there, KernelError for one that cannot be read. Ctrl-C
        stops the read.
    """
    name = os.fspath(path)
    with open(name, "rb"):
        pass
    if time_limit < 0:
        raise ValueError("time_limit: 0 or above")
    read = _orvex.StepRead(name, isolated, time_limit, report)
    read.start()
    try:
        while not read.wait(_POLL_SECONDS):
            _tell(read, progress)
        _tell(read, progress)
    except BaseException:
        read.cancel()
        read.wait(3600)
        raise
    if not read.succeeded:
        raise _orvex.KernelError(f"{name}: {read.error or 'there are no shapes in it'}")
    return Model(name, read)


def _tell(read: Any, progress: Optional[Progress]) -> None:
    latest = read.take_progress()
    if progress is not None and latest is not None:
        progress(*latest)
