"""The modelling operations: a function for each, by the names and options of `orvex op`.

    >>> import orvex
    >>> from orvex import operations
    >>> skin = operations.offset(orvex.box(10, 10, 10), distance=1, join="intersection")
    >>> round(skin.volume)
    1728
    >>> operations.face_geometry(orvex.box(1, 2, 3))["vertices"]
    8

Inputs are shapes in the order that the operation wants, options are keywords. An operation gives its
shape, or what it found as a dictionary if there is no shape to it. `operate` gives both, and notes
about the way to the result. Operands stay as they are. `help(operations.offset)` tells the options.
"""

from __future__ import annotations

import json
from typing import Any, Callable, Dict, List, NamedTuple, Optional, Tuple

from . import _orvex
from ._orvex import Shape


class Operated(NamedTuple):
    """What an operation gives."""

    shape: Optional[Shape]
    """None for an operation that only finds something out."""
    facts: Dict[str, Any]
    """Numbers, words and truths by name."""
    notes: List[str]
    """About the way to the result, such as which attempts failed and why."""


def operate(name: str, *shapes: Shape, **options: Any) -> Operated:
    """Runs an operation by its name; blanks of names are underscores.

    Errors: ValueError for an unknown operation or option, one out of range, or another number of
    shapes than it takes; KernelError for what the kernel cannot do.
    """
    given = {key.replace("_", "-"): value for key, value in options.items()}
    shape, facts, notes = _orvex.operate(name.replace("_", "-"), list(shapes), given)
    return Operated(None if shape.is_null else shape, json.loads(facts), notes)


def _function(name: str, summary: str, inputs: str,
              options: Dict[str, Tuple[str, str, Any]]) -> Callable[..., Any]:
    def operation(*shapes: Shape, **given: Any) -> Any:
        result = operate(name, *shapes, **given)
        return result.facts if result.shape is None else result.shape

    operation.__name__ = operation.__qualname__ = name.replace("-", "_")
    operation.__module__ = __name__
    lines = [f"{summary}.", "", f"shapes: {inputs or 'none'}."]
    for option, (meaning, allowed, preset) in options.items():
        default = "" if preset is None else f", {preset} unless given"
        lines.append(f"{option.replace('-', '_')}: {meaning} ({allowed}{default})")
    operation.__doc__ = "\n".join(lines)
    return operation


def _functions() -> Dict[str, Callable[..., Any]]:
    return {name.replace("-", "_"): _function(name, *told)
            for name, told in _orvex.operations().items()}


globals().update(_functions())
__all__ = ["Operated", "operate", *(name.replace("-", "_") for name in _orvex.operations())]


def __getattr__(name: str) -> Callable[..., Any]:
    """For type checkers; what there is stands in the module."""
    raise AttributeError(f"there is no operation {name!r}; there are {', '.join(__all__[2:])}")
