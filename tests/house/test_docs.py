"""The pages of docs/ against what they describe."""
import os
import pathlib
import re
import unittest

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])
DOCS = SOURCE / "docs"

LOOKED_UP = re.compile(r'(?:getenv\(|Switch\(|kWorkerVariable = )"(\w+)"')
LINK = re.compile(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)")


class Docs(unittest.TestCase):
    def test_every_variable_is_documented_and_every_documented_one_is_looked_up(self):
        code = "".join(p.read_text(encoding="utf-8") for folder in ("src", "apps", "tests", "benchmarks")
                       for p in (SOURCE / folder).rglob("*.[ch]*") if p.is_file())
        looked_up = set(LOOKED_UP.findall(code))
        scripts = "".join(p.read_text(encoding="utf-8") for p in (SOURCE / "tests/cli").glob("*.py"))
        page = (DOCS / "environment.md").read_text(encoding="utf-8")
        documented = set(re.findall(r"`((?:ORVEX|TARVEL)_[A-Z_]+[A-Z])`", page))
        self.assertGreater(len(looked_up), 8)
        self.assertEqual([name for name in sorted(looked_up) if f"`{name}`" not in page], [])
        self.assertEqual([name for name in sorted(documented)
                          if name not in looked_up and f'"{name}"' not in scripts], [])

    def test_links_lead_somewhere(self):
        dead = [f"{page.name}: {target}" for page in [*DOCS.rglob("*.md"), *SOURCE.glob("*.md")]
                for target in LINK.findall(page.read_text(encoding="utf-8"))
                if not (page.parent / target).exists()]
        self.assertEqual(dead, [])

    def test_the_sidecar_shown_is_the_one_that_the_tests_load(self):
        page = (DOCS / "parameters.md").read_text(encoding="utf-8")
        shown = re.search(r"```json\n(.*?)```", page, re.DOTALL).group(1)
        fixture = SOURCE / "tests/fixtures/sidecar-0.1.params.json"
        self.assertEqual(shown, fixture.read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
