"""Inputs that are no good STEP file: one clear line, exit 3, never a crash or a hang."""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

from orvex_cli import DATA, NO_DATA, PROGRAM, SAMPLE, main, orvex

NOBODY = 65534


class BadInput(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def assert_refused(self, path, reason, **more):
        """Exit 3 and one line with the name of the file and the reason, however it is read."""
        for options in [[], ["--plain"], ["--json"]]:
            answer = orvex("info", *options, path, **more)
            self.assertEqual(answer.code, 3, answer.err)
            self.assertEqual(answer.err.count(b"\n"), 1, answer.err)
            self.assertEqual(len(answer.error_lines), 1)
            self.assertIn(pathlib.Path(os.fsdecode(path)).name, answer.error_lines[0])
            self.assertRegex(answer.error_lines[0], reason)
            self.assertEqual(bool(answer.out), "--json" in options)
        self.assertEqual(answer.entry()["status"], "failed")
        self.assertRegex(answer.entry()["error"]["reason"], reason)

    def test_files_that_can_be_refused_without_the_kernel(self):
        os.mkfifo(self.folder / "pipe.step")
        iges = b" " * 72 + b"S      1\n" + b"1H,,1H;" + b" " * 65 + b"G      1\n"
        for path, reason in [
                (self.folder / "missing.step", "no such file"),
                (self.folder, "is a directory"),
                (self.folder / "pipe.step", "not an ordinary file"),
                (self.file("empty.step", b""), "is empty"),
                (self.file("picture.step", b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR"), "PNG image"),
                (self.file("iges.step", iges), "IGES"),
                (self.file("packed.step", b"\x1f\x8b\x08\0\0\0"), "unpack it"),
                (self.file("text.step", b"Dear reader,\n"), "ISO-10303-21"),
                (self.file("zeros.step", bytes(5000)), "ISO-10303-21")]:
            with self.subTest(path=path.name):
                self.assert_refused(path, reason)

    def test_a_file_without_permission(self):
        path = self.file("secret.step", SAMPLE.read_bytes())
        path.chmod(0)
        if os.geteuid() != 0:
            self.assert_refused(path, "no permission")
            return
        self.folder.chmod(0o755)
        as_nobody = {"user": NOBODY, "group": NOBODY, "extra_groups": []}
        try:
            subprocess.run([PROGRAM, "version"], check=True, capture_output=True, **as_nobody)
        except (OSError, subprocess.SubprocessError) as problem:
            self.skipTest(f"root reads everything, and nobody cannot run the program: {problem}")
        self.assert_refused(path, "no permission", **as_nobody)

    def test_a_name_that_is_not_utf8(self):
        path = os.fsencode(self.folder) + b"/gr\xf6\xdfe.step"
        shutil.copy(os.fsencode(SAMPLE), path)
        answer = orvex("info", path)
        self.assertEqual(answer.code, 3)
        self.assertIn("not UTF-8", answer.error_lines[0])

    def test_a_name_cannot_move_the_cursor(self):
        path = self.file("red\x1b[31m\nline.step", b"")
        answer = orvex("info", path)
        self.assertEqual(answer.code, 3)
        self.assertEqual(answer.err.count(b"\n"), 1)
        self.assertNotIn(b"\x1b", answer.err)
        self.assertEqual(orvex("info", "--json", path).entry()["file"], str(path))

    def test_a_file_that_is_cut_off_says_so(self):
        content = SAMPLE.read_bytes()
        self.assert_refused(self.file("cut.step", content[:len(content) // 2]), "cut off|parse")

    def test_a_scope_section_does_not_take_orvex_down(self):
        # This makes the kernel's parser free its memory twice and abort.
        content = SAMPLE.read_bytes()
        at = content.index(b"DATA;") + len(b"DATA;")
        scope = b"\n#900001=&SCOPE\n#900002=DIRECTION('',(1.,0.,0.));\nENDSCOPE /#900002/ DIRECTION('',(0.,0.,1.));\n"
        for isolation in [[], ["--plain"]]:
            answer = orvex("info", *isolation, self.file("scope.step", content[:at] + scope + content[at:]))
            self.assertIn(answer.code, (0, 3, 5))
            self.assertEqual(len(answer.error_lines), int(answer.code == 3), answer.err)

    def test_a_bad_file_among_good_ones_makes_the_result_partial(self):
        empty = self.file("empty.step", b"")
        answer = orvex("info", "--json", SAMPLE, empty, SAMPLE)
        self.assertEqual(answer.code, 5)
        self.assertEqual([entry["status"] for entry in answer.json()["files"]], ["read", "failed", "read"])
        self.assertEqual(orvex("info", empty, self.folder).code, 3)

    @unittest.skipUnless(DATA, NO_DATA)
    def test_a_file_that_crashes_the_kernel_names_the_entity(self):
        for isolation in [[], ["--in-process"]]:
            answer = orvex("info", *isolation, pathlib.Path(DATA) / "crash-line-without-vector.stp")
            self.assertEqual(answer.code, 3)
            self.assertEqual(answer.err.count(b"\n"), 1)
            self.assertRegex(answer.error_lines[0], r"#\d+ LINE.*crashed")


class HostileText(unittest.TestCase):
    """Names in a file are bytes that nobody has checked."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = pathlib.Path(folder.name) / "hostile.step"
        content = SAMPLE.read_bytes()
        for name, replacement in [(b"housing bottom", b"bell\x07 \x1b[31mred"),
                                  (b"housing top", b"broken \xff\xc3 utf8"),
                                  (b"input shaft group", b"\\X2\\202E\\X0\\reversed")]:
            self.assertIn(name, content)
            content = content.replace(name, replacement)
        self.path.write_bytes(content)

    def test_json_is_utf8_and_the_terminal_stays_clean(self):
        answer = orvex("info", "--json", "--tree", self.path)
        names = [node["name"] for node in answer.entry()["tree"][0]["children"]]
        self.assertTrue(any("red" in name for name in names), names)
        text = orvex("info", "--tree", self.path).out.decode("utf-8")
        self.assertIsNone(re.search("[\x00-\x09\x0b-\x1f\x7f-\x9f\u202a-\u202e]", text))


if __name__ == "__main__":
    main()
