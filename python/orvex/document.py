"""Parametric shapes in a document, with expressions and undo."""

from __future__ import annotations

import contextlib
import os
import pathlib
from typing import Any, Dict, Iterable, Iterator, List, MutableMapping, Tuple, Union

from . import _orvex
from ._orvex import Shape

# How a document in the kernel's binary format begins: the kernel crashes over other files.
_MAGIC = b"BINFILE"

PathLike = Union[str, "os.PathLike[str]"]


def kinds() -> Dict[str, Dict[str, Tuple[str, Any]]]:
    """The kinds of parametric shapes: of each its parameters, with their ranges and defaults."""
    return _orvex.kinds()


def _exact(name: str, options: Iterable[str]) -> str:
    """The option that is meant: case, blanks and underscores do not count.

    A name without an option comes back as it is; the library refuses it and tells what there is.
    """
    def key(text: str) -> str:
        return text.replace(" ", "").replace("_", "").lower()

    return next((option for option in options if key(option) == key(name)), name)


class Feature:
    """A parametric shape in a document.

    Its parameters are items: `feature["length"] = 12` changes one, and `feature["length"]` tells it.
    A text in place of a number is an expression over the feature's other parameters and the
    document's global ones: `feature["height"] = "2*Width"`. What depends on a change is rebuilt at
    once, or at the end of a transaction.
    """

    def __init__(self, document: "Document", entry: str) -> None:
        self._document = document
        self.entry = entry

    def __repr__(self) -> str:
        return f"<orvex.Feature: {self.name}>"

    def __eq__(self, other: object) -> bool:
        return (isinstance(other, Feature) and self._document is other._document
                and self.entry == other.entry)

    def __hash__(self) -> int:
        return hash(self.entry)

    @property
    def name(self) -> str:
        return self._document._face.name(self.entry)

    @property
    def kind(self) -> str:
        """"Box" and so on; empty for a shape without parameters."""
        return self._document._face.kind(self.entry)

    @property
    def shape(self) -> Shape:
        return self._document._face.shape(self.entry)

    @property
    def parameters(self) -> Dict[str, Any]:
        """Numbers, three numbers for points and directions, shapes."""
        return self._document._face.parameters(self.entry)

    def _field(self, name: str) -> str:
        return _exact(name, _orvex.kinds().get(self.kind, {}))

    def __getitem__(self, name: str) -> Any:
        return self.parameters[self._field(name)]

    def __setitem__(self, name: str, value: Any) -> None:
        face, name = self._document._face, self._field(name)
        with self._document._change():
            if isinstance(value, str):
                face.set_expression(self.entry, name, value)
            else:
                face.set_parameter(self.entry, name, value)

    def expression(self, name: str) -> str:
        """The expression of a parameter; empty for one without."""
        return self._document._face.expression(self.entry, self._field(name))


class GlobalParameters(MutableMapping[str, float]):
    """The global parameters of a document, by their names."""

    def __init__(self, document: "Document") -> None:
        self._document = document

    def __getitem__(self, name: str) -> float:
        return float(self._document._face.globals()[name])

    def __setitem__(self, name: str, value: float) -> None:
        with self._document._change():
            self._document._face.set_global(name, value)

    def __delitem__(self, name: str) -> None:
        raise ValueError(f"{name}: global parameters are not taken away")

    def __iter__(self) -> Iterator[str]:
        return iter(self._document._face.globals())

    def __len__(self) -> int:
        return len(self._document._face.globals())

    def __repr__(self) -> str:
        return f"<orvex.GlobalParameters: {dict(self)}>"


class Document:
    """A document of parametric shapes: a new one, or one from a file.

        >>> document = orvex.Document()
        >>> document.parameters["wall"] = 4
        >>> plate = document.add("box", length=40, width=20, height=5)
        >>> plate["height"] = "2*wall"
        >>> plate.shape.volume
        6400.0

    Caveat: the library keeps one document per process. Another one closes the first, whose use is
    then a ValueError; its shapes stay. Expressions are not saved, global parameters are, in a file
    beside the document.
    """

    def __init__(self, path: PathLike = "") -> None:
        name = os.fspath(path)
        if name:
            with open(name, "rb") as file:
                if file.read(len(_MAGIC)) != _MAGIC:
                    raise _orvex.KernelError(f"{name}: it is no document in the binary format")
        self._face = _orvex.DocumentFace(name)
        self._depth = 0

    def __repr__(self) -> str:
        if not self._face.is_open:
            return "<orvex.Document: closed>"
        return f"<orvex.Document: {len(self.features)} features>"

    def __enter__(self) -> "Document":
        return self

    def __exit__(self, *exception: object) -> None:
        self.close()

    def close(self) -> None:
        self._face.close()

    def add(self, kind: str, /, **parameters: Any) -> Feature:
        """Makes a shape of a kind; `orvex.kinds()` tells kinds and parameters.

        Case, blanks and underscores of names do not count: `bottom_radius` is "Bottom Radius".

        Errors: ValueError for an unknown kind or parameter, or one out of range.
        """
        known = _orvex.kinds()
        word = _exact(kind, known)
        given = {_exact(name, known.get(word, {})): value for name, value in parameters.items()}
        with self._change():
            return Feature(self, self._face.add(word, given))

    @property
    def features(self) -> List[Feature]:
        """The free shapes of the document."""
        return [Feature(self, entry) for entry in self._face.entries()]

    @property
    def parameters(self) -> GlobalParameters:
        """The global parameters, which expressions of all features see."""
        return GlobalParameters(self)

    @contextlib.contextmanager
    def transaction(self) -> Iterator[None]:
        """Changes inside are one undo step, rebuilt at the end; an exception takes them back.

        Global parameters are no part of it.
        """
        self._face.begin()
        self._depth += 1
        try:
            yield
            self._face.recompute()
        except BaseException:
            self._depth -= 1
            self._face.abort()
            raise
        self._depth -= 1
        self._face.commit()

    def _change(self) -> Any:
        return contextlib.nullcontext() if self._depth else self.transaction()

    def undo(self) -> bool:
        """Returns: whether there was a step to take back."""
        return self._face.undo()

    def redo(self) -> bool:
        return self._face.redo()

    def save(self, path: PathLike) -> None:
        """Writes the document (.xbf), and its global parameters beside it."""
        target = pathlib.Path(path)
        if not target.parent.is_dir():
            raise FileNotFoundError(f"{target}: there is no folder {target.parent}")
        self._face.save(str(target), _orvex.sidecar(str(target)))
