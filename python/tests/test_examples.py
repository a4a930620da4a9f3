"""The examples do what they say."""

import math
import re
import subprocess
import sys

from conftest import SAMPLE, SOURCE


def run(name, *arguments):
    done = subprocess.run([sys.executable, SOURCE / "examples" / "python" / name, *arguments],
                          capture_output=True, text=True, timeout=300)
    assert done.returncode == 0, done.stderr
    return done.stdout


def test_check_a_file():
    text = run("check_a_file.py", SAMPLE)
    assert "size 354.0 x 220.0 x 180.0" in text
    assert text.endswith("written and read again: <orvex.EquivalenceReport: equivalent>\n")


def test_collisions_of_an_assembly():
    text = run("collisions_of_an_assembly.py", SAMPLE)
    assert text.startswith("119 solids, 0 overlaps, 93 contacts\n")
    assert len(re.findall(r"^ +\d+ +\d+  contact +0\.000$", text, re.M)) == 5


def test_edit_a_replay():
    text = run("edit_a_replay.py")
    assert "volume 23214.602 before, 22869.027 after, 22869.027 by hand" in text


def test_parametric_bracket():
    lines = run("parametric_bracket.py").splitlines()
    for line, wall in zip(lines, (4, 6, 8), strict=True):
        volume = 30 * (60 * wall + 1.5 * wall * (50 - wall)) - math.pi * (0.75 * wall) ** 2 * wall
        assert line == f"wall {wall}: volume {volume:9.2f}, valid"
