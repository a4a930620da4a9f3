"""orvex op: every operation of its table, on shapes of known size."""
import math
import os
import pathlib
import tempfile
import unittest

from orvex_cli import main, orvex

PATCH = "0,0,0;0,5,0;0,9,0;4,0,0;4,5,0;4,9,0"

# Operation, inputs, options; what comes of it: the shape, a measure and its value, further facts.
RUNS = [
    ("union", "a b", [], "compound", {"volume": 1875}, {}),
    ("union", "a", [], "solid", {"volume": 1000}, {}),
    ("cut", "a b", [], "compound", {"volume": 875}, {}),
    ("common", "a b", [], "compound", {"volume": 125}, {}),
    ("common", "a far", [], "compound", {"length": 0}, {}),
    ("chop", "a b", ["fuzzy=1e-6", "glue=OFF"], "compound", {"volume": 875}, {"overlapVolume": 125}),
    ("sew", "a far", [], "compound", {"area": 1200}, {}),
    ("general-fuse", "a touching b", [], "compound", {"volume": 3000}, {}),
    ("section-face", "a touching", [], "face", {"area": 100}, {}),
    ("simulation-union", "a b", [], "compound", {"volume": 1875}, {"sectionFaces": 1}),
    ("simulation-union", "a touching", ["result=section-faces"], "compound", {"area": 100}, {"sectionFaces": 1}),
    ("faces-of-edges", "circle rectangle", [], "compound", {"area": 9 * math.pi + 20}, {"faces": 2}),
    ("sweep", "rectangle", ["length=-7"], "solid", {"volume": 140}, {}),
    ("sweep", "circle", ["length=5", "direction=0,3,4"], "solid", {"volume": 36 * math.pi}, {}),
    ("sweep-polyline", "", ["points=0,0,0;3,0,0;0,4,0;0,0,0", "length=2"], "solid", {"volume": 12}, {}),
    ("offset", "a", ["distance=1", "join=intersection"], "solid", {"volume": 1728}, {}),
    ("offset", "a", ["distance=-1"], "solid", {"volume": 512}, {}),
    ("curve-extend", "line", ["distance=5"], "edge", {"length": 15}, {}),
    ("curve-extend", "line", ["distance=5", "at=start"], "edge", {"length": 15}, {}),
    ("curve-offset", "rectangle", ["distance=1"], "wire", {"length": 18 + 2 * math.pi}, {}),
    ("curve-trim", "circle", ["last=0", "first=1.5"], "edge", {"length": 4.5}, {}),
    ("loft", "circle ring", ["solid=yes"], "solid", {"volume": 45 * math.pi}, {}),
    ("rail-sweep", "line across circle ring", [], "shell", {"area": 30 * math.pi}, {}),
    ("blend", "line across", [], "face", {}, {}),
    ("patch", "rectangle", ["points=22,2.5,0"], "face", {"area": 20}, {}),
    ("fill", "circle", [], "face", {"area": 9 * math.pi}, {}),
    ("network", "circle ring", [], "shell", {"area": 48 * math.pi}, {}),
    ("surface-extend", "patch", ["length=3"], "face", {"area": 63}, {}),
    ("surface-trim", "patch across", ["project=yes"], "shell", {"area": 36}, {}),
    ("intersect", "a b", [], "compound", {"length": 30}, {}),
    ("project", "across patch", [], "compound", {"length": 4}, {}),
    ("nurbs-grid", "", ["points=" + PATCH, "rows=2"], "face", {"area": 36}, {}),
    ("nurbs-move-pole", "patch", ["u=1", "v=1", "delta=-1,0,0"], "face", {"area": 36 + 19 / 6}, {}),
    ("nurbs-push-pull", "patch", ["distance=3"], "face", {"area": 36}, {}),
    ("nurbs-reparameterize", "patch", ["u-max=8"], "face", {"area": 36}, {}),
    ("iges", "a", [], "solid", {"volume": 1000}, {}),
    ("triangle-count", "a", [], None, {}, {"triangles": 0}),
    ("face-geometry", "a", [], None, {}, {"vertices": 8, "area": 100}),
    ("same-face", "a b", [], None, {}, {"same": False}),
    ("same-face", "a a", [], None, {}, {"same": True}),
]

# These come close to their curves.
FITTED = {"loft", "rail-sweep", "patch", "fill", "network"}

WRONG = [
    (["no-such", "a.brep", "-o", "o.brep"], 2, ["no-such", "general-fuse"]),
    (["cut", "a.brep", "-o", "o.brep"], 2, ["cut", "2 inputs", "two solids"]),
    (["offset", "a.brep", "b.step", "-o", "o.brep"], 2, ["offset", "1 inputs"]),
    (["cut", "a.brep", "b.step"], 2, ["cut", "-o FILE"]),
    (["triangle-count", "a.brep", "-o", "o.brep"], 2, ["triangle-count", "-o"]),
    (["cut", "a.brep", "b.step", "-o", "o.txt"], 2, ["o.txt", ".brep"]),
    (["iges", "a.brep", "-o", "o.brep"], 2, ["o.brep", ".igs"]),
    (["cut", "a.brep", "b.igs", "-o", "o.brep"], 2, ["b.igs", ".step"]),
    (["offset", "a.brep", "-o", "o.brep"], 2, ["missing", "distance"]),
    (["offset", "a.brep", "-p", "distance=nan", "-o", "o.brep"], 2, ["distance", "nan"]),
    (["offset", "a.brep", "-p", "distance=1", "-p", "tolerance=0", "-o", "o.brep"], 2, ["tolerance", "> 0"]),
    (["offset", "a.brep", "-p", "distance=1", "-p", "join=glue", "-o", "o.brep"], 2, ["join", "glue", "arc, tangent"]),
    (["offset", "a.brep", "-p", "far=1", "-o", "o.brep"], 2, ["far", "distance"]),
    (["cut", "a.brep", "b.step", "-p", "far=1", "-o", "o.brep"], 2, ["far"]),
    (["cut", "a.brep", "missing.brep", "-o", "o.brep"], 3, ["missing.brep"]),
    (["cut", "a.brep", "broken.brep", "-o", "o.brep"], 3, ["broken.brep"]),
    (["offset", "a.brep", "-p", "distance=0", "-o", "o.brep"], 4, ["a.brep", "distance=0", "tolerance > 0"]),
    (["sweep", "line.brep", "-p", "length=3", "-o", "o.brep"], 4, ["line.brep", "bounds no face"]),
    (["chop", "a.brep", "far.brep", "-o", "o.brep"], 4, ["far.brep", "no measurable overlap"]),
    (["section-face", "a.brep", "far.brep", "-o", "o.brep"], 4, ["do not meet"]),
    (["nurbs-move-pole", "patch.step", "-p", "u=3", "-p", "v=1", "-p", "delta=1,0,0", "-o", "o.brep"], 4, ["u=3"]),
    (["nurbs-grid", "-p", "points=" + PATCH, "-p", "rows=4", "-o", "o.brep"], 4, ["6 points", "4 rows"]),
]


class Operations(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        box = ["Box", "-p", "Length=10", "-p", "Width=10", "-p", "Height=10"]
        cls.files = {}
        for name, ending, *make in (
                ("a", ".brep", "new", *box), ("b", ".step", "new", *box, "-p", "Base Point=5,5,5"),
                ("far", ".brep", "new", *box, "-p", "Base Point=50,0,0"),
                ("touching", ".step", "new", *box, "-p", "Base Point=10,0,0"),
                ("circle", ".step", "new", "Circle", "-p", "Radius=3"),
                ("rectangle", ".brep", "new", "Rectangle", "-p", "Base Point=20,0,0", "-p", "Length=4",
                 "-p", "Width=5"),
                ("line", ".brep", "new", "Line", "-p", "Start Point=0,0,0", "-p", "End Point=10,0,0"),
                ("ring", ".brep", "new", "Circle", "-p", "Radius=3", "-p", "Base Point=0,0,5"),
                ("across", ".brep", "new", "Line", "-p", "Start Point=-1,4,3", "-p", "End Point=9,4,3"),
                ("patch", ".step", "op", "nurbs-grid", "-p", "points=" + PATCH, "-p", "rows=2")):
            cls.files[name] = name + ending
            answer = orvex(*make, "-o", name + ending, cwd=cls.folder)
            assert answer.code == 0, answer.err
        (cls.folder / "broken.brep").write_bytes((cls.folder / "a.brep").read_bytes()[:2000])

    def op(self, *arguments):
        return orvex("op", *arguments, cwd=self.folder, env={"ORVEX_SIMULATION_DUMPS": str(self.folder / "dumps")})

    def listed(self):
        return self.op("--list", "--json").json()["operations"]

    def test_each_does_what_it_says_and_writes_it(self):
        for name, inputs, options, shape, measures, facts in RUNS:
            with self.subTest(operation=name, inputs=inputs, options=options):
                target = [] if shape is None else ["-o", "result.igs" if name == "iges" else "result.step"]
                arguments = [name, *(self.files[i] for i in inputs.split()),
                             *(word for option in options for word in ("-p", option)), *target]
                answer = self.op(*arguments, "--json")
                self.assertEqual((answer.code, answer.err), (0, b""))
                record = answer.json()
                tolerance = 1e-3 if name in FITTED else 1e-6
                for fact, value in facts.items():
                    self.assertAlmostEqual(record["facts"][fact], value, places=6)
                self.assertEqual(self.op(*arguments).err, b"")
                if shape is None:
                    self.assertIsNone(record["result"])
                    continue
                self.assertEqual((record["result"]["shape"], record["result"]["valid"]), (shape, True))
                for measure, value in measures.items():
                    self.assertAlmostEqual(record["result"]["measures"][measure], value, delta=tolerance * value)
                if measures != {"length": 0}:
                    self.assertEqual(orvex("info", target[1], cwd=self.folder).code, 0)

    def test_the_table_has_all_that_is_run_here_and_nothing_else(self):
        listed = {operation["operation"]: operation for operation in self.listed()}
        self.assertEqual(set(listed), {run[0] for run in RUNS})
        text = self.op("--list").out.decode()
        for name, operation in listed.items():
            self.assertIn(f"{name}: {operation['summary']}\n", text)
            self.assertEqual(orvex("op", name, "--list", "--json").json()["operations"], [operation])
        join = [o for o in listed["offset"]["options"] if o["name"] == "join"][0]
        self.assertEqual((join["words"], join["default"]), (["arc", "tangent", "intersection"], "arc"))

    def test_results_tell_their_options_and_the_defaults(self):
        record = self.op("offset", "a.brep", "-p", "Distance=1", "-o", "o.brep", "--json").json()
        self.assertEqual(record["inputs"], [{"file": "a.brep", "shape": "solid"}])
        options = {option["name"]: option["value"] for option in record["options"]}
        self.assertEqual(options, {"distance": 1, "mode": "skin", "join": "arc", "tolerance": 1e-3,
                                   "intersection": "no", "self-intersection": "no"})
        note = self.op("general-fuse", "a.brep", "b.step", "-o", "o.brep").out.decode()
        self.assertIn("note       nothing was cut", note)

    def test_all_formats_are_written(self):
        for ending in ("brep", "step", "igs", "xbf"):
            self.assertEqual(self.op("cut", "a.brep", "b.step", "-o", "cut." + ending).code, 0)
            size = orvex("info", "--json", "cut." + ending, cwd=self.folder).entry()["box"]["size"]
            self.assertAlmostEqual(max(size), 10, places=3)

    def test_an_invalid_result_is_written_and_told(self):
        answer = self.op("sweep-polyline", "-p", "points=0,0,0;1,0,0;1,1,0", "-p", "length=3", "-o", "open.brep")
        self.assertEqual((answer.code, len(answer.warning_lines)), (5, 1))
        self.assertIn("open.brep", answer.warning_lines[0])
        self.assertTrue((self.folder / "open.brep").exists())

    def test_what_cannot_be_is_one_line_and_writes_nothing(self):
        before = sorted(os.listdir(self.folder))
        for arguments, code, words in WRONG:
            with self.subTest(arguments=arguments):
                answer = self.op(*arguments)
                self.assertEqual((answer.code, answer.out), (code, b""), answer.err)
                (line,) = answer.err.decode().splitlines()
                for word in words:
                    self.assertIn(word, line)
                self.assertEqual([f for f in sorted(os.listdir(self.folder)) if f not in before], [])

    def test_an_earlier_result_stays_when_nothing_comes_of_the_next(self):
        self.assertEqual(self.op("cut", "a.brep", "b.step", "-o", "kept.brep").code, 0)
        before = (self.folder / "kept.brep").read_bytes()
        self.assertEqual(self.op("chop", "a.brep", "far.brep", "-o", "kept.brep").code, 4)
        self.assertEqual((self.folder / "kept.brep").read_bytes(), before)


if __name__ == "__main__":
    main()
