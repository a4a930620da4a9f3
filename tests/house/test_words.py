"""Words that no file of the repository bears: unfinished marks, paths of a machine, and references
to papers that a reader of the repository doesn't have.
"""
import os
import pathlib
import re
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])

# In two halves each, so that this file doesn't find itself.
PATTERNS = [re.compile(first + second, flags) for first, second, flags in [
    (r"\bPar", r"ts? [0-9]{1,2}\.[0-9]\b", 0),
    (r"\bthe sp", r"ec(ification)?\b", re.IGNORECASE),
    (r"\bper sp", r"ec\b", re.IGNORECASE),
    (r"\bas speci", r"fied in\b", re.IGNORECASE),
    (r"(?<![\w./-])/(wor", r"k|root|home|farm)/", 0),
    (r"\b(TO", r"DO|FIX" r"ME|XX" r"X|HA" r"CK)\b", 0),
    (r"\b(stu", r"b(s|bed)?|unimpl" r"emented|not impl" r"emented)\b", re.IGNORECASE),
]]
LEFT_OUT = {"build", "install", "third_party", ".git", ".cache"}


def findings(text):
    return [line.strip() for line in text.splitlines() if any(p.search(line) for p in PATTERNS)]


def listed_by_git():
    """What git tracks or would track; None outside of a checkout."""
    listing = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                             cwd=SOURCE, capture_output=True, check=False)
    if listing.returncode != 0:
        return None
    return [SOURCE / name for name in listing.stdout.decode().split("\0") if name]


def files():
    paths = listed_by_git()
    if paths is None:
        paths = [p for p in SOURCE.rglob("*") if not LEFT_OUT & set(p.relative_to(SOURCE).parts)]
    return [p for p in paths if p.is_file()]


class Words(unittest.TestCase):
    def test_no_file_bears_them(self):
        self.assertGreater(len(files()), 50)
        found = []
        for path in files():
            content = path.read_bytes()
            if b"\0" in content:
                continue
            name = path.relative_to(SOURCE).as_posix()
            found += [f"{name}: {line[:200]}" for line in [name] + content.decode(errors="replace").splitlines()
                      if findings(line)]
        self.assertEqual(found, [])

    def test_each_pattern_finds_its_words_and_leaves_others(self):
        bad = ["see Par" + "t 3.1", "Par" + "ts 10.2", "what the Sp" + "ec says", "per sp" + "ec",
               "as speci" + "fied in", "in /wor" + "k/main", "TO" + "DO: later", "a stu" + "b"]
        self.assertEqual([text for text in bad if not findings(text)], [])
        good = ["part 3.14159", "Part 12", "the specific kind", "src/work/", "https://x.org/work/",
                "mkstemp XXXXXX", "stubborn", "a specification of one's own"]
        self.assertEqual([text for text in good if findings(text)], [])


if __name__ == "__main__":
    unittest.main()
