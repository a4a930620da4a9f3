"""orvex history and orvex rebuild, on the bracket of the examples."""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from orvex_cli import environment, main, orvex

MAKE_BRACKET = pathlib.Path(os.environ["ORVEX_BIN"]) / "bracket"


class BracketCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.made = pathlib.Path(folder.name)
        subprocess.run([MAKE_BRACKET, cls.made / "bracket.xbf"], check=True, capture_output=True, env=environment({}))

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        shutil.copytree(self.made, self.folder, dirs_exist_ok=True)
        self.before = self.content()

    def content(self):
        return {path.name: path.read_bytes() for path in self.folder.iterdir()}

    def rebuild(self, *arguments, output="out.xbf"):
        return orvex("rebuild", "bracket.xbf", *arguments, "--json", "-o", output, cwd=self.folder)

    def rebuilt(self, *arguments, output="out.xbf"):
        answer = self.rebuild(*arguments, output=output)
        self.assertEqual((answer.code, answer.err), (0, b""))
        return [feature["name"] for feature in answer.json()["rebuilt"]]

    def features(self, file="out.xbf"):
        answer = orvex("history", "--json", file, cwd=self.folder)
        self.assertEqual((answer.code, answer.err), (0, b""))
        return {feature["name"]: feature for feature in answer.json()["features"]}

    def value(self, feature, parameter, file="out.xbf"):
        (found,) = [p for p in self.features(file)[feature]["parameters"] if p["name"] == parameter]
        return found["value"]


class History(BracketCase):
    def test_features_come_in_order_with_all_that_made_them(self):
        features = self.features("bracket.xbf")
        self.assertEqual(list(features), ["Plate", "Wall", "Drill", "Slot tool", "Body", "Drilled", "Slotted"])
        self.assertEqual([i["name"] for i in features["Drilled"]["inputs"]], ["Body", "Drill"])
        self.assertEqual([name for name, f in features.items() if f["suppressed"]], ["Slotted"])
        self.assertEqual([p.get("expression") for p in features["Wall"]["parameters"]],
                         [None, None, "wall", None, None])
        text = orvex("history", "bracket.xbf", cwd=self.folder).out.decode()
        self.assertIn('BooleanCut "Slotted"  of Drilled, Slot tool  [0:1:1:7]  (suppressed)\n', text)
        self.assertIn("Bottom Radius  6 mm  (= wall*0.75)\n", text)

    def test_a_document_without_a_record_has_its_shapes(self):
        orvex("new", "Box", "-p", "Length=1", "-p", "Width=2", "-p", "Height=3", "-o", "box.xbf", cwd=self.folder)
        (feature,) = self.features("box.xbf").values()
        self.assertEqual((feature["type"], feature["label"], feature["inputs"]), ("Solid", "0:1:1:1", []))
        answer = orvex("rebuild", "box.xbf", "--set", "0:1:1:1:Length=4", "-o", "box.xbf", cwd=self.folder)
        self.assertEqual((answer.code, answer.err), (0, b""))
        self.assertIn(b'rebuilt  Box "Box_0"  [0:1:1:1]', answer.out)
        size = orvex("info", "--json", "box.xbf", cwd=self.folder).entry()["box"]["size"]
        self.assertAlmostEqual(size[0], 4, places=3)


class Rebuild(BracketCase):
    def test_what_depends_on_a_change_is_rebuilt_in_order_and_nothing_else(self):
        self.assertEqual(self.rebuilt("--set", "Plate:Height=10"), ["Plate", "Body", "Drilled", "Slotted"])
        self.assertEqual(self.value("Plate", "Height"), 10)
        self.assertEqual(self.rebuilt("--param", "wall=12"), ["Wall", "Drill", "Body", "Drilled", "Slotted"])
        self.assertEqual((self.value("Wall", "Length"), self.value("Drill", "Bottom Radius")), (12, 9))
        parameters = json.loads((self.folder / "out.params.json").read_text(encoding="utf-8"))
        self.assertEqual([(p["name"], p["value"]) for p in parameters], [("wall", "12")])
        self.assertEqual(self.rebuilt("--param", "wall=8.0", "--param", "unused=1"), [])
        self.assertEqual(len(self.rebuilt()), 7)

    def test_values_and_expressions_replace_each_other(self):
        self.assertEqual(self.rebuilt("--set", "Drill:bottom-radius=2", "--set", "Drill:Base Point=60,25,-5",
                                      "--expr", "Slot tool:Length=Width*wall"),
                         ["Drill", "Slot tool", "Drilled", "Slotted"])
        self.assertEqual(self.value("Drill", "Base Point"), [60, 25, -5])
        self.assertEqual(self.value("Slot tool", "Length"), 80)
        shutil.copy(self.folder / "out.xbf", self.folder / "bracket.xbf")
        self.assertEqual(self.rebuilt("--param", "wall=9"), ["Wall", "Slot tool", "Body", "Drilled", "Slotted"])
        self.assertEqual(self.value("Slot tool", "Length"), 90)
        self.assertEqual(self.rebuilt("--expr", "Wall:Length="), ["Wall", "Body", "Drilled", "Slotted"])
        self.assertNotIn("expression", self.features()["Wall"]["parameters"][2])

    def test_a_document_can_be_rebuilt_in_its_place(self):
        self.rebuilt("--set", "Plate:Length=100", output="bracket.xbf")
        self.assertEqual(self.value("Plate", "Length", "bracket.xbf"), 100)
        self.assertEqual(set(self.content()), set(self.before))

    def test_what_cannot_be_is_one_line_and_writes_nothing(self):
        for arguments, code, words in (
                (["--set", "Plate:Height=-3"], 2, ["bracket.xbf", "Plate", "Height", "-3", "> 0"]),
                (["--set", "Plate:Height=nan"], 2, ["Plate", "Height"]),
                (["--set", "Plate:Hight=3"], 2, ["Plate", "Hight", "Base Point"]),
                (["--set", "Nope:Height=3"], 2, ["Nope", "Plate (0:1:1:1)"]),
                (["--set", "Body:Height=3"], 2, ["Body", "no parameters"]),
                (["--set", "Plate:Height"], 2, ["Plate:Height"]),
                (["--set", "Height=3"], 2, ["Height=3"]),
                (["--expr", "Drill:Height=1/0"], 2, ["Drill", "Height", "1/0"]),
                (["--expr", "Drill:Height=nothing"], 2, ["Drill", "Height", "nothing"]),
                (["--expr", "Drill:Base Point=1"], 2, ["Drill", "Base Point", "real"]),
                (["--expr", "Drill:Height=-wall"], 4, ["Drill", "Height", "-8", "> 0"]),
                (["--param", "wall=thick"], 2, ["wall", "thick"]),
                (["--param", "9=1"], 2, ["9"]),
                (["--param", "wall=0"], 4, ["Wall", "Length", "0"]),
                (["--set", "Drill:Base Point=500,0,0", "--set", "Drill:Height=1e300"], 4, ["Drill"])):
            with self.subTest(arguments=arguments):
                answer = self.rebuild(*arguments)
                self.assertEqual((answer.code, answer.out), (code, b""), answer.err)
                (line,) = answer.err.decode().splitlines()
                for word in ["bracket.xbf", *words]:
                    self.assertIn(word, line)
                self.assertEqual(self.content(), self.before)

    def test_shapes_of_kinds_that_the_history_does_not_rebuild_follow_too(self):
        made = orvex("new", "Line", "-p", "End Point=10,0,0", "-o", "line.xbf", cwd=self.folder)
        self.assertEqual(made.code, 0, made.err)
        answer = orvex("rebuild", "line.xbf", "--set", "Line0:End Point=0,30,0", "-o", "out.xbf", cwd=self.folder)
        self.assertEqual(answer.code, 0, answer.err)
        (file,) = orvex("info", "--json", "out.xbf", cwd=self.folder).json()["files"]
        self.assertAlmostEqual(file["box"]["max"][1], 30, places=5)

    def test_broken_files_are_told(self):
        (self.folder / "bracket.params.json").write_text("{", encoding="utf-8")
        answer = self.rebuild()
        self.assertEqual((answer.code, answer.err.count(b"\n")), (3, 1))
        self.assertIn(b"bracket.params.json", answer.err)
        (self.folder / "bracket.params.json").unlink()
        document = (self.folder / "bracket.xbf").read_bytes()
        for broken in (b"", b"nonsense", document[:200], document[:len(document) // 2]):
            (self.folder / "bracket.xbf").write_bytes(broken)
            for answer in (self.rebuild(), orvex("history", "bracket.xbf", cwd=self.folder)):
                self.assertEqual((answer.code, answer.out), (3, b""))
                self.assertEqual(answer.err.count(b"\n"), 1)
        self.assertEqual(self.rebuild(output="out.step").code, 2)
        self.assertEqual(orvex("history", "missing.xbf", cwd=self.folder).code, 3)
        self.assertFalse((self.folder / "out.xbf").exists())


if __name__ == "__main__":
    main()
