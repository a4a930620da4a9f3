"""orvex replay --run: the command line hands the model to this package."""

import json
import os
import pathlib
import subprocess

import jsonschema

from conftest import SAMPLE, SOURCE

ORVEX = pathlib.Path(os.environ["ORVEX_BIN"]) / "orvex"
SCHEMA = SOURCE / "apps" / "orvex" / "schemas" / "orvex.replay-run.schema.json"


def orvex(*arguments, **environment):
    clean = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    return subprocess.run([ORVEX, "replay", *map(str, arguments)], capture_output=True, text=True,
                          timeout=300, env={**clean, **environment})


def test_the_package_is_found_beside_the_program(tmp_path):
    report = tmp_path / "report.json"
    done = orvex(SAMPLE, "--run", "--strategy", "--solid", 1, "--report", report)
    assert done.returncode == 0, done.stderr
    assert done.stdout.splitlines()[0].split() == ["strategy", "tried", "built", "equivalent", "all",
                                                   "digits", "parts"]
    record = json.loads(report.read_text())
    jsonschema.validate(record, json.loads(SCHEMA.read_text()))
    assert record["solids"][0]["equivalent"] and record["solids"][0]["parts"]


def test_one_json_object(tmp_path):
    out = tmp_path / "out.step"
    done = orvex(SAMPLE, "--run", "--json", "--solid", 2, "-o", out)
    record = json.loads(done.stdout)
    jsonschema.validate(record, json.loads(SCHEMA.read_text()))
    assert [one["solid"] for one in record["solids"]] == [2] and out.stat().st_size > 1000


def test_what_does_not_go_together():
    for arguments in (("--strategy",), ("--run", "--face", 1), ("--run", "--bundle"),
                      ("--run", "--time-limit", 3), ("--report", "r.json"),
                      ("--run", "--solid", 9999)):
        done = orvex(SAMPLE, *arguments)
        assert done.returncode == 2 and done.stderr and not done.stdout, arguments
    done = orvex(SAMPLE, "--run", ORVEX_PYTHON="/no/such/python")
    assert done.returncode == 4 and "ORVEX_PYTHON" in done.stderr
    assert orvex("none.step", "--run").returncode == 3
