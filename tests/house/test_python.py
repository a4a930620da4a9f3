"""Every Python file of the repository: it compiles, and the names in it are bound and used.

The replay script stands among them, as it is embedded.
"""
import ast
import builtins
import os
import pathlib
import symtable
import unittest
import warnings

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])
FOLDERS = ("src", "python", "tests", "scripts", "examples", "benchmarks")
# Set by whoever runs a file.
GIVEN = {*dir(builtins), "__file__", "__doc__", "__path__"}


def tables(table):
    yield table
    for child in table.get_children():
        yield from tables(child)


def is_variable(symbol, table):
    """A function's own. A leading underscore says that a name only has to stand there."""
    return (table.get_type() == "function" and symbol.is_local() and symbol.is_assigned()
            and not symbol.is_parameter() and not symbol.get_name().startswith("_"))


def names_in_annotations(text):
    """They are no more than text to a module that puts their evaluation off."""
    return {node.id for node in ast.walk(ast.parse(text)) if isinstance(node, ast.Name)
            and isinstance(node.ctx, ast.Load)}


def handed_on(text):
    """What the module's __all__ lists."""
    return {name for node in ast.parse(text).body if isinstance(node, ast.Assign)
            and getattr(node.targets[0], "id", "") == "__all__"
            for name in (part.value for part in ast.walk(node.value)
                         if isinstance(part, ast.Constant))}


def findings(text, name):
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        try:
            compile(text, name, "exec")
        except SyntaxError as error:
            return [str(error)]
    module = symtable.symtable(text, name, "exec")
    every = list(tables(module))
    # A function binds a module's name by a global statement.
    bound = GIVEN | {s.get_name() for t in every for s in t.get_symbols()
                     if (t is module or s.is_global()) and (s.is_assigned() or s.is_imported() or s.is_namespace())}
    # Read anywhere: enough to find what a change left behind.
    read = {s.get_name() for t in every for s in t.get_symbols() if s.is_referenced()}
    read |= names_in_annotations(text) | handed_on(text) | {"annotations"}  # of __future__
    found = []
    for table in every:
        for symbol in table.get_symbols():
            symbol_name = symbol.get_name()
            if symbol.is_referenced() and symbol.is_global() and symbol_name not in bound:
                found.append(f"{name}: {symbol_name} is bound nowhere")
            elif symbol_name not in read and (symbol.is_imported() or is_variable(symbol, table)):
                found.append(f"{name}: {symbol_name} is bound and not used")
    return found


class Python(unittest.TestCase):
    def test_every_file_is_clean(self):
        paths = [path for folder in FOLDERS for path in sorted((SOURCE / folder).rglob("*.py"))]
        self.assertIn(SOURCE / "src/step/replay/script/replay_script.py", paths)
        found = [line for path in paths
                 for line in findings(path.read_text(encoding="utf-8"), path.relative_to(SOURCE).as_posix())]
        self.assertEqual(found, [])

    def test_planted_faults_are_found(self):
        for text in ("def f(:\n", "import os\n", "def f():\n    import os\n", "def f():\n    return missing\n",
                     "def f():\n    x = 1\n", "print(nowhere)\n", "x = '\\d'\n", "assert (1, 'always')\n"):
            self.assertEqual(len(findings(text, "planted")), 1, text)
        for text in ("import os\nprint(os)\n", "def f():\n    global x\n    x = 1\n    return x\n",
                     "def f(unused):\n    for _ in range(3):\n        print(__file__)\n",
                     "def f():\n    x = 1\n    return lambda: x\n", "class A:\n    x = 1\n"):
            self.assertEqual(findings(text, "planted"), [], text)


if __name__ == "__main__":
    unittest.main()
