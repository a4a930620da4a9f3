"""What the shared libraries export: everything that is declared with the export macro, and nothing
else of ours. Templates of the standard library, the kernel and Qt that were instantiated on the way
are none of our symbols.
"""
import os
import pathlib
import re
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])
LIBRARIES = pathlib.Path(os.environ["ORVEX_LIBRARIES"])

MACRO = r"ORVEX_(?:FOUNDATION_)?API"
EXPORTED_TYPE = re.compile(rf"\b(?:class|struct)\s+{MACRO}\s+(\w+)")
EXPORTED_FUNCTION = re.compile(rf"^\s*(?:static\s+)?{MACRO}\b[^;{{(]*?([\w:]+)\(", re.MULTILINE)
OWN_TYPE = re.compile(rf"^\s*(?:class|struct)\s+(?:{MACRO}\s+)?(\w+)\b[^;]*$", re.MULTILINE)
PREFIXES = re.compile(r"^(?:vtable|typeinfo name|typeinfo|VTT|guard variable|construction vtable) for ")


def declarations():
    types, functions, own = set(), set(), set()
    for path in SOURCE.glob("src/**/*.h"):
        text = re.sub(r"//.*", "", path.read_text(encoding="utf-8"))
        types |= set(EXPORTED_TYPE.findall(text))
        functions |= set(EXPORTED_FUNCTION.findall(text))
    for path in list(SOURCE.glob("src/**/*.h")) + list(SOURCE.glob("src/**/*.cpp")):
        own |= set(OWN_TYPE.findall(path.read_text(encoding="utf-8")))
    return types, functions, own


def scopes(symbol):
    """The names that lead to a symbol: Orvex::A::B(int)::c gives Orvex, A, B, c."""
    text = re.sub(r"\boperator\s+(\w+)", r"operator_\1", PREFIXES.sub("", symbol))
    depth, kept = 0, []
    for i, c in enumerate(text):
        depth += c in "<([" and not text.endswith("operator", 0, i)
        if depth == 0:
            kept.append(c)
        depth -= c in ">)]" and depth > 0
    # A template instance bears its result type in front of its name.
    qualified = re.sub(r"\s+(const|volatile)\b|\[abi:\w+\]", "", "".join(kept)).strip()
    return qualified.split(" ")[-1].split("::")


def symbols(library):
    listing = subprocess.run(["nm", "-DC", "--defined-only", str(library)], capture_output=True,
                             text=True, check=True)
    for line in listing.stdout.splitlines():
        _, kind, name = line.split(" ", 2)
        # The linker's own marks, the sanitizers', and the locks of OpenMP.
        if not re.match(r"_end$|_edata$|__bss_start$|__(odr_)?(asan|ubsan|lsan)|\.gomp_critical", name):
            yield kind, name


def leaks(listing, types, functions, own):
    found = []
    for kind, name in listing:
        path = scopes(name)
        is_ours = kind.isupper() and kind not in "WV" or path[0] == "Orvex" or own & set(path)
        if is_ours and not types & set(path) and path[-1] not in functions:
            found.append(f"{kind} {name}")
    return found


class Exports(unittest.TestCase):
    def setUp(self):
        self.types, self.functions, self.own = declarations()
        self.listing = []
        for name in ("libOrvexFoundation.so", "libOrvexCoreGeometry.so"):
            self.listing += symbols(LIBRARIES / name)

    def test_nothing_of_ours_leaks(self):
        self.assertEqual(leaks(self.listing, self.types, self.functions, self.own), [])

    def test_every_exported_declaration_is_in_a_library(self):
        there = set()
        for _, name in self.listing:
            there |= set(scopes(name))
        self.assertEqual(sorted((self.types | self.functions) - there), [])

    def test_planted_leaks_are_found(self):
        def found(kind, name):
            return bool(leaks([(kind, name)], {"Shown"}, {"Free"}, {"Shown", "Hidden"}))
        self.assertTrue(found("T", "Helper(int)"))
        self.assertTrue(found("W", "Orvex::Hidden::Get() const"))
        self.assertTrue(found("V", "vtable for Hidden"))
        self.assertFalse(found("T", "Shown::Get(std::vector<Hidden> const&)"))
        self.assertFalse(found("V", "typeinfo for Shown"))
        self.assertFalse(found("T", "Shown::operator new(unsigned long)"))
        self.assertFalse(found("T", "Orvex::Free(int)"))
        self.assertFalse(found("W", "void std::vector<Hidden>::emplace_back<Hidden>(Hidden&&)"))


if __name__ == "__main__":
    unittest.main()
