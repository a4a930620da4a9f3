"""orvex collide and orvex interfere, on boxes made on the spot and on the sample."""
import csv
import io
import pathlib
import tempfile
import unittest

from orvex_cli import SAMPLE, main, orvex


class Scene(unittest.TestCase):
    """Boxes of side 10: a and b overlap by 1, c touches b, d is apart from all; e crosses a in a corner."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        for name, place in (("a", "0,0,0"), ("b", "9,0,0"), ("c", "19,0,0"), ("d", "60,0,0"), ("e", "9,3,3")):
            cls.box(f"{name}.brep", place)

    @classmethod
    def box(cls, name, place):
        sizes = [f"-p{side}=10" for side in ("Length", "Width", "Height")]
        answer = orvex("new", "Box", *sizes, f"-pBase Point={place}", "-o", name, cwd=cls.folder)
        assert answer.code == 0, answer.err

    def call(self, *arguments, code):
        answer = orvex(*arguments, cwd=self.folder)
        self.assertEqual(answer.code, code, answer.err)
        return answer

    def pairs(self, *arguments, code=1):
        report = self.call("collide", "--json", *arguments, code=code).json()
        return report, {(p["a"]["name"], p["b"]["name"]): p for p in report["pairs"]}


class Collide(Scene):
    FILES = ("a.brep", "b.brep", "c.brep", "d.brep")

    def test_touching_is_told_from_overlapping(self):
        for preset in ("balanced", "strict", "accurate", "visualization"):
            report, pairs = self.pairs(*self.FILES, "--preset", preset)
            self.assertEqual({k: p["kind"] for k, p in pairs.items()}, {("a", "b"): "overlap", ("b", "c"): "contact"})
            self.assertAlmostEqual(pairs["a", "b"]["volume"], 100, places=6)
            for got, expected in zip(pairs["a", "b"]["place"], (9.5, 5, 5)):
                self.assertAlmostEqual(got, expected, places=6)
            self.assertAlmostEqual(pairs["b", "c"]["place"][0], 19, places=6)
            self.assertEqual((report["parts"], report["overlaps"], report["contacts"], report["failedPairs"]),
                             (4, 1, 1, 0))
            self.assertEqual("missed" in report, preset == "strict")

    def test_what_the_fast_preset_overlooks_is_found_by_a_check(self):
        report, pairs = self.pairs("b.brep", "c.brep", "--preset", "fast", "--check")
        self.assertEqual([(p["kind"], p["volume"]) for p in pairs.values()], [("meeting", None)])
        self.assertEqual(report["missed"], [])
        answer = self.call("collide", "--json", "a.brep", "e.brep", "--preset", "fast", "--check", code=1)
        self.assertIn("1 of the cleared pairs", answer.warning_lines[0])
        (missed,) = answer.json()["missed"]
        self.assertEqual((missed["a"]["name"], missed["b"]["name"]), ("a", "e"))
        self.assertAlmostEqual(missed["volume"], 49, places=6)

    def test_what_is_no_clash_to_the_user_is_left_out(self):
        for options, kept, left in (
                (["--min-volume", "1e-6"], [("a", "b")], 1), (["--min-volume", "101"], [], 2),
                (["--ignore", "c*"], [("a", "b")], 1), (["--ignore", "?.brep/*", "--ignore", "none"], [], 2),
                (["--tolerance", "0"], [("a", "b"), ("b", "c")], 0),
                (["--tolerance", "42"], [("a", "b"), ("b", "c"), ("c", "d"), ("a", "c")], 0)):
            with self.subTest(options=options):
                report, pairs = self.pairs(*self.FILES, *options, code=1 if kept else 0)
                self.assertEqual(set(pairs), set(kept))
                self.assertEqual(report["leftOut"], left)

    def test_stages_add_up_to_the_pairs_proposed(self):
        for index in ("none", "grid", "octree", "rtree", "morton"):
            report, _ = self.pairs(*self.FILES, "--explain", "--index", index, "--preset", "accurate")
            stages = report["stages"]
            self.assertEqual(sum(stages[s]["cleared"] + stages[s]["collided"] for s in ("box", "mesh", "exact", "boolean")),
                             stages["proposed"])
            self.assertEqual((stages["proposed"], stages["boolean"]["collided"], stages["triangles"]), (6, 2, 36))
            self.assertEqual(stages["box"]["cleared"], 4)

    def test_text_and_table_tell_the_same(self):
        text = self.call("collide", *self.FILES, code=1).out.decode()
        self.assertRegex(text, r"overlap  a\.brep/a — b\.brep/b  volume 100  at \(9\.5, 5, 5\)\n"
                               r"contact  b\.brep/b — c\.brep/c  at \(19, .*\)\n4 parts: 1 overlap, 1 contact \([\d.]+ s\)\n")
        rows = list(csv.DictReader(io.StringIO(self.call("collide", "--csv", *self.FILES, code=1).out.decode())))
        self.assertEqual([(r["kind"], r["a"], r["b"]) for r in rows],
                         [("overlap", "a.brep/a", "b.brep/b"), ("contact", "b.brep/b", "c.brep/c")])
        self.assertEqual(float(rows[0]["volume"]), 100)
        self.assertIn(b"no collisions", self.call("collide", "a.brep", "d.brep", code=0).out)

    def test_the_overlap_is_written(self):
        for name in ("out.brep", "out.step", "out.xbf"):
            self.call("collide", *self.FILES, "--overlap", name, code=1)
            entry = self.call("info", "--json", name, code=0).entry()
            self.assertEqual(entry["counts"]["solids"]["expanded"], 1)
            self.assertAlmostEqual(entry["box"]["size"][0], 1, places=3)

    def test_the_region_gives_the_common_of_two_files(self):
        report = self.call("collide", "--roi", "--json", "a.brep", "b.brep", "--overlap", "roi.brep", code=1).json()
        self.assertAlmostEqual(report["volume"], 100, places=4)
        self.assertAlmostEqual(report["area"], 240, places=4)
        self.assertFalse(report["usedFallback"])
        self.assertEqual(self.call("info", "--json", "roi.brep", code=0).entry()["counts"]["solids"]["expanded"], 1)
        self.assertIsNone(self.call("collide", "--roi", "--json", "a.brep", "d.brep", code=0).json()["region"])
        self.assertIn(b"no overlap", self.call("collide", "--roi", "b.brep", "c.brep", code=0).out)

    def test_what_cannot_be_is_told(self):
        for arguments, code, word in (
                (["--roi", "a.brep"], 2, "--roi A B"), (["--csv", "--json", "a.brep"], 2, "--csv"),
                (["--preset", "hasty", "a.brep"], 2, ""), (["--index", "tree", "a.brep"], 2, ""),
                (["--tolerance", "-1", "a.brep"], 2, ""), (["--overlap", "x.txt", *self.FILES], 2, ".brep"),
                (["--preset", "fast", "--overlap", "x.brep", *self.FILES], 2, "balanced"),
                (["missing.step"], 3, "missing.step"), (["--overlap", "/no/such/x.brep", *self.FILES], 5, "/no/such")):
            with self.subTest(arguments=arguments):
                answer = self.call("collide", *arguments, code=code)
                self.assertEqual((answer.out, answer.err.count(b"\n")), (b"", 1))
                self.assertIn(word, answer.err.decode())

    def test_one_part_collides_with_nothing(self):
        report, _ = self.pairs("a.brep", code=0)
        self.assertEqual(report["overlaps"], 0)


class Assembly(unittest.TestCase):
    def test_parts_are_the_placed_occurrences_of_the_tree(self):
        leaves = orvex("info", "--json", SAMPLE).entry()["structure"]["leaves"]
        report = orvex("collide", "--json", "--preset", "fast", SAMPLE, "--time-limit", "200").json()
        self.assertEqual(report["parts"], leaves)
        paths = {p[side]["path"] for p in report["pairs"] for side in "ab"}
        self.assertGreater(len(paths), 20)
        self.assertTrue(all(path.startswith("gear reducer/") for path in paths))
        self.assertTrue(any("ball bearing" in path and "/ball #" in path for path in paths), paths)

    def test_a_time_limit_gives_what_was_found_with_124(self):
        answer = orvex("collide", "--json", SAMPLE, "--time-limit", "0.001")
        # Reading is under the same limit; whoever is first, it is told.
        self.assertEqual(answer.code, 124)
        if answer.out:
            self.assertTrue(answer.json()["timedOut"])


class Interfere(Scene):
    def test_pairs_whose_common_has_a_vertex(self):
        report = self.call("interfere", "--json", "a.brep", "b.brep", "d.brep", code=1).json()
        self.assertEqual([(p["a"]["name"], p["b"]["name"]) for p in report["pairs"]], [("a", "b")])
        text = self.call("interfere", "a.brep", "b.brep", "d.brep", "--filter", "0.1", code=1).out.decode()
        self.assertEqual(text, "a.brep/a — b.brep/b\n3 parts: 1 interfering pair\n")
        self.assertIn(b"2 parts: 0 interfering pairs", self.call("interfere", "a.brep", "d.brep", code=0).out)
        self.call("interfere", "--filter", "0", "a.brep", code=2)


if __name__ == "__main__":
    main()
