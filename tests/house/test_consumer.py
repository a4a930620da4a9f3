"""Installs the build into an empty prefix and builds a project against it that knows only
find_package(OrvexCoreGeometry): its program runs, and every installed header compiles.
"""
import os
import pathlib
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])
BUILD = os.environ["ORVEX_BUILD"]


def run(*command, **more):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(command)} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class Consumer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.prefix = pathlib.Path(folder.name) / "prefix"
        cls.build = pathlib.Path(folder.name) / "build"
        run("cmake", "--install", BUILD, "--prefix", str(cls.prefix))
        headers = cls.prefix / "include" / "OrvexCoreGeometry"
        cls.headers = sorted(p.relative_to(headers).as_posix() for p in headers.rglob("*.h"))
        everything = pathlib.Path(folder.name) / "every_header.cpp"
        everything.write_text("".join(f'#include "{name}"\n' for name in cls.headers))
        run("cmake", "-G", "Ninja", "-S", str(SOURCE / "tests/house/consumer"), "-B", str(cls.build),
            f"-DCMAKE_PREFIX_PATH={cls.prefix}", f"-DEVERY_HEADER={everything}",
            f"-DCMAKE_CXX_COMPILER={os.environ['ORVEX_CXX']}",
            f"-DCMAKE_CXX_FLAGS={os.environ['ORVEX_CXX_FLAGS']}")
        run("cmake", "--build", str(cls.build))

    def test_program_runs_against_the_installed_libraries(self):
        out = run(str(self.build / "consumer"), cwd=self.build)
        self.assertEqual(out, "outer = 45\n")

    def test_internal_headers_are_not_installed(self):
        self.assertIn("parameters/GlobalParaMeterMgr.h", self.headers)
        self.assertEqual([name for name in self.headers if "internal/" in name], [])

    def test_nothing_installed_points_back_to_the_build(self):
        for text in self.prefix.rglob("*.cmake"):
            self.assertNotIn(BUILD, text.read_text(), text)
            self.assertNotIn(str(SOURCE), text.read_text(), text)


if __name__ == "__main__":
    unittest.main()
