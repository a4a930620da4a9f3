"""orvex check, compare and quality, on shapes whose figures are known."""
import csv
import math
import pathlib
import tempfile
import unittest

from orvex_cli import DATA, NO_DATA, SAMPLE, main, orvex

BOX = ["-p", "Length=10", "-p", "Width=10", "-p", "Height=10"]


class AnalysisCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        for name, *make in (("box.brep", "Box", *BOX), ("box.step", "Box", *BOX),
                            ("tiny.brep", "Box", "-p", "Length=0.5", "-p", "Width=0.5", "-p", "Height=0.5"),
                            ("ball.brep", "Sphere", "-p", "Radius=5"),
                            ("face.brep", "Rectangle", "-p", "Length=9", "-p", "Width=9"),
                            ("plate.brep", "Box", "-p", "Length=40", "-p", "Width=30", "-p", "Height=2")):
            answer = orvex("new", *make, "-o", name, cwd=cls.folder)
            assert answer.code == 0, answer.err
        (cls.folder / "broken.step").write_text("ISO-10303-21;\nnonsense", encoding="utf-8")
        answer = orvex("op", "fill", "face.brep", "-o", "sheet.brep", cwd=cls.folder)
        assert answer.code == 0, answer.err

    def run_orvex(self, *arguments, code=0):
        answer = orvex(*arguments, cwd=self.folder)
        self.assertEqual(answer.code, code, answer.err)
        return answer


class Check(AnalysisCase):
    def test_a_sound_box_has_nothing(self):
        entry = self.run_orvex("check", "box.brep", "--json").entry()
        self.assertEqual((entry["critical"], entry["warnings"], entry["issues"]), (0, 0, []))

    def test_small_features_are_warnings_with_a_place(self):
        entry = self.run_orvex("check", "tiny.brep", "--json").entry()
        self.assertEqual((entry["critical"], entry["warnings"]), (0, 24))
        edge = entry["issues"][0]
        self.assertEqual((edge["code"], edge["entity"], edge["number"], edge["threshold"]),
                         ("GEO_EDGE_SHORT", "edge", 1, 1))
        self.assertAlmostEqual(edge["value"], 0.5)
        self.assertEqual(sorted(abs(x) for x in edge["point"])[1:].count(0.25), 1)
        none = self.run_orvex("check", "tiny.brep", "--short-edge", "0", "--face-area", "0", "--json").entry()
        self.assertEqual(none["warnings"], 0)
        self.assertEqual(self.run_orvex("check", "tiny.brep", "--most", "3", "--json").entry()["warnings"], 3)

    def test_critical_issues_are_exit_code_1(self):
        answer = self.run_orvex("check", "box.brep", "sheet.brep", code=1)
        self.assertIn("TOPO_OPEN_BOUNDARY (1)", answer.out.decode())
        answer = self.run_orvex("check", "sheet.brep", "broken.step", "missing.brep", "--json", code=5)
        self.assertEqual([f["status"] for f in answer.json()["files"]], ["checked", "failed", "failed"])
        self.run_orvex("check", "broken.step", code=3)

    def test_occurrences_are_told_where_they_are(self):
        entry = self.run_orvex("check", SAMPLE, "--json").entry()
        self.assertEqual((entry["parts"], entry["distinct"]), (119, 20))
        balls = [i for i in entry["issues"] if "ball #" in i["part"] and i["code"] == "GEO_EDGE_DEGENERATED"]
        self.assertEqual(len(balls), 96)
        self.assertEqual(len({tuple(round(x, 3) for x in b["point"]) for b in balls}), 96)


class Compare(AnalysisCase):
    def test_the_same_model_in_another_format_is_equivalent(self):
        result = self.run_orvex("compare", "box.brep", "box.step", "--json").json()
        self.assertTrue(result["equivalent"])
        self.assertAlmostEqual(result["source"]["volume"], 1000)
        self.assertEqual(self.run_orvex("compare", "box.brep", "box.step").out.split(b"\n")[0], b"equivalent")

    def test_faces_beside_a_solid_count(self):
        self.run_orvex("op", "union", "box.brep", "sheet.brep", "-o", "both.brep")
        result = self.run_orvex("compare", "box.brep", "both.brep", "--json", code=1).json()
        self.assertEqual((result["source"]["faces"], result["candidate"]["faces"]), (6, 7))
        self.assertEqual(self.run_orvex("check", "both.brep", code=1).out.count(b"TOPO_OPEN_BOUNDARY"), 1)

    def test_what_differs_is_told(self):
        result = self.run_orvex("compare", "box.brep", "ball.brep", "--json", code=1).json()
        self.assertEqual(result["failures"], ["volume_mismatch", "area_mismatch", "bbox_mismatch", "topology_mismatch"])
        self.run_orvex("compare", "box.brep", "ball.brep", "--no-volume", "--no-area", "--no-box", "--no-topology")
        off = self.run_orvex("compare", "box.brep", "ball.brep", "--no-volume", "--no-area", "--no-box",
                             "--no-topology").out.decode()
        self.assertEqual((off.count("not compared"), off.count("same")), (9, 0))
        text = self.run_orvex("compare", "box.brep", "ball.brep", code=1).out.decode()
        self.assertRegex(text, r"volume +1000 +523\.59\d* +differs")
        self.run_orvex("compare", "box.brep", "missing.step", code=3)
        self.run_orvex("compare", "box.brep", "box.step", "--relative", "-1", code=2)


class Quality(AnalysisCase):
    def figures(self, *arguments):
        return self.run_orvex("quality", *arguments, "--json").json()

    def test_figures_are_those_of_the_formulas(self):
        ball = self.figures("ball.brep", "--curvature")
        self.assertAlmostEqual(abs(ball["figures"]["average"]), 0.2)
        self.assertAlmostEqual(self.figures("ball.brep", "--min-radius")["figures"]["min"], 5)
        self.assertAlmostEqual(self.figures("plate.brep", "--thickness", "--grid", "5")["figures"]["min"], 2, places=5)
        draft = self.figures("box.brep", "--draft", "--direction", "0,0,1", "--min-angle", "1")
        self.assertEqual(draft["facts"]["passes"], False)
        self.assertAlmostEqual(draft["figures"]["max"], 90)
        zebra = self.figures("ball.brep", "--zebra")
        self.assertTrue(0 <= zebra["figures"]["min"] <= zebra["figures"]["max"] <= 1)
        self.assertEqual(self.figures("box.brep", "--continuity")["facts"], {"pairs": 12, "G0": 12, "G1": 0, "G2": 0})
        mirror = self.figures("ball.brep", "--reflection", "--tile", str(math.pi))
        self.assertEqual(set(row[5] for row in mirror["samples"]) <= {0, 1}, True)

    def test_samples_go_to_a_table(self):
        result = self.figures("ball.brep", "--min-radius", "--csv", "out.csv")
        with open(self.folder / "out.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.reader(file))
        self.assertEqual(rows[0], result["columns"])
        self.assertEqual(len(rows) - 1, len(result["samples"]))
        self.assertEqual(sum(bin["count"] for bin in result["histogram"]), len(result["samples"]))
        self.assertIn("#", self.run_orvex("quality", "ball.brep", "--min-radius").out.decode())

    def test_what_cannot_be_is_told(self):
        for arguments, code, word in ((["box.brep"], 2, "--curvature"), (["box.brep", "--min-radius"], 4, "radius"),
                                      (["box.brep", "--draft", "--zebra"], 2, ""),
                                      (["box.brep", "--draft", "--direction", "0,0,0"], 2, "direction"),
                                      (["box.brep", "--draft", "--direction", "nan,0,1"], 2, "direction"),
                                      (["box.brep", "--draft", "--min-angle", "nan"], 2, "min-angle"),
                                      (["box.brep", "--zebra", "--frequency", "inf"], 2, "frequency"),
                                      (["ball.brep", "--continuity"], 4, "share an edge"),
                                      (["box.brep", "--draft", "--grid", "1"], 2, "grid"),
                                      (["box.brep", "--draft", "--grid", "1001"], 2, "grid"),
                                      (["broken.step", "--draft"], 3, "broken.step")):
            answer = self.run_orvex("quality", *arguments, code=code)
            self.assertEqual(answer.out, b"")
            self.assertIn(word, answer.err.decode())


class RealFiles(AnalysisCase):
    @unittest.skipUnless(DATA, NO_DATA)
    def test_each_is_checked_and_equivalent_to_itself(self):
        for file in sorted(pathlib.Path(DATA).glob("*.st*p")):
            if orvex("info", file).code not in (0, 5) or file.stat().st_size > 1_000_000:
                continue
            with self.subTest(file=file.name):
                answer = orvex("check", file, "--json")
                self.assertIn(answer.code, (0, 1), answer.err)
                result = orvex("compare", file, file, "--json").json()
                self.assertIn(result["failures"], ([], ["source_invalid", "candidate_invalid"]))


if __name__ == "__main__":
    main()
