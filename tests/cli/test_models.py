"""orvex info on damaged documents, BRep and IGES files: exit 3 and a line, never a crash or a hang."""
import pathlib
import random
import tempfile
import time
import unittest

from orvex_cli import main, orvex

MUTATIONS = 40


class Damaged(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.good = {}
        for form in ("xbf", "brep", "iges"):
            path = cls.folder / f"good.{form}"
            orvex("new", "Cone", "-p", "Bottom Radius=2", "-p", "Top Radius=1", "-p", "Height=3", "-o", path)
            cls.good[form] = path.read_bytes()

    def check(self, form, content, codes=(0, 3)):
        path = self.folder / f"bad.{form}"
        path.write_bytes(content)
        answer = orvex("info", "--json", "--stall-limit", "5", path)
        self.assertIn(answer.code, codes, answer.err)
        self.assertEqual(answer.err.count(b"\n"), int(answer.code == 3), answer.err)
        self.assertEqual(answer.entry()["status"], "failed" if answer.code == 3 else "read")
        if answer.code == 3:
            self.assertIn(path.name, answer.error_lines[0])

    def test_what_is_cut_off(self):
        for form, content in self.good.items():
            for share in (0.02, 0.1, 0.3, 0.5, 0.7, 0.9):
                with self.subTest(format=form, share=share):
                    # An IGES file that is cut off may still hold a shape.
                    started = time.monotonic()
                    self.check(form, content[:int(len(content) * share)], (0, 3) if form == "iges" else (3,))
                    self.assertLess(time.monotonic() - started, 4, "told only when the kernel got stuck")

    def test_one_document_can_be_told_twice(self):
        path = self.folder / "good.xbf"
        for isolation in [[], ["--in-process"]]:
            first, second = orvex("info", "--json", *isolation, path, path).json()["files"]
            self.assertEqual((first["status"], first["shapes"]), ("read", second["shapes"]))

    def test_garbage_behind_a_good_start(self):
        heads = {"xbf": 8, "brep": 60, "iges": 240}
        noise = random.Random(5).randbytes(20000)
        for form, content in self.good.items():
            with self.subTest(format=form):
                self.check(form, content[:heads[form]] + noise, (3,))

    def test_changed_bytes(self):
        for form, content in self.good.items():
            chance = random.Random(form)
            for i in range(MUTATIONS):
                changed = bytearray(content)
                for _ in range(chance.randint(1, 8)):
                    changed[chance.randrange(len(changed))] = chance.randrange(256)
                with self.subTest(format=form, mutation=i):
                    self.check(form, bytes(changed))

    def test_the_wrong_content_is_named_without_the_kernel(self):
        for form, other, word in [("xbf", "brep", "BRep"), ("brep", "xbf", "binary document"),
                                  ("brep", "iges", "IGES"), ("step", "xbf", "binary document")]:
            path = self.folder / f"wrong.{form}"
            path.write_bytes(self.good[other])
            answer = orvex("info", path)
            self.assertEqual(answer.code, 3)
            self.assertRegex(answer.error_lines[0], f"wrong.{form}: not a .*{word}")


if __name__ == "__main__":
    main()
