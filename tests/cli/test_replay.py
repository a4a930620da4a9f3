"""orvex replay: documents and scripts of the sample and of real files."""
import ast
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from orvex_cli import DATA, NO_DATA, SAMPLE, main, orvex

BUNDLE_KEYS = ["payload", "features", "plan", "commandContract", "commandRequests"]
NO_HOST = b"[STEP Replay] CAD module not available; replay() was not executed.\n"


def document(*arguments):
    answer = orvex("replay", SAMPLE, *arguments)
    if (answer.code, answer.err) != (0, b""):
        raise AssertionError((answer.code, answer.err))
    return json.loads(answer.out.decode("utf-8"))


def literal(script, name):
    """The value of a module constant of a script, without running it."""
    for node in ast.parse(script).body:
        if isinstance(node, ast.Assign) and node.targets[0].id == name:
            return ast.literal_eval(node.value)
    raise AssertionError(name)


class RecordingHost:
    """Takes every command and notes it."""

    def __init__(self):
        self.calls = []

    def executeCommand(self, name, payload):  # noqa: N802, the name is the host's
        self.calls.append((name, payload))
        return len(self.calls)


def run_with_host(script, **switches):
    host = RecordingHost()
    names = {"__name__": "replay_script", "CAD": host}
    exec(compile(script, "script", "exec"), names)  # pylint: disable=exec-used
    names.update(switches)
    return names["replay"](host), host.calls


class Documents(unittest.TestCase):
    def test_the_whole_model(self):
        manifest = document()
        self.assertEqual(list(manifest), ["sourceName", "counts", "solidIds", "shellIds", "featureHistogram"])
        self.assertEqual(manifest["sourceName"], "gear-reducer")
        info = orvex("info", "--json", SAMPLE).entry()
        summary, features = document("--summary"), document("--features")
        for kind in ("faces", "shells", "solids"):
            self.assertEqual(manifest["counts"][kind], len(summary[kind]))
        self.assertEqual(manifest["counts"]["solids"], info["counts"]["solids"]["expanded"])
        self.assertEqual(sum(manifest["featureHistogram"].values()), len(features))
        self.assertEqual(document("--bundle"), {"manifest": manifest, "summary": summary, "features": features})
        self.assertEqual(sum(summary["surfaceHistogram"].values()), len(summary["faces"]))

    def test_an_entity_in_every_form(self):
        summary = document("--summary")
        for scope, key in (("face", "faceId"), ("shell", "shellId"), ("solid", "solidId")):
            last = len(summary[scope + "s"])
            bundle = document(f"--{scope}", str(last))
            self.assertEqual(list(bundle), [key, *BUNDLE_KEYS])
            self.assertEqual(bundle[key], last)
            self.assertEqual(bundle["payload"][key], last)
            for form, part in (("payload", "payload"), ("plan", "plan"), ("contract", "commandContract"),
                               ("requests", "commandRequests"), ("bundle", None)):
                shown = document(f"--{scope}", str(last), f"--{form}")
                self.assertEqual(shown, bundle if part is None else bundle[part])
        plan, payload = bundle["plan"], bundle["payload"]
        self.assertEqual([step["id"] for step in plan["steps"]], list(range(1, len(plan["steps"]) + 1)))
        faces = [face["faceId"] for shell in payload["shells"] for face in shell["faces"]]
        self.assertEqual(faces, summary["shells"][payload["shells"][0]["shellId"] - 1]["faceIds"])
        self.assertIn("CASCADE Topology V3", payload["exactBrep"])

    def test_what_cannot_be_is_told(self):
        count = document()["counts"]["solids"]
        for arguments, code, word in ((["--solid", "0"], 2, "solid 0"), (["--solid", str(count + 1)], 2, f"1 to {count}"),
                                      (["--solid", "1", "--manifest"], 2, "--manifest"), (["--plan"], 2, "--plan"),
                                      (["--summary", "--features"], 2, "one document"),
                                      (["--face", "1", "--solid", "1"], 2, ""), (["--all"], 2, "-o DIR"),
                                      (["--all", "--solid", "1"], 2, "--solid"), (["--all", "--plan"], 2, "--plan"),
                                      (["--face", "-1"], 2, "-1"), (["--face", "99999999999999999999"], 2, "99999"),
                                      (["-o", "/no/such/folder/x.json"], 5, "/no/such/folder")):
            answer = orvex("replay", SAMPLE, *arguments)
            self.assertEqual((answer.code, answer.out), (code, b""), arguments)
            self.assertIn(word, answer.err.decode())
        self.assertEqual(orvex("replay", "missing.step").code, 3)


class Scripts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def all_scripts(self, file, name="out"):
        answer = orvex("replay", file, "--all", "-o", name, "--json", cwd=self.folder)
        self.assertEqual((answer.code, answer.err), (0, b""))
        solids = answer.json()["solids"]
        self.assertEqual({p.name for p in (self.folder / name).iterdir()}, {solid["file"] for solid in solids})
        return [(solid, (self.folder / name / solid["file"]).read_bytes()) for solid in solids]

    def check_runs(self, solid, script):
        bundle = json.loads(literal(script, "REPLAY_BUNDLE_JSON"))
        self.assertEqual(bundle["solidId"], solid["id"])
        self.assertEqual(bundle["plan"]["primaryStrategy"], solid["strategy"])
        result, calls = run_with_host(script.decode("utf-8"))
        self.assertEqual(result["strategy"], solid["strategy"])
        self.assertEqual(result["pending"], [])
        built = [payload for name, payload in calls if payload.get("kind") == "build_solid"]
        self.assertEqual(len(built), 1)
        if solid["strategy"] in ("sweep", "loft", "revolve", "boolean"):
            self.assertEqual(built[0]["exactBrep"], bundle["payload"]["exactBrep"])
        _, more = run_with_host(script.decode("utf-8"), REPLAY_DEBUG_INTERMEDIATES=True)
        faces = sum(len(shell["faces"]) for shell in bundle["payload"]["shells"])
        self.assertEqual(len(more) - len(calls), 3 * faces + len(bundle["payload"]["shells"]))

    def test_of_the_sample(self):
        scripts = self.all_scripts(SAMPLE)
        self.assertEqual([solid["id"] for solid, _ in scripts], list(range(1, len(scripts) + 1)))
        for solid, script in scripts[::20]:
            self.check_runs(solid, script)
        done = subprocess.run([sys.executable, self.folder / "out" / "solid_1.py"], capture_output=True, check=True)
        self.assertEqual((done.stdout, done.stderr), (NO_HOST, b""))
        self.assertEqual([script for _, script in self.all_scripts(SAMPLE, "again")], [script for _, script in scripts])
        one = orvex("replay", SAMPLE, "--solid", "1", "--script", "-o", "one.py", cwd=self.folder)
        self.assertEqual((one.code, one.out), (0, b""))
        self.assertEqual((self.folder / "one.py").read_bytes(), scripts[0][1])

    def test_of_the_manifest(self):
        script = orvex("replay", SAMPLE, "--script").out.decode("utf-8")
        self.assertEqual(literal(script, "REPLAY_SCOPE"), "manifest")
        result, calls = run_with_host(script)
        self.assertEqual((calls, result["created"], result["pending"]), ([], [], []))

    def test_a_failure_leaves_nothing(self):
        (self.folder / "broken.step").write_text("ISO-10303-21;\nnonsense", encoding="utf-8")
        answer = orvex("replay", "broken.step", "--all", "-o", "out", cwd=self.folder)
        self.assertEqual((answer.code, answer.out, answer.err.count(b"\n")), (3, b"", 1))
        self.assertEqual(list((self.folder / "out").iterdir()), [])

    def test_a_folder_in_the_way_of_a_script_keeps_all_as_it_was(self):
        (self.folder / "out" / "solid_7.py").mkdir(parents=True)
        answer = orvex("replay", SAMPLE, "--all", "-o", "out", cwd=self.folder)
        self.assertEqual((answer.code, answer.out, answer.err.count(b"\n")), (5, b"", 1))
        self.assertIn(b"solid_7.py", answer.err)
        self.assertEqual([p.name for p in (self.folder / "out").iterdir()], ["solid_7.py"])

    @unittest.skipUnless(DATA, NO_DATA)
    def test_of_real_files(self):
        for file in sorted(pathlib.Path(DATA).glob("*.st*p")):
            if orvex("info", file).code not in (0, 5) or file.stat().st_size > 2_000_000:
                continue
            with self.subTest(file=file.name):
                for solid, script in self.all_scripts(file, file.stem)[:3]:
                    self.check_runs(solid, script)


if __name__ == "__main__":
    main()
