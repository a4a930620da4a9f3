"""What the tests of the command line share: calling it, and looking at what came back.

The environment tells where things are: ORVEX_BIN (the folder of the programs), ORVEX_SOURCE (the
checkout), and for some tests ORVEX_TEST_DATA (a folder of STEP files with a facts.json).
"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import unittest

import jsonschema

PROGRAM = pathlib.Path(os.environ["ORVEX_BIN"]) / "orvex"
SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])
SAMPLE = SOURCE / "examples" / "gear-reducer.step"
DATA = os.environ.get("ORVEX_TEST_DATA")
NO_DATA = "ORVEX_TEST_DATA names no folder of STEP files"

# An orvex that neither ends nor obeys its own time limit is a fault, not a reason to wait.
PATIENCE_SECONDS = 240


class Answer:
    """One finished call: exit code and what was written."""

    def __init__(self, code, out, err):
        self.code, self.out, self.err = code, out, err

    @property
    def error_lines(self):
        return [line for line in self.err.decode().splitlines() if line.startswith("orvex: error: ")]

    @property
    def warning_lines(self):
        return [line for line in self.err.decode().splitlines() if line.startswith("orvex: warning: ")]

    def json(self):
        """The one object on standard output, checked against the schema that it names."""
        if self.out.count(b"\n") != 1 or not self.out.endswith(b"\n"):
            raise AssertionError(f"not one line on standard output: {self.out[:300]!r}")
        value = json.loads(self.out.decode("utf-8"))
        jsonschema.validate(value, schema(value["schema"]))
        return value

    def entry(self):
        (entry,) = self.json()["files"]
        return entry


def schema(name):
    path = SOURCE / "apps" / "orvex" / "schemas" / f"{name}.schema.json"
    return json.loads(path.read_text())


def environment(changes):
    """The environment of a call, with nothing in it that decides about colours.

    The kernel leaks when a read of its own is broken off, and its writer leaks always. Whether the
    library leaks is for the library's tests to say, with the sanitizer in the same process.
    """
    env = {key: value for key, value in os.environ.items() if key not in ("NO_COLOR", "TERM")}
    env["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
    env.update(changes)
    return env


def command(arguments):
    return [os.fspath(PROGRAM), *[a if isinstance(a, bytes) else str(a) for a in arguments]]


def orvex(*arguments, env=(), **more):
    done = subprocess.run(command(arguments), capture_output=True, env=environment(dict(env)),
                          timeout=PATIENCE_SECONDS, check=False, **more)
    return Answer(done.returncode, done.stdout, done.stderr)


def restore_interrupts():
    """A shell's background job starts with interrupts ignored, and its children keep that."""
    signal.signal(signal.SIGINT, signal.SIG_DFL)


def start_orvex(*arguments):
    return subprocess.Popen(command(arguments), stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            env=environment({}), preexec_fn=restore_interrupts)


def main():
    """Runs a file's tests. Exit code 77 tells ctest that every one of them was skipped."""
    program = unittest.main(module="__main__", exit=False, verbosity=2)
    result = program.result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.testsRun and len(result.skipped) == result.testsRun else 0)
