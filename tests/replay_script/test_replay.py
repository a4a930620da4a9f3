"""The replay script against a host: what it calls, in which order, with what, and what it answers."""
import contextlib
import io
import itertools
import unittest

from bundles import (FACES, SCRIPT, STRATEGIES, Host, bundle_of, face, face_group, faces, load, make_step, sew, shell,
                     solid, solid_bundle)

BASE = ["schemaVersion", "contractName", "kind", "scope", "entityId", "targetKind", "resultKey", "groups",
        "inputGroups"]
FOUR = ["faces", "supportFaces", "capFaces", "trimmedFaces"]
END = ["bindings", "apiCandidates"]
INFER = [("inferReplayStrategy", FOUR)]
VALIDATE = [("validateSolidReplay", FOUR)]
DEBUG = [("defineSurfaceFromPayload", ["faces"]), ("defineTrimLoopsFromPayload", ["trimmedFaces", "faces"]),
         ("buildTrimmedFaceFromPayload", ["faces", "trimmedFaces"]), ("sewFacesFromPayload", ["faces"])]
# Of the call that makes the solid: keys behind the usual ones.
EXACT = [("buildSolidFromReplay", FOUR + END + ["exactBrep", "name"])]
OWN = {"sweep": [("rebuildSweepFromFaces", ["sections", "guides", "profileFaces"])],
       "loft": [("rebuildLoftFromFaces", ["sections", "guides"])],
       "revolve": [("rebuildRevolveFromFaces", ["axisFaces", "profileFaces"])],
       "boolean": [("rebuildBooleanFromFaces", ["operands", "cuts"])]}
FREEFORM = [("rebuildTrimmedFreeformFromFaces", ["surfaceSets", "trimBoundaries"])]


def expected_calls(strategy, debug, experimental):
    steps = (DEBUG if debug else []) + INFER
    if strategy in OWN:
        return (OWN[strategy] if experimental else EXACT) + steps + VALIDATE
    if strategy == "trimmed_freeform":
        return FREEFORM + steps + VALIDATE
    if strategy == "freeform":
        return steps + [("extractFreeformSurfaceSetsFromFaces", ["surfaceSets", "supportFaces", "faces"]),
                        ("extractTrimmedBoundariesFromFaces", ["trimBoundaries", "trimmedFaces"])] + FREEFORM + VALIDATE
    if strategy == "generic_brep":
        return steps + [("buildSolidFromReplay", FOUR)] + VALIDATE
    return [("buildSolidFromReplay", FOUR + END + ["primitiveStrategy"])] + steps + VALIDATE


class Strategies(unittest.TestCase):
    def test_calls_and_payload_keys_of_each_strategy_with_each_switch(self):
        for strategy, debug, experimental in itertools.product(STRATEGIES, (False, True), (False, True)):
            with self.subTest(strategy=strategy, debug=debug, experimental=experimental):
                host = Host()
                bundle = solid_bundle(strategy)
                answer = load(bundle, REPLAY_DEBUG_INTERMEDIATES=debug,
                              REPLAY_EXPERIMENTAL_STRATEGY_BUILD=experimental).replay(host)
                expected = [(name, BASE + (keys if END[0] in keys else keys + END))
                            for name, keys in expected_calls(strategy, debug, experimental)]
                self.assertEqual([(name, list(payload)) for name, payload in host.calls], expected)
                result = answer["strategyResult"]
                if result:
                    self.assertEqual(result["apiResult"], {"api": host.calls[0][0], "ok": True, "result": 1})
                    self.assertIs(result["commandPayload"], host.calls[0][1])
                    self.assertEqual(result["request"]["stepId"], result["executedStepIds"][-1])

    def test_the_exact_text_makes_the_solid_under_a_name_of_its_own(self):
        for strategy, name in [("sweep", "ReplaySweep_3"), ("loft", "ReplayLoft_3"), ("revolve", "ReplayRevolve_3"),
                               ("boolean", "ReplayBoolean_3")]:
            bundle = solid_bundle(strategy)
            host = Host("buildSolidFromReplay")
            load(bundle).replay(host)
            (_, payload), = host.calls
            self.assertEqual((payload["name"], payload["exactBrep"]), (name, solid()["exactBrep"]))
            self.assertEqual((payload["kind"], payload["contractName"]), ("build_solid", "ReplayCommandV1"))
            # The replay leaves the bundle as it was.
            self.assertEqual(bundle, solid_bundle(strategy))

    def test_names_without_an_id_and_of_other_strategies(self):
        name = load({})._default_replay_name
        self.assertEqual([name("loft", 0), name("loft", None), name("freeform", 2), name("trimmed_freeform", 2)],
                         ["ReplayLoft", "ReplayLoft", "ReplaySolid_2", "ReplayTrimmedFreeform_2"])

    def test_a_result_tells_strategy_steps_and_what_the_bundle_carried(self):
        bundle = solid_bundle("primitive_box")
        bundle["plan"]["semanticStrategy"] = "boolean"
        bundle["plan"]["steps"].append(make_step(9, "paint", "Paint", ["paint"], ["faces"]))
        script = load(bundle, REPLAY_SCOPE="solid", REPLAY_ENTITY_ID=3)
        result = script.replay(Host())
        self.assertEqual(list(result), ["scope", "entityId", "strategy", "semanticStrategy", "strategyResult",
                                        "payload", "features", "created", "pending"])
        self.assertEqual((result["scope"], result["entityId"], result["strategy"], result["semanticStrategy"]),
                         ("solid", 3, "primitive_box", "boolean"))
        self.assertEqual((result["payload"], result["features"]), (bundle["payload"], bundle["features"]))
        self.assertEqual([step["kind"] for step in result["pending"]], ["paint"])
        self.assertEqual([step["kind"] for step in result["created"]],
                         ["infer_primary_rebuild_strategy", "validate_solid"])
        self.assertEqual(list(result["created"][0]),
                         ["kind", "entityId", "request", "payload", "commandPayload", "apiResult"])
        primitive = result["strategyResult"]
        self.assertEqual((primitive["strategy"], primitive["executedStepIds"]), ("primitive_box", [6]))
        self.assertEqual((primitive["primitiveStrategy"], primitive["commandPayload"]["primitiveStrategy"]),
                         ("primitive_box", "primitive_box"))
        self.assertEqual((script.get_primary_strategy(), script.get_semantic_strategy()),
                         ("primitive_box", "boolean"))

    def test_without_a_strategy_of_its_own_each_known_step_runs_by_itself(self):
        known = [kind for steps, _ in STRATEGIES.values() for kind, *_ in steps]
        known += ["validate_shell", "infer_primary_rebuild_strategy", "build_solid", "validate_solid"]
        behind_the_switch = ["define_surface", "define_trim_loops", "build_trimmed_face", "sew_shell"]
        kinds = ["engrave", *known, *behind_the_switch, "paint"]
        bundle = bundle_of(solid(), [make_step(i, kind, kind, [], []) for i, kind in enumerate(kinds, 1)])
        for debug in (False, True):
            result = load(bundle, REPLAY_DEBUG_INTERMEDIATES=debug).replay(Host())
            self.assertEqual([step["kind"] for step in result["created"]], known + behind_the_switch * debug)
            self.assertEqual([step["kind"] for step in result["pending"]], ["engrave", "paint"])


class Scopes(unittest.TestCase):
    def test_a_manifest_and_a_plan_without_steps_call_nothing(self):
        for bundle in ({"counts": {"solids": 1}}, bundle_of({}, [])):
            host = Host(execute=True)
            result = load(bundle, REPLAY_DEBUG_INTERMEDIATES=True).replay(host)
            self.assertEqual((host.calls, result["created"], result["pending"]), ([], [], []))
            self.assertEqual((result["strategy"], result["semanticStrategy"], result["strategyResult"]),
                             ("generic_brep", "generic_brep", None))
        script = load({})
        self.assertEqual((script.get_primary_strategy(), script.get_semantic_strategy()), ("generic_brep",) * 2)

    def test_a_face_needs_the_intermediates(self):
        bundle = bundle_of(face(4), face_group(1, 4), "trimmed_face")
        host = Host()
        self.assertEqual(load(bundle).replay(host)["created"], [])
        self.assertEqual(host.calls, [])
        created = load(bundle, REPLAY_DEBUG_INTERMEDIATES=True).replay(host)["created"]
        self.assertEqual(host.names(), [name for name, _ in DEBUG[:3]])
        self.assertEqual([payload["faces"] for _, payload in host.calls], [[face(4)]] * 3)
        self.assertEqual([step["entityId"] for step in created], [4, 4, 4])

    # The plan of a face bears the strategy of the solid that the face is part of.
    def test_a_face_of_a_swept_solid_asks_for_a_solid_without_geometry(self):
        host = Host()
        result = load(bundle_of(face(4), face_group(1, 4), "sweep")).replay(host)
        (name, payload), = host.calls
        self.assertEqual((name, payload["name"], payload["entityId"]), ("buildSolidFromReplay", "ReplaySweep", None))
        self.assertNotIn("exactBrep", payload)
        self.assertEqual((result["strategyResult"]["executedStepIds"], result["created"]), ([], []))

    def test_a_shell_is_validated_and_on_request_sewn(self):
        steps = [sew(1), make_step(2, "validate_shell", "ValidateShell", ["validateShellReplay"], ["faces"],
                                   scope="shell", entity=7, shellIds=[7])]
        for debug, names in ((False, ["validateShellReplay"]), (True, ["sewFacesFromPayload", "validateShellReplay"])):
            host = Host()
            load(bundle_of(shell(), steps, "shell_sew"), REPLAY_DEBUG_INTERMEDIATES=debug).replay(host)
            self.assertEqual(host.names(), names)
        self.assertEqual(host.calls[0][1]["faces"], faces(FACES))


class Calls(unittest.TestCase):
    STEP = make_step(1, "build_solid", "Command", ["first", "second"], ["faces"])

    def call(self, host, step=None, request=None):
        payload = {"kind": "k"}
        answer = load({})._call_step_plan(host, self.STEP if step is None else step, payload, request or {})
        self.assertTrue(all(given is payload for _, given in host.calls))
        return answer

    def test_the_first_name_that_the_host_has_ends_the_search_even_when_it_fails(self):
        self.assertEqual(self.call(Host("first", "second", failing=["first"])),
                         {"api": "first", "ok": False, "error": "no first"})
        self.assertEqual(self.call(Host("second", "Command")), {"api": "second", "ok": True, "result": 1})
        self.assertEqual(self.call(Host("Command")), {"api": "Command", "ok": True, "result": 1})
        self.assertEqual(self.call(Host("other", "mine"), request={"apiCandidates": ["mine"], "commandName": "other"}),
                         {"api": "mine", "ok": True, "result": 1})
        self.assertEqual(self.call(Host("other", "Command"), request={"commandName": "other"})["api"], "other")

    def test_execute_command_stands_in_for_a_missing_attribute(self):
        self.assertEqual(self.call(Host("second", execute=True)),
                         {"api": "executeCommand", "command": "first", "ok": True, "result": 1})
        self.assertEqual(self.call(Host("-", execute=True, failing=["executeCommand first"])),
                         {"api": "executeCommand", "command": "first", "ok": False, "error": "no executeCommand first"})
        bare = {**self.STEP, "apiCandidates": []}
        self.assertEqual(self.call(Host("-", execute=True), bare)["command"], "Command")

    def test_what_no_host_has_gives_none(self):
        self.assertIsNone(self.call(Host("-")))
        self.assertIsNone(self.call(Host(execute=True), step={}))
        result = load(solid_bundle("sweep")).replay(Host("-"))
        self.assertIsNone(result["strategyResult"]["apiResult"])
        self.assertEqual([step["apiResult"] for step in result["created"]], [None, None])

    def test_attributes_that_cannot_be_called_or_read_count_as_missing(self):
        class Odd:
            first = "no function"

            @property
            def second(self):
                raise RuntimeError("not today")

            def Command(self, payload):
                raise Wordless
        self.assertEqual(load({})._call_step_plan(Odd(), self.STEP, {}, {}),
                         {"api": "Command", "ok": False, "error": "Wordless"})

    def test_a_failing_host_ends_no_replay(self):
        class Failing(Host):
            def answer(self, name, payload):
                super().answer(name, payload)
                raise ValueError(name)
        host = Failing()
        result = load(solid_bundle("loft"), REPLAY_DEBUG_INTERMEDIATES=True).replay(host)
        self.assertEqual(len(host.calls), 7)
        for step in (result["strategyResult"], *result["created"]):
            self.assertEqual((step["apiResult"]["ok"], "error" in step["apiResult"]), (False, True))


class Wordless(Exception):
    def __str__(self):
        raise UnicodeError


class MainProgram(unittest.TestCase):
    def run_main(self, **values):
        out = io.StringIO()
        space = {"__name__": "__main__", **values}
        with contextlib.redirect_stdout(out):
            exec(compile(SCRIPT.read_text(encoding="utf-8"), str(SCRIPT), "exec"), space)
        return space, out.getvalue()

    def test_without_a_host_it_prints_a_message(self):
        for values in ({}, {"CAD": None}):
            space, out = self.run_main(**values)
            self.assertEqual(out, "[STEP Replay] CAD module not available; replay() was not executed.\n")
            self.assertNotIn("REPLAY_RESULT", space)

    def test_with_a_host_it_keeps_and_prints_the_result(self):
        space, out = self.run_main(CAD=Host())
        self.assertEqual(space["REPLAY_RESULT"]["scope"], "manifest")
        self.assertEqual(out, f"{space['REPLAY_RESULT']}\n")

    def test_a_switch_that_a_host_took_away_is_off(self):
        script = load({})
        del script.REPLAY_DEBUG_INTERMEDIATES, script.REPLAY_EXPERIMENTAL_STRATEGY_BUILD
        self.assertIs(script.debug_intermediates_enabled(), False)
        self.assertIs(script.experimental_strategy_build_enabled(), False)


if __name__ == "__main__":
    unittest.main()
