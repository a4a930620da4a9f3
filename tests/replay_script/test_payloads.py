"""What the functions of the replay script gather from a bundle, one function at a time."""
import unittest

from bundles import (CAPS, FACES, SUPPORTS, TRIMMED, Host, bundle_of, face, faces, load, make_step, request_of,
                     shell, solid, solid_bundle)

NAMED = make_step(1, "some_kind", "Command", ["api"], [], faceIds=[1, 9, 2], shellIds=[7, 8])


class Indexes(unittest.TestCase):
    def test_faces_are_found_in_each_form_of_payload(self):
        collect = load({})._collect_faces_from_payload
        self.assertEqual(collect(face(4)), [face(4)])
        self.assertEqual(collect(shell()), faces(FACES))
        self.assertEqual(collect({"shells": [shell(7, [2, 1]), shell(8, [3])], "faces": [face(9)]}), faces([2, 1, 3, 9]))
        self.assertEqual([collect(payload) for payload in ({}, [], None, "face")], [[], [], [], []])

    def test_what_has_no_id_is_in_no_index(self):
        script = load({})
        bundle = {"payload": {"shells": [{"faces": [{}, face(1)]}, shell(8, [2])]}}
        self.assertEqual(script._index_face_payloads(bundle), {1: face(1), 2: face(2)})
        self.assertEqual(script._index_shell_payloads(bundle), {8: shell(8, [2])})
        self.assertEqual(script._index_face_payloads({}), {})

    def test_a_request_counts_before_its_step_even_with_an_empty_value(self):
        value = load({})._request_or_step_value
        self.assertEqual(value({"faceIds": []}, {"faceIds": [1]}, "faceIds"), [])
        self.assertEqual(value({"kind": "k"}, {"faceIds": [1]}, "faceIds"), [1])
        self.assertEqual(value({}, {"faceIds": [1]}, "faceIds"), [1])
        self.assertIsNone(value({"kind": "k"}, {}, "faceIds"))


class StepPayloads(unittest.TestCase):
    def materialize(self, step, request, payload=None):
        return load({})._materialize_step_payload({"payload": payload or solid()}, step, request)

    def test_lists_follow_their_ids_and_unknown_ids_are_left_out(self):
        payload = self.materialize(NAMED, {})
        self.assertEqual(list(payload), [
            "scope", "entityId", "kind", "faceIds", "shellIds", "solidIds", "supportFaceIds", "capFaceIds",
            "trimmedFaceIds", "tags", "faces", "shells", "supportFaces", "capFaces", "trimmedFaces"])
        self.assertEqual((payload["faceIds"], payload["faces"]), ([1, 9, 2], faces([1, 2])))
        self.assertEqual((payload["shellIds"], payload["shells"]), ([7, 8], [shell()]))
        self.assertEqual(payload["tags"], ["some_kind"])
        self.assertEqual(self.materialize(NAMED, {"tags": ["own"]})["tags"], ["own"])
        nothing = self.materialize({}, {})
        self.assertEqual((nothing["kind"], nothing["faceIds"], nothing["faces"]), (None, [], []))

    def test_a_group_overwrites_the_list_of_its_name(self):
        groups = [{"name": "faces", "ids": [3]}, {"name": "", "ids": [4]}, {"name": "rails", "ids": [5, 9]}]
        payload = self.materialize(NAMED, {"inputGroups": groups})
        self.assertEqual((payload["faces"], payload["facesIds"], payload["faceIds"]), (faces([3]), [3], [1, 9, 2]))
        self.assertEqual((payload["rails"], payload["railsIds"]), (faces([5]), [5, 9]))
        self.assertNotIn("Ids", payload)

    def test_each_kind_of_step_has_its_aliases(self):
        lists = {"faceIds": FACES, "capFaceIds": CAPS, "supportFaceIds": SUPPORTS, "trimmedFaceIds": TRIMMED}
        expected = {
            "extract_sweep_profiles": {"sections": CAPS}, "extract_loft_sections": {"sections": CAPS},
            "extract_sweep_guides": {"guides": SUPPORTS}, "extract_loft_rails": {"guides": SUPPORTS},
            "extract_revolve_axis": {"guides": SUPPORTS}, "extract_revolve_profile": {"profileFaces": FACES},
            "partition_boolean_operands": {"operands": FACES}, "classify_boolean_roles": {"cuts": TRIMMED},
            "extract_freeform_surface_sets": {"surfaceSets": SUPPORTS},
            "extract_trimmed_boundaries": {"trimBoundaries": TRIMMED}, "sew_shell": {}, "validate_solid": {},
            "build_solid": {"sections": CAPS, "guides": SUPPORTS, "operands": FACES, "cuts": TRIMMED,
                            "profileFaces": CAPS, "axisFaces": SUPPORTS}}
        plain = self.materialize(NAMED, {}).keys()
        for kind, aliases in expected.items():
            payload = self.materialize(make_step(1, kind, "C", [], [], **lists), {})
            self.assertEqual({key: payload[key] for key in payload.keys() - plain},
                             {key: faces(ids) for key, ids in aliases.items()}, kind)

    def test_faces_come_from_the_shells_where_a_step_names_none(self):
        def of(kind, **lists):
            return self.materialize(make_step(1, kind, "C", [], [], shellIds=[7], **lists), {})
        for kind in ("sew_shell", "validate_shell", "build_solid"):
            self.assertEqual(of(kind)["faces"], faces(FACES), kind)
            self.assertEqual(of(kind, faceIds=[2])["faces"], faces([2]), kind)
        self.assertEqual(of("validate_solid")["faces"], [])
        self.assertEqual(of("build_solid")["profileFaces"], faces(FACES))
        self.assertEqual(of("extract_freeform_surface_sets", faceIds=[2])["surfaceSets"], faces([2]))

    def test_the_steps_of_a_strategy_fill_in_for_lists_that_its_build_step_lacks(self):
        # With short lists on the build step, and with none.
        caps, supports, trimmed = CAPS[:1], SUPPORTS[:1], TRIMMED[:1]
        expected = {
            "sweep": {"profileFaceIds": (caps, CAPS), "guideFaceIds": (supports, SUPPORTS),
                      "guideFaces": (faces(supports), faces(SUPPORTS))},
            "loft": {"sectionFaceIds": (caps, CAPS), "railFaceIds": (supports, SUPPORTS),
                     "sectionFaces": (faces(caps), faces(CAPS)), "railFaces": (faces(supports), faces(SUPPORTS))},
            "revolve": {"axisFaceIds": (supports, SUPPORTS), "profileFaceIds": (caps, CAPS),
                        "axisGuides": (faces(supports), faces(SUPPORTS)), "profileSet": (faces(caps), faces(CAPS))},
            "boolean": {"operandFaceIds": ([1, 3, 4], FACES), "cutFaceIds": (trimmed, TRIMMED),
                        "cutFaces": (faces(trimmed), faces(TRIMMED))},
            "trimmed_freeform": {"surfaceFaceIds": (supports, SUPPORTS), "trimmedFaceIds": (trimmed, TRIMMED),
                                 "surfaceFaces": (faces(supports), faces(SUPPORTS))}}
        for strategy, keys in expected.items():
            own = load(solid_bundle(strategy, caps, supports, trimmed)).replay(Host())["strategyResult"]
            bare = solid_bundle(strategy, [], [], [])
            for request in bare["commandRequests"]["requests"]:
                request["shellIds"] = []
            # What the requests tell must do, as it does in all steps.
            for step in bare["plan"]["steps"]:
                step.update({key: [] for key in step if key.endswith("Ids")})
            filled = load(bare).replay(Host())["strategyResult"]
            self.assertEqual({key: (own[key], filled[key]) for key in keys}, keys, strategy)
            kinds = [step["kind"] for step in bare["plan"]["steps"]][5:7]
            self.assertEqual([step["kind"] for step in filled["steps"]], kinds)
            self.assertEqual((filled["strategy"], filled["executedStepIds"]), (strategy, [6, 7, 8]))

    def test_surfaces_without_supports_are_the_faces_of_their_step(self):
        bundle = solid_bundle("trimmed_freeform", [], [], [])
        for record in (*bundle["plan"]["steps"], *bundle["commandRequests"]["requests"]):
            if record["kind"] == "extract_freeform_surface_sets":
                record["supportFaceIds"] = []
        self.assertEqual(load(bundle).replay(Host())["strategyResult"]["surfaceFaceIds"], SUPPORTS)


class CommandPayloads(unittest.TestCase):
    BASE = ["schemaVersion", "contractName", "kind", "scope", "entityId", "targetKind", "resultKey", "groups",
            "inputGroups"]

    def command_payload(self, step_payload, step, request):
        return load({"plan": {"contractName": "PlanName"}})._command_payload_for_step(step_payload, step, request)

    def test_the_base_comes_from_the_request_then_the_step_then_the_plan(self):
        step = {**NAMED, "parameterKeys": ["absent"]}
        own = {"contractName": "C", "kind": "k", "scope": "face", "entityId": 5, "targetKind": "t", "resultKey": "r",
               "inputGroups": [{"name": "faces", "ids": [1]}]}
        groups = {"faces": [face(1)], "supportFaces": [face(2)], "capFaces": [face(3)], "trimmedFaces": [face(4)]}
        payload = self.command_payload({"kind": "p", **groups}, step, own)
        self.assertEqual(payload, {"schemaVersion": 1, **own, "groups": groups, "parameterKeys": ["absent"]})
        payload = self.command_payload({"kind": "p", "scope": "solid", "entityId": 3}, step, {})
        self.assertEqual([payload[key] for key in self.BASE if key != "groups"],
                         [1, "ReplayCommandV1", "p", "solid", 3, "target", "result", []])
        self.assertEqual(payload["groups"], dict.fromkeys(groups, []))
        self.assertEqual(self.command_payload({}, {}, {})["contractName"], "PlanName")

    def test_a_binding_takes_the_first_value_that_is_not_empty(self):
        def bound(step_payload, *bindings):
            keys = ("parameterName", "sourceKey", "fallbackSourceKeys")
            request = {"bindings": [dict(zip(keys, binding)) for binding in bindings], "apiCandidates": ["a"]}
            payload = self.command_payload(step_payload, {**NAMED, "parameterKeys": ["capFaces"]}, request)
            self.assertEqual((payload["bindings"], payload["apiCandidates"]), (request["bindings"], ["a"]))
            self.assertNotIn("parameterKeys", payload)
            return {key: value for key, value in payload.items()
                    if key not in (*self.BASE, "bindings", "apiCandidates")}
        values = {"capFaces": [], "supportFaces": {}, "faces": [1], "zero": 0}
        self.assertEqual(bound(values, ("sections", "capFaces", ["none", "supportFaces", "faces", "zero"])),
                         {"sections": [1]})
        self.assertEqual(bound(values, ("count", "zero", ["faces"])), {"count": 0})
        self.assertEqual(bound(values, ("sections", "capFaces", [])), {})
        self.assertEqual(bound(values, ("sections", "", ["faces"])), {"sections": [1]})
        self.assertEqual(bound(values, ("", "faces", ["faces"])), {})

    def test_the_exact_request_is_a_copy_that_asks_for_a_plain_solid(self):
        script = load({"plan": {"contractName": "PlanName"}})
        request = {"stepId": 9, "commandName": "Sweep", "apiCandidates": ["mine"], "bindings": [], "tags": ["t"]}
        before = dict(request)
        exact = script._exact_brep_request({"contractName": "StepName"}, request)
        self.assertEqual(exact, {
            "stepId": 9, "contractName": "StepName", "commandName": "BuildSolid", "tags": ["t"],
            "apiCandidates": ["buildSolidFromReplay"],
            "parameterKeys": ["faces", "supportFaces", "capFaces", "trimmedFaces"],
            "bindings": [{"parameterName": name, "sourceKey": name, "fallbackSourceKeys": fallbacks}
                         for name, fallbacks in (("faces", []), ("supportFaces", ["faces"]),
                                                 ("capFaces", ["faces"]), ("trimmedFaces", ["faces"]))]})
        self.assertEqual(request, before)
        names = [script._exact_brep_request(step, own)["contractName"] for step, own in (
            ({"contractName": "StepName"}, {"contractName": "Own"}), ({}, {}))]
        self.assertEqual(names, ["Own", "PlanName"])

    def test_without_bindings_the_keys_of_the_step_decide(self):
        step_payload = {"faces": [1], "kind": "p", "groups": "of the step"}
        merged = self.command_payload(step_payload, {**NAMED, "parameterKeys": []}, {"kind": "k"})
        self.assertEqual({key: merged[key] for key in step_payload}, step_payload)
        self.assertEqual(set(merged), {*self.BASE, "faces"})
        chosen = self.command_payload(step_payload, {**NAMED, "parameterKeys": ["faces", "absent"]}, {"kind": "k"})
        self.assertEqual(set(chosen), {*self.BASE, "faces", "parameterKeys"})
        self.assertEqual((chosen["faces"], chosen["kind"]), ([1], "k"))

    def test_api_candidates_of_the_step_stand_in_for_a_request_without(self):
        step = make_step(1, "sew_shell", "Sew", ["sewFacesFromPayload"], ["faces"], faceIds=[1])
        bundle = bundle_of(solid(), [step])
        bundle["commandRequests"]["requests"][0]["apiCandidates"] = []
        host = Host()
        result = load(bundle)._execute_plan_step(host, bundle, step)
        self.assertEqual(host.names(), ["sewFacesFromPayload"])
        self.assertEqual(result["commandPayload"]["apiCandidates"], ["sewFacesFromPayload"])
        self.assertEqual((result["request"]["kind"], request_of(step)["kind"]), ("sew_shell", "sew_shell"))


if __name__ == "__main__":
    unittest.main()
