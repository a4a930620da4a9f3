"""The sample assembly: the file that stands in the repository, and the program that makes it."""
import os
import pathlib
import subprocess
import tempfile
import unittest

from orvex_cli import PROGRAM, SAMPLE, environment, main, orvex


def description(path):
    entry = orvex("info", "--json", "--tree", path).entry()
    for varies in ("file", "seconds", "messages"):
        del entry[varies]
    entry["colors"].sort()
    return entry


class Sample(unittest.TestCase):
    def test_the_program_still_makes_the_file(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "gear-reducer.step"
            subprocess.run([PROGRAM.with_name("make-gear-reducer"), made], check=True, stdout=subprocess.DEVNULL,
                           env=environment({}))
            self.assertLess(os.path.getsize(made), 1_000_000)
            self.assertEqual(description(made), description(SAMPLE))

    def test_structure_names_and_colours_come_out(self):
        entry = description(SAMPLE)
        self.assertEqual(entry["status"], "read")
        self.assertEqual({key: entry["structure"][key] for key in ("assemblies", "parts", "occurrences", "leaves", "depth")},
                         {"assemblies": 8, "parts": 20, "occurrences": 140, "leaves": 119, "depth": 3})
        self.assertEqual(entry["counts"]["solids"], {"expanded": 119, "distinct": 20, "free": 119})
        uses = {part["name"]: part["occurrences"] for part in entry["definitions"]}
        self.assertEqual(uses["Zahnrad Größe 2"], 1)
        self.assertEqual(uses["Lagerdeckel Ø72"], 4)
        self.assertEqual(uses["ball"], 48)
        self.assertEqual(len(entry["colors"]), 7)
        (reducer,) = entry["tree"]
        by_name = {node["name"]: node for node in reducer["children"]}
        self.assertEqual(by_name["housing top"]["color"], "#7f9fb5")

    def test_the_tree_shows_a_repeated_assembly_once(self):
        text = orvex("info", "--tree", SAMPLE).out.decode()
        lines = [line for line in text.splitlines() if "ball bearing" in line]
        self.assertEqual(len(lines), 6)
        self.assertEqual(sum("inside as above" in line for line in lines), 5)
        self.assertEqual(text.count("─ ball  ["), 8)
        self.assertIn("└─ ", text)
        self.assertIn("turned 180° about (1, 0, 0)", text)


if __name__ == "__main__":
    main()
