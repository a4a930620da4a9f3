"""orvex new: every kind made, written, and read back; every parameter given every bad value."""
import math
import os
import pathlib
import subprocess
import tempfile
import unittest

from orvex_cli import environment, main, command, orvex

FORMATS = ("brep", "step", "iges", "xbf")
FULL = 2 * math.pi

# kind -> parameters, and what comes out: the shape and one measure of it by the closed formula.
# A parameter FACE or WIRE stands for a file.
GOOD = {
    "Line": ({"End Point": "3,4,0"}, "edge", "length", 5),
    "Rectangle": ({"Length": "2", "Width": "3"}, "wire", "length", 10),
    "Polygon": ({"End Point": "2,0,0", "Number Polygon": "6"}, "wire", "length", 12),
    "Arc": ({"Start Point": "1,0,0", "End Point": "0,1,0", "Third Point": "-1,0,0"}, "edge", "length", math.pi),
    "Circle": ({"Radius": "2", "Base Point": "1,2,3"}, "edge", "length", 4 * math.pi),
    "Ellipse": ({"MajorRadius": "2", "MinorRadius": "1"}, "edge", "length", 9.688448220547675),
    "BSpline": ({"ControlPoints": "0,0,0;1,0,0;2,0,0"}, "edge", "length", 2),
    "Bezier": ({"ControlPoints": "0,0,0;1,0,0;3,0,0"}, "edge", "length", 3),
    "Box": ({"Length": "10", "Width": "20", "Height": "30"}, "solid", "volume", 6000),
    "Cylinder": ({"Bottom Radius": "2", "Height": "3", "Angle": "90"}, "solid", "volume", 3 * math.pi),
    "Sphere": ({"Radius": "3"}, "solid", "volume", 36 * math.pi),
    "Cone": ({"Bottom Radius": "2", "Top Radius": "1", "Height": "3"}, "solid", "volume", 7 * math.pi),
    "Torus": ({"Bottom Radius": "3", "Radius": "1"}, "solid", "volume", FULL * 3 * math.pi),
    "Revolve": ({"ShapeToRevolve": "FACE", "Base Point": "-1,0,0", "Normal": "0,1,0", "Angle": str(math.pi)},
                "solid", "volume", math.pi * 12),
    "Extrude": ({"ShapeToExtrude": "FACE", "Length": "5"}, "solid", "volume", 30),
    "ExtrudeLoop": ({"Extrude": "FACE", "Length": "2", "Normal": "0,0,-1"}, "solid", "volume", 12),
}

TRIPLES = ("point", "direction", "vector")


def with_bad(parameter, text):
    """A value of the parameter's type with the text in the place of a number."""
    if parameter["type"] in TRIPLES:
        return f"1,{text},1"
    if parameter["type"] == "points":
        return f"0,0,0;1,{text},1;5,5,5"
    return text


class NewCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        # A face of 2 by 3 in the XY plane, as an extruded line.
        self.make("Line", {"End Point": "2,0,0"}, "line.brep")
        self.make("Extrude", {"ShapeToExtrude": "line.brep", "Normal": "0,1,0", "Length": "3"}, "face.brep")
        self.before = self.files()

    def files(self):
        return {entry.name for entry in os.scandir(self.folder)}

    def call(self, kind, parameters, *more):
        given = []
        for name, value in parameters.items():
            given += ["-p", f"{name}={'face.brep' if value == 'FACE' else value}"]
        return orvex("new", kind, *given, *more, cwd=self.folder)

    def make(self, kind, parameters, file):
        answer = self.call(kind, parameters, "--json", "-o", file)
        self.assertEqual((answer.code, answer.err), (0, b""), (kind, parameters))
        return answer.json()

    def assert_one_line(self, answer, codes, *words):
        self.assertIn(answer.code, codes, answer.err)
        self.assertEqual(answer.out, b"")
        self.assertEqual(answer.err.count(b"\n"), 1, answer.err)
        (line,) = answer.error_lines
        for word in words:
            self.assertIn(word, line)


class Kinds(NewCase):
    def test_the_table_tells_units_ranges_and_conditions(self):
        kinds = {kind["kind"]: kind for kind in orvex("new", "--list", "--json").json()["kinds"]}
        self.assertEqual(set(kinds), set(GOOD))
        units = {(kind, field["name"]): field.get("unit") for kind in kinds for field in kinds[kind]["parameters"]}
        self.assertEqual(units["Cylinder", "Angle"], "degrees")
        self.assertEqual(units["Revolve", "Angle"], "radians")
        self.assertEqual(units["Box", "Length"], "mm")
        self.assertIsNone(units["Polygon", "Number Polygon"])
        text = orvex("new", "--list").out.decode()
        for name, kind in kinds.items():
            self.assertIn(f"{name}\n", text)
            self.assertIn(kind.get("condition", name), text)
        self.assertIn("(0, 360]", text)
        self.assertEqual(orvex("new", "box", "--list").out.count(b"\n"), 6)

    def test_each_kind_in_each_format(self):
        for kind, (parameters, shape, measure, value) in GOOD.items():
            for form in FORMATS:
                with self.subTest(kind=kind, format=form):
                    made = self.make(kind, parameters, f"made.{form}")
                    self.assertEqual((made["kind"], made["shape"], made["format"]), (kind, shape, form))
                    self.assertAlmostEqual(made["measures"][measure] / value, 1, places=5)
                    self.check_read_back(made, self.folder / f"made.{form}")
        self.assertEqual(self.files() - self.before, {f"made.{form}" for form in FORMATS})

    def check_read_back(self, made, path):
        answer = orvex("info", "--json", path)
        self.assertEqual((answer.code, answer.err), (0, b""))
        entry = answer.entry()
        self.assertEqual(entry["format"], made["format"])
        for kind in ("solids", "faces"):
            self.assertEqual(entry["counts"][kind]["expanded"], made["counts"][kind]["expanded"])
        # Round surfaces come back from IGES as free-form ones, whose box is wider.
        slack = 0.1 if made["format"] == "iges" else 0
        for read, expected in zip(entry["box"]["size"], made["box"]["size"]):
            self.assertGreater(read, expected - 1e-3)
            self.assertLess(read, expected * (1 + slack) + 1e-3)
        if made["format"] == "step":
            self.assertTrue(entry["definitions"][0]["name"].startswith(made["name"]))
        if made["format"] == "xbf":
            (shape,) = entry["shapes"]
            for key in ("kind", "name", "shape", "parameters"):
                self.assertEqual(shape[key], made[key])
            self.assertTrue(shape["visible"])
            self.assertEqual(shape["material"], "Not Assigned")
            text = orvex("info", path).out.decode()
            for parameter in made["parameters"]:
                self.assertIn(parameter["name"], text)

    def test_a_sweep_takes_step_files_and_what_is_wrapped_in_them(self):
        self.make("Extrude", {"ShapeToExtrude": "line.brep", "Length": "3"}, "face.step")
        made = self.make("ExtrudeLoop", {"Extrude": "face.step", "Normal": "0,1,0", "Length": "1"}, "block.brep")
        self.assertEqual((made["shape"], made["counts"]["solids"]["expanded"]), ("solid", 1))
        self.assert_one_line(self.call("ExtrudeLoop", {"Extrude": "line.brep", "Length": "1"}), [4], "is a face")


class Values(NewCase):
    def test_names_count_without_case_and_separators(self):
        for name in ("Bottom Radius", "bottom-radius", "BOTTOM_RADIUS", "bottomradius"):
            self.assertEqual(self.call("CYLINDER", {name: "1", "height": "1"}).code, 0)

    def test_defaults_stand_at_the_origin_upright_and_full(self):
        made = self.call("Torus", {"Bottom Radius": "3", "Radius": "1"}, "--json").json()
        self.assertIsNone(made["file"])
        self.assertEqual([p["value"] for p in made["parameters"]], [[0, 0, 0], 3, 1, -180, 180, 360])
        for low, high, expected in zip(made["box"]["min"], made["box"]["max"], (4, 4, 1)):
            self.assertAlmostEqual(low, -expected, places=3)
            self.assertAlmostEqual(high, expected, places=3)

    def test_a_wrong_call_is_exit_2_and_says_what_there_is(self):
        for arguments, words in [
                ([], ["KIND", "--list"]),
                (["Blob"], ["Blob", "Box", "Torus"]),
                (["Box"], ["Length", "Width", "Height"]),
                (["Box", "-p", "Length"], ["name=value"]),
                (["Box", "-p", "Size=3"], ["Size", "Base Point", "Height"]),
                (["Box", "-p", "Length=1", "-p", "length=2"], ["Length", "twice"]),
                (["Box", "-p", "Length=1", "-p", "Width=1", "-p", "Height=1", "-o", "box.txt"], ["box.txt", ".xbf"]),
                (["Extrude", "-p", "ShapeToExtrude=line.iges"], ["ShapeToExtrude", "line.iges", ".brep"])]:
            with self.subTest(arguments=arguments):
                self.assert_one_line(orvex("new", *arguments, cwd=self.folder), [2], *words)
        self.assertEqual(self.files(), self.before)

    def test_a_shape_that_cannot_be_read_is_exit_3(self):
        (self.folder / "bad.brep").write_bytes(b"DBRep_DrawableShape\n\nCASCADE Topology V1\nLocations 9\n")
        for file in ("missing.brep", "bad.brep"):
            answer = self.call("Extrude", {"ShapeToExtrude": file, "Length": "1"}, "-o", "out.brep")
            self.assert_one_line(answer, [3], file)
        self.assertNotIn("out.brep", self.files())

    def test_no_bad_value_of_any_parameter_gets_through(self):
        for kind in orvex("new", "--list", "--json").json()["kinds"]:
            for parameter in kind["parameters"]:
                for text in ("nan", "-inf", "1e999", "garbage\x1b[2J"):
                    value = with_bad(parameter, text)
                    with self.subTest(kind=kind["kind"], parameter=parameter["name"], value=value):
                        answer = self.try_value(kind, parameter, value)
                        self.assert_one_line(answer, [2], kind["kind"], parameter["name"], "allowed: ")
                        self.assertNotIn(b"\x1b", answer.err)
        self.assertEqual(self.files(), self.before)

    def try_value(self, kind, parameter, value):
        parameters = {**GOOD[kind["kind"]][0], parameter["name"]: value}
        return self.call(kind["kind"], parameters, "--time-limit", "60", "-o", "out.xbf")

    def test_extreme_values_give_a_sound_shape_or_a_line(self):
        for kind in orvex("new", "--list", "--json").json()["kinds"]:
            for parameter in kind["parameters"]:
                for text in ("-1", "0", "1e300", "1e-300"):
                    value = with_bad(parameter, text)
                    with self.subTest(kind=kind["kind"], parameter=parameter["name"], value=value):
                        self.check_extreme(kind, parameter, value)

    def check_extreme(self, kind, parameter, value):
        answer = self.try_value(kind, parameter, value)
        if answer.code == 0:
            self.assertEqual(orvex("info", self.folder / "out.xbf").code, 0)
            (self.folder / "out.xbf").unlink()
        else:
            words = [kind["kind"], parameter["name"], value[:40]]
            self.assert_one_line(answer, [2, 4], *words, kind.get("condition", "allowed" if answer.code == 2 else ""))
        self.assertEqual(self.files(), self.before)

    def test_what_the_kernel_refuses_is_exit_4_with_the_condition(self):
        for kind, parameters in [
                ("Cone", {"Bottom Radius": "2", "Top Radius": "2", "Height": "1"}),
                ("Line", {"End Point": "0,0,0"}),
                ("Torus", {"Bottom Radius": "1", "Radius": "2"}),
                ("Bezier", {"ControlPoints": "1,2,3"}),
                ("Arc", {"Start Point": "0,0,0", "End Point": "1,0,0", "Third Point": "2,0,0"})]:
            with self.subTest(kind=kind):
                answer = self.call(kind, parameters, "-o", "out.brep")
                self.assert_one_line(answer, [4], *[f"{name}={value}" for name, value in parameters.items()],
                                     "allowed: ")
        self.assertEqual(self.files(), self.before)


class Files(NewCase):
    BOX = {"Length": "1", "Width": "1", "Height": "1"}

    def test_a_failure_leaves_the_earlier_file(self):
        (self.folder / "out.xbf").write_bytes(b"earlier")
        self.assertEqual(self.call("Box", {**self.BOX, "Length": "1e300"}, "-o", "out.xbf").code, 4)
        self.assertEqual((self.folder / "out.xbf").read_bytes(), b"earlier")

    def test_a_time_limit_leaves_nothing(self):
        # Writing this one takes seconds.
        values = {"End Point": "2,0,0", "Number Polygon": "100000"}
        answer = self.call("Polygon", values, "--time-limit", "0.2", "-o", "out.step")
        self.assert_one_line(answer, [124], "Polygon", "0.2 s")
        self.assertEqual(self.files(), self.before)

    def test_mode_and_link_of_an_earlier_file_stay(self):
        target = self.folder / "target.brep"
        target.write_bytes(b"earlier")
        target.chmod(0o640)
        (self.folder / "link.brep").symlink_to("target.brep")
        self.make("Box", self.BOX, "link.brep")
        self.assertTrue((self.folder / "link.brep").is_symlink())
        self.assertEqual(target.stat().st_mode & 0o777, 0o640)
        self.assertEqual(orvex("info", target).code, 0)

    def test_where_nothing_can_be_written_is_told(self):
        (self.folder / "folder.brep").mkdir()
        os.mkfifo(self.folder / "pipe.step")
        for file in ("no/such/folder/out.brep", "folder.brep", "pipe.step"):
            with self.subTest(file=file):
                self.assert_one_line(self.call("Box", self.BOX, "-o", file), [5], file, "cannot be written")

    def test_a_full_disk_is_told(self):
        # A limit on the size of files stands in for it.
        for form in FORMATS:
            call = " ".join(command(["new", "Box", "-p", "Length=1", "-p", "Width=1", "-p", "Height=1",
                                     "-o", self.folder / f"out.{form}"]))
            done = subprocess.run(["bash", "-c", f"trap '' XFSZ; ulimit -f 1; exec {call}"], capture_output=True,
                                  env=environment({}), check=False)
            with self.subTest(format=form):
                self.assertIn(done.returncode, (4, 5), done.stderr)
                self.assertEqual(done.stderr.count(b"\n"), 1)
        self.assertEqual(self.files(), self.before)


if __name__ == "__main__":
    main()
