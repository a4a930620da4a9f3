"""The floors of src/: a file may include its own folder and lower ones, never a higher one.

Folders on one floor may use each other, but not both ways round.
"""
import fnmatch
import os
import pathlib
import re
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])

# Lowest first; the first pattern that fits a path counts, so what stands above its own folder comes
# before it.
FLOORS = [
    ("src/features/registration/*", 6),
    ("src/assembly/AssemblyConstraint*", 6),
    ("src/assembly/AssemblyGeometry*", 6),
    ("src/step/rebuild/*", 7),
    ("src/step/*", 6),
    ("src/operations/*", 6),
    ("src/creators/*", 5),
    ("src/features/*", 4),
    ("src/picking/*", 4),
    ("src/collision/*", 4),
    ("src/analysis/*", 6),
    ("src/assembly/*", 4),
    ("src/parameters/*", 3),
    ("src/document/*", 2),
    ("src/kernel/*", 1),
    ("src/foundation/*", 1),
    ("apps/*", 8),
    ("python/*", 9),
]
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def floor_of(path):
    """Floor and folder of a path; None for what stands outside of all floors."""
    for pattern, floor in FLOORS:
        if fnmatch.fnmatch(path, pattern):
            return floor, pattern
    return None


def sources(root):
    for folder in ("src", "apps", "python"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path


def includes(root):
    """Pairs of paths below root: a file, and a file of ours that it includes."""
    for path in sources(root):
        for name in INCLUDE.findall(path.read_text(encoding="utf-8")):
            for base in (path.parent, root / "src"):
                if (base / name).is_file():
                    target = (base / name).resolve().relative_to(root.resolve())
                    yield path.relative_to(root).as_posix(), target.as_posix()
                    break


def violations(root):
    found, siblings = [], {}
    for path, target in includes(root):
        here, there = floor_of(path), floor_of(target)
        if here is None or there is None or here == there:
            continue
        if there[0] > here[0]:
            found.append(f"{path} includes {target}, which stands higher")
        elif there[0] == here[0]:
            siblings[here[1], there[1]] = f"{path} includes {target}"
    for (here, there), text in siblings.items():
        if (there, here) in siblings:
            found.append(f"{text}, and the other way round: {siblings[there, here]}")
    return found


class Floors(unittest.TestCase):
    def test_no_file_includes_a_higher_floor(self):
        self.assertGreater(len(list(includes(SOURCE))), 50)
        self.assertEqual(violations(SOURCE), [])

    def test_every_folder_has_a_floor(self):
        homeless = {p.parent for p in sources(SOURCE)
                    if floor_of(p.relative_to(SOURCE).as_posix()) is None}
        self.assertEqual(homeless, {SOURCE / "src"})

    def plant(self, *files):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        root = pathlib.Path(folder.name)
        for name, text in files:
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text)
        return violations(root)

    def test_planted_violations_are_found(self):
        creator = ("src/creators/Box.h", "")
        self.assertEqual(len(self.plant(creator, ("src/document/A.cpp", '#include "creators/Box.h"\n'))), 1)
        self.assertEqual(
            len(self.plant(creator, ("src/document/internal/A.h", '  # include "../../creators/Box.h"\n'))), 1)
        self.assertEqual(len(self.plant(("src/features/registration/R.h", ""),
                                        ("src/features/M.h", '#include "features/registration/R.h"\n'))), 1)
        self.assertEqual(len(self.plant(("src/picking/P.h", '#include "collision/C.h"\n'),
                                        ("src/collision/C.h", '#include "picking/P.h"\n'))), 2)

    def test_lower_floors_and_one_way_neighbours_are_fine(self):
        self.assertEqual(self.plant(("src/document/D.h", ""), ("src/operations/O.h", ""),
                                    ("src/creators/Box.h", '#include "document/D.h"\n'),
                                    ("src/step/S.h", '#include "operations/O.h"\n')), [])


if __name__ == "__main__":
    unittest.main()
