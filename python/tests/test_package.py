"""The package as a whole: types, docs, import time, every name, no leaks."""

import gc
import inspect
import os
import pathlib
import re
import resource
import subprocess
import sys

import orvex
import orvex._orvex
import orvex.replay

PACKAGE = pathlib.Path(os.environ["ORVEX_SOURCE"]) / "python" / "orvex"


def test_mypy_accepts_the_package_and_its_use(tmp_path):
    use = tmp_path / "use.py"
    use.write_text("import orvex\nplate: orvex.Shape = orvex.box(1, 2, 3) - orvex.sphere(1)\n"
                   "volume: float = plate.volume\n")
    done = subprocess.run([sys.executable, "-m", "mypy", "--cache-dir", str(tmp_path / "cache"),
                           "--disallow-untyped-defs", str(PACKAGE), str(use)],
                          capture_output=True, text=True, cwd=PACKAGE.parent)
    assert done.returncode == 0, done.stdout
    wrong = tmp_path / "wrong.py"
    wrong.write_text("import orvex\nvolume: str = orvex.box(1, 2, 3).volume\n")
    done = subprocess.run([sys.executable, "-m", "mypy", "--cache-dir", str(tmp_path / "cache"),
                           str(wrong)], capture_output=True, text=True, cwd=PACKAGE.parent)
    assert done.returncode == 1 and "Incompatible types" in done.stdout


def test_the_types_name_what_the_module_has():
    types = (PACKAGE / "_orvex.pyi").read_text()
    told = set(re.findall(r"^(?:class|def) (\w+)", types, re.M)) | {"__version__"}
    present = {name for name in vars(orvex._orvex) if not name.startswith("__")} | {"__version__"}
    assert told == present
    for name, kind in inspect.getmembers(orvex._orvex, inspect.isclass):
        section = types.split(f"class {name}")[1].split("\nclass ")[0] if name in told else ""
        for member in vars(kind):
            if not member.startswith("_") and not name == "KernelError":
                assert f"def {member}(" in section, f"{name}.{member}"


def test_everything_public_is_documented():
    for module in (orvex, orvex.replay):
        assert module.__doc__ and len(module.__doc__) > 200
        for name in module.__all__:
            if not name.startswith("__") and name != "COMMANDS":
                assert getattr(module, name).__doc__, name


def test_the_package_brings_no_more_than_it_needs():
    code = ("import sys, orvex, orvex.replay\n"
            "assert 'numpy' not in sys.modules, 'numpy is loaded'\n"
            "print(len(orvex.__version__))")
    done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True)
    assert done.returncode == 0 and done.stdout == "5\n", done.stderr


def test_the_kernel_does_not_print(capfd, tmp_path):
    orvex.box(1, 2, 3).write(tmp_path / "box.step")
    orvex.read_step(tmp_path / "box.step")
    assert capfd.readouterr() == ("", "")


def test_ten_thousand_shapes_leave_nothing_behind():
    def cycle(count):
        for _ in range(count):
            shape = orvex.box(1, 2, 3)
            shape.faces[0].area
            shape.to_bytes()
        gc.collect()
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss

    before = cycle(2000)
    assert cycle(10000) - before < 4096, "kilobytes more"
