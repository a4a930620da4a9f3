"""orvex pick, on a box whose hits are known and on the sample assembly."""
import pathlib
import tempfile
import unittest

from orvex_cli import SAMPLE, main, orvex

DOWN = "3,4,20,0,0,-1"


class Pick(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        answer = orvex("new", "Box", "-p", "Length=10", "-p", "Width=10", "-p", "Height=10",
                       "-o", "box.brep", cwd=cls.folder)
        assert answer.code == 0, answer.err

    def run_orvex(self, *arguments, code=0):
        answer = orvex("pick", *arguments, cwd=self.folder)
        self.assertEqual(answer.code, code, answer.err)
        return answer

    def hits(self, *arguments):
        return self.run_orvex("box.brep", *arguments, "--json").json()["rays"][0]["hits"]

    def test_faces_are_hit_on_both_sides_nearest_first(self):
        hits = self.hits("--ray", DOWN)
        self.assertEqual([h["distance"] for h in hits], [10, 20])
        self.assertEqual([round(c, 9) for c in hits[0]["point"]], [3, 4, 10])
        self.assertNotEqual(hits[0]["number"], hits[1]["number"])
        self.assertEqual(len(self.hits("--ray", "3,4,20,0,0,1")), 2)

    def test_solids_are_seen_against_the_ray(self):
        self.assertEqual(self.hits("--level", "solid", "--ray", DOWN), [])
        hits = self.hits("--level", "solid", "--ray", "3,4,20,0,0,1")
        self.assertEqual([(h["distance"], "u" in h) for h in hits], [(10, False)])

    def test_edges_are_hit_within_the_tolerance(self):
        ray = ("--level", "edge", "--ray", "-5,3,9.8,1,0,0")
        self.assertEqual(self.hits(*ray), [])
        self.assertEqual(len(self.hits(*ray, "--tolerance", "0.3")), 4)
        self.assertEqual(len(self.hits("--level", "vertex", "--ray", "-1,-1,-1,1,1,1")), 12)

    def test_rays_come_from_a_file(self):
        (self.folder / "rays.txt").write_text(f"# two rays\n{DOWN}\n\n50 0 0  0 0 1 # past it\n", encoding="utf-8")
        text = self.run_orvex("box.brep", "--rays", "rays.txt").out.decode()
        self.assertRegex(text, r"^from 3, 4, 20 along 0, 0, -1: 2\n +10  face \d of .* at 3, 4, 10\n")
        self.assertTrue(text.endswith("from 50, 0, 0 along 0, 0, 1: nothing\n"))

    def test_parts_of_an_assembly_are_told_by_their_path(self):
        ray = self.run_orvex(SAMPLE, "--ray", "0,0,1000,0,0,1", "--level", "solid", "--json").json()
        self.assertEqual(ray["parts"], 119)
        hits = ray["rays"][0]["hits"]
        self.assertGreater(len(hits), 0)
        self.assertTrue(all("/" in h["path"] for h in hits))
        self.assertEqual(hits, sorted(hits, key=lambda h: h["distance"]))

    def test_what_is_no_ray_is_refused(self):
        for text in ("1,2,3", "0,0,0,0,0,0", "0,0,0,0,0,1,2", "0,0,nan,0,0,1", "a,b,c,d,e,f"):
            self.assertIn(b"--ray", self.run_orvex("box.brep", "--ray", text, code=2).err)
        self.run_orvex("box.brep", code=2)
        (self.folder / "bad.txt").write_text(f"{DOWN}\n1,2\n", encoding="utf-8")
        self.assertIn(b"bad.txt: line 2: it is no ray", self.run_orvex("box.brep", "--rays", "bad.txt", code=3).err)
        self.run_orvex("box.brep", "--rays", "none.txt", code=3)
        self.run_orvex("box.brep", "--rays", ".", code=3)
        self.run_orvex("box.brep", "--ray", "0,0,10,0,0-1", code=2)
        self.run_orvex("missing.brep", "--ray", DOWN, code=3)


if __name__ == "__main__":
    main()
