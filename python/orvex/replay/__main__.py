"""python -m orvex.replay: rebuilds the solids of a STEP file, or runs one replay script."""

from __future__ import annotations

import argparse
import json
import os
import pathlib
import sys
import tempfile
from typing import List, Optional

from .. import KernelError, compound, read_step
from . import Outcome, as_record, rebuild, run_script, table
from .host import Built
from .run import errors_in

DONE, FOUND, USAGE, UNREADABLE, FAILED, PARTIAL, INTERRUPTED = 0, 1, 2, 3, 4, 5, 130


def main(arguments: Optional[List[str]] = None) -> int:
    options = _parser().parse_args(arguments)
    try:
        if pathlib.Path(options.file).suffix.lower() == ".py":
            return _run_one_script(options)
        return _run_model(options)
    except KernelError as error:
        return _fail(UNREADABLE, error)
    except SyntaxError as error:
        return _fail(UNREADABLE, f"{options.file}: it is no Python: {error}")
    except ValueError as error:
        return _fail(USAGE, error)
    except OSError as error:
        return _fail(UNREADABLE if error.filename == options.file else PARTIAL, error)
    except KeyboardInterrupt:
        return _fail(INTERRUPTED, "interrupted")


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python -m orvex.replay", allow_abbrev=False,
        description="Rebuild the solids of a STEP file through their replay scripts, "
                    "or run one script.")
    parser.add_argument("file", metavar="FILE", help="a STEP file, or a replay script (.py)")
    parser.add_argument("--strategy", action="store_true",
                        help="rebuild by strategy instead of from the exact text")
    parser.add_argument("--solid", type=int, metavar="N", help="this one alone")
    parser.add_argument("--all", action="store_true", help="all solids (the default)")
    parser.add_argument("-o", "--output", metavar="OUT.step", help="write the solids")
    parser.add_argument("--report", metavar="OUT.json", help="write what became of each solid")
    parser.add_argument("--json", action="store_true", help="print the report instead of a table")
    parser.add_argument("-q", "--quiet", action="store_true", help="no progress")
    return parser


def _run_model(options: argparse.Namespace) -> int:
    if options.all and options.solid is not None:
        raise ValueError("--all and --solid: one of them")
    model = read_step(options.file)
    solids = None if options.solid is None else [options.solid]
    outcomes = []
    for outcome in rebuild(model, strategy=options.strategy, solids=solids):
        outcomes.append(outcome)
        if not options.quiet and sys.stderr.isatty():
            print(f"\r{len(outcomes)} solids", end="", file=sys.stderr, flush=True)
    if options.json:
        print(json.dumps(as_record(options.file, outcomes, options.strategy)))
    else:
        print(table(outcomes) if outcomes else "there are no solids in it")
    return _write(options, outcomes)


def _write(options: argparse.Namespace, outcomes: List[Outcome]) -> int:
    shapes = [one.shape for one in outcomes if one.shape is not None]
    if options.output and shapes:
        compound(shapes).write(options.output)
    if options.report:
        _write_text(options.report,
                    json.dumps(as_record(options.file, outcomes, options.strategy), indent=1))
    lost = [one for one in outcomes if one.shape is None]
    unlike = [one for one in outcomes if not options.strategy and one.replaced]
    return PARTIAL if lost else FOUND if unlike else DONE


def _write_text(path: str, text: str) -> None:
    target = pathlib.Path(path)
    handle, name = tempfile.mkstemp(dir=target.parent, prefix=f".{target.stem}.")
    try:
        with os.fdopen(handle, "w", encoding="utf-8") as file:
            file.write(text + "\n")
        os.replace(name, target)
    except BaseException:
        os.unlink(name)
        raise


def _run_one_script(options: argparse.Namespace) -> int:
    with open(options.file, encoding="utf-8", errors="surrogateescape") as file:
        text = file.read()
    result, host = run_script(text, strategy=options.strategy, name=options.file)
    built = host.built
    print(f"{result['scope']} {result['entityId']}: {result['strategy']}")
    for error in errors_in(result):
        print(f"failed: {error}")
    if built is None or built.shape is None:
        print(f"nothing built: {built.failure if built else 'no command has built a solid'}")
        return FAILED
    print(_told(built))
    if options.output:
        built.shape.write(options.output)
    return DONE if built.report is None or built.report.equivalent else FOUND


def _told(built: Built) -> str:
    state = "nothing to compare it with"
    if built.report is not None:
        state = "equivalent" if built.report.equivalent else ", ".join(built.report.failures)
    forms = ", ".join(f"{count} {form}" for form, count in sorted(built.forms.items()))
    return f"built: {built.way}{' of ' + forms if forms else ''}: {state}"


def _fail(code: int, error: object) -> int:
    print(f"orvex.replay: error: {error}", file=sys.stderr)
    return code


if __name__ == "__main__":
    sys.exit(main())
