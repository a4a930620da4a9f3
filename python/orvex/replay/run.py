"""Runs replay scripts, and tells how what they build compares with its source."""

from __future__ import annotations

import time
from dataclasses import dataclass, field
from typing import Any, Dict, Iterable, Iterator, List, Optional, Tuple

from .. import compound
from .._orvex import EquivalenceReport, Shape, compare
from ..step import Model
from .host import Built, Host

# What says more about the source than about the rebuild.
_OF_SOURCE = {"source_invalid"}


@dataclass
class Outcome:
    """What became of one solid."""

    solid: int
    strategy: str
    """That of the plan."""
    shape: Optional[Shape] = None
    """What counts: the rebuild if it is equivalent, else the solid from the exact text."""
    built: Optional[Built] = None
    """What the script has built, equivalent or not."""
    report: Optional[EquivalenceReport] = None
    """Of `built` against the source."""
    replaced: bool = False
    """`shape` is not what the strategy built."""
    reason: str = ""
    """Why the script's own solid does not count."""
    seconds: float = 0.0
    errors: List[str] = field(default_factory=list)
    """Commands that failed on the way."""

    @property
    def is_built(self) -> bool:
        return self.built is not None and self.built.shape is not None

    @property
    def equivalent(self) -> bool:
        """What the script built is equivalent to its source."""
        return self.report is not None and self.report.equivalent

    @property
    def equivalent_but_source(self) -> bool:
        """As `equivalent`, but for faults that the source has itself."""
        return self.report is not None and set(self.report.failures) <= _OF_SOURCE

    def __repr__(self) -> str:
        state = "equivalent" if self.equivalent else self.reason
        return f"<Outcome: solid {self.solid}, {self.strategy}, {state}>"


def run_script(text: str, *, strategy: bool = False, name: str = "replay script",
               host: Optional[Host] = None) -> Tuple[dict, Host]:
    """Runs the text of a replay script against a host, a new one unless given.

    Returns: what the script's `replay` gives, and the host.
    Caveat: a script is a program; run only those whose source you know.
    """
    scope: Dict[str, Any] = {"__name__": "orvex_replay_script"}
    exec(compile(text, name, "exec"), scope)  # a script is meant to be run
    if "replay" not in scope:
        raise ValueError(f"{name}: it is no replay script, it has no function replay")
    scope["REPLAY_EXPERIMENTAL_STRATEGY_BUILD"] = strategy
    if host is None:
        host = Host(scope.get("REPLAY_BUNDLE"), strategy=strategy)
    return scope["replay"](host), host


def rebuild(model: Model, *, strategy: bool = False, solids: Optional[Iterable[int]] = None
            ) -> Iterator[Outcome]:
    """Rebuilds solids of a model through their scripts, one by one.

    solids: their ids; all of them unless given.
    Errors: ValueError for an id that the model does not have.
    """
    sources = compound([part.shape for part in model]).solids
    wanted = list(range(1, len(sources) + 1)) if solids is None else list(solids)
    for number in wanted:
        if not 1 <= number <= len(sources):
            raise ValueError(f"solid: {number} is none of 1 to {len(sources)}")
    for number in wanted:
        yield _rebuild_one(model, number, sources[number - 1], strategy)


def _rebuild_one(model: Model, number: int, source: Shape, strategy: bool) -> Outcome:
    begin = time.perf_counter()
    result, host = run_script(model.script(solid=number), strategy=strategy,
                              name=f"solid_{number}.py")
    outcome = Outcome(number, result["strategy"], built=host.built, errors=errors_in(result))
    if outcome.is_built:
        outcome.report = compare(source, host.built.shape)  # type: ignore[union-attr,arg-type]
    outcome.reason = _reason(outcome)
    outcome.shape = host.built.shape if outcome.equivalent_but_source else _exact(host)  # type: ignore[union-attr]
    outcome.replaced = not outcome.equivalent_but_source
    outcome.seconds = time.perf_counter() - begin
    return outcome


def _exact(host: Host) -> Optional[Shape]:
    return host._exact({})


def _reason(outcome: Outcome) -> str:
    if outcome.built is None:
        return "; ".join(outcome.errors) or "the script asked for no solid"
    if not outcome.is_built:
        return outcome.built.failure
    return ", ".join(outcome.report.failures) if outcome.report else ""


def errors_in(result: dict) -> List[str]:
    """What the commands of a run have failed with, as "step: error"."""
    steps = [result.get("strategyResult"), *result.get("created", [])]
    return [f"{step.get('kind', 'strategy')}: {answer['error']}"
            for step in steps if step
            for answer in [step.get("apiResult")] if answer and not answer["ok"]]


def table(outcomes: List[Outcome]) -> str:
    """How each strategy fared: solids tried, built, equivalent, and the reasons of the rest."""
    rows: List[Tuple[str, ...]] = [("strategy", "tried", "built", "equivalent", "all digits", "parts")]
    for name in sorted({outcome.strategy for outcome in outcomes}):
        rows.append(_row(name, [one for one in outcomes if one.strategy == name]))
    rows.append(_row("all", outcomes))
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    lines = ["  ".join(cell.ljust(width) if at in (0, 5) else cell.rjust(width)
                       for at, (cell, width) in enumerate(zip(row, widths))).rstrip()
             for row in rows]
    return "\n".join([*lines, *_reasons(outcomes)])


def _row(name: str, outcomes: List[Outcome]) -> Tuple[str, ...]:
    built = [one for one in outcomes if one.is_built]
    good = [one for one in outcomes if one.equivalent]
    parts: Dict[str, int] = {}
    for one in good:
        for form, count in (one.built.forms if one.built else {}).items():
            parts[form.split()[-1]] = parts.get(form.split()[-1], 0) + count
    told = ", ".join(f"{count} {form}" for form, count in sorted(parts.items()))
    full = sum(one.built is not None and one.built.digits == "exact" for one in good)
    return (name, str(len(outcomes)), str(len(built)), str(len(good)), str(full), told)


def _reasons(outcomes: List[Outcome]) -> List[str]:
    counts: Dict[str, List[int]] = {}
    for one in outcomes:
        if not one.equivalent:
            counts.setdefault(f"{one.strategy}: {one.reason}", []).append(one.solid)
    lines = []
    for reason, solids in counts.items():
        named = ", ".join(map(str, solids[:5])) + (", ..." if len(solids) > 5 else "")
        lines.append(f"not equivalent: {len(solids)} {reason} (solid {named})")
    return lines


def as_record(path: str, outcomes: List[Outcome], strategy: bool) -> dict:
    """The outcomes as one JSON object."""
    return {"schema": "orvex.replay-run", "version": 1, "file": path, "strategy": strategy,
            "solids": [_record(one) for one in outcomes]}


def _record(one: Outcome) -> dict:
    record = {"solid": one.solid, "strategy": one.strategy, "built": one.is_built,
              "equivalent": one.equivalent, "replaced": one.replaced, "reason": one.reason,
              "seconds": round(one.seconds, 3)}
    if one.built is not None:
        record.update(way=one.built.way, digits=one.built.digits, parts=[
            {"role": part.role, "form": part.form, "faceIds": part.face_ids}
            for part in one.built.parts])
    if one.report is not None:
        record.update(volumeError=one.report.volume_error, areaError=one.report.area_error,
                      boxDeviation=one.report.box_deviation)
    return record
