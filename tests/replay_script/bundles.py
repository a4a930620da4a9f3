"""Small bundles of replay, the script that carries one, and a host that writes down its calls.

The solid of all bundles has the id 3, one shell, 7, and the faces 1 to 6.
"""
import json
import os
import pathlib
import types

SCRIPT = pathlib.Path(os.environ["ORVEX_SOURCE"]) / "src/step/replay/script/replay_script.py"

FACES = [1, 2, 3, 4, 5, 6]
CAPS, SUPPORTS, TRIMMED = [1, 2], [3, 5], [4, 6]
ALL_KEYS = ("faces", "supportFaces", "capFaces", "trimmedFaces")
ID_LISTS = {"faces": "faceIds", "supportFaces": "supportFaceIds", "capFaces": "capFaceIds",
            "trimmedFaces": "trimmedFaceIds"}
BINDINGS = {
    "faces": ("faces",),
    "supportFaces": ("supportFaces", "faces"),
    "capFaces": ("capFaces", "faces"),
    "trimmedFaces": ("trimmedFaces", "faces"),
    "sections": ("capFaces", "faces", "supportFaces"),
    "guides": ("supportFaces", "faces"),
    "profileFaces": ("capFaces", "faces", "supportFaces"),
    "axisFaces": ("supportFaces", "faces"),
    "operands": ("faces", "supportFaces", "capFaces"),
    "cuts": ("trimmedFaces", "faces"),
    "surfaceSets": ("supportFaces", "faces"),
    "trimBoundaries": ("trimmedFaces", "faces"),
}

# Kind, command, first api candidate, parameters and lists of the extraction steps; then command,
# api candidates and parameters of the build step.
FREEFORM = ([("extract_freeform_surface_sets", "ExtractFreeformSurfaceSets", "extractFreeformSurfaceSetsFromFaces",
              ("surfaceSets", "supportFaces", "faces"), {"faceIds": SUPPORTS, "supportFaceIds": SUPPORTS}),
             ("extract_trimmed_boundaries", "ExtractTrimmedBoundaries", "extractTrimmedBoundariesFromFaces",
              ("trimBoundaries", "trimmedFaces"), {"faceIds": TRIMMED, "trimmedFaceIds": TRIMMED})],
            ("ReplayTrimmedFreeform", ("rebuildTrimmedFreeformFromFaces", "ReplayTrimmedFreeform"),
             ("surfaceSets", "trimBoundaries")))
PLAIN = ([], ("BuildSolid", ("buildSolidFromReplay",), ALL_KEYS))
PRIMITIVE = ([], ("BuildPrimitive", ("buildSolidFromReplay",), ALL_KEYS))
STRATEGIES = {
    "sweep": ([("extract_sweep_profiles", "ExtractSweepProfiles", "extractSweepProfilesFromFaces",
                ("sections", "capFaces"), {"faceIds": CAPS, "capFaceIds": CAPS}),
               ("extract_sweep_guides", "ExtractSweepGuides", "extractSweepGuidesFromFaces",
                ("guides", "supportFaces"), {"faceIds": SUPPORTS, "supportFaceIds": SUPPORTS})],
              ("Sweep", ("rebuildSweepFromFaces", "ReplaySweep"), ("sections", "guides", "profileFaces"))),
    "loft": ([("extract_loft_sections", "ExtractLoftSections", "extractLoftSectionsFromFaces",
               ("sections", "capFaces"), {"faceIds": CAPS, "capFaceIds": CAPS}),
              ("extract_loft_rails", "ExtractLoftRails", "extractLoftRailsFromFaces",
               ("guides", "supportFaces"), {"faceIds": SUPPORTS, "supportFaceIds": SUPPORTS})],
             ("AdvancedLoft", ("rebuildLoftFromFaces", "ReplayLoft"), ("sections", "guides"))),
    "revolve": ([("extract_revolve_axis", "ExtractRevolveAxis", "extractRevolveAxisFromFaces",
                  ("axisFaces", "guides", "supportFaces"), {"faceIds": SUPPORTS, "supportFaceIds": SUPPORTS}),
                 ("extract_revolve_profile", "ExtractRevolveProfile", "extractRevolveProfileFromFaces",
                  ("profileFaces", "capFaces", "supportFaces"),
                  {"faceIds": CAPS, "supportFaceIds": SUPPORTS, "capFaceIds": CAPS})],
                ("Revolve", ("rebuildRevolveFromFaces", "ReplayRevolve"), ("axisFaces", "profileFaces"))),
    "boolean": ([("partition_boolean_operands", "PartitionBooleanOperands", "partitionBooleanOperandsFromFaces",
                  ("operands", "faces", "trimmedFaces"), {"faceIds": FACES, "trimmedFaceIds": TRIMMED}),
                 ("classify_boolean_roles", "ClassifyBooleanRoles", "classifyBooleanRolesFromFaces",
                  ("cuts", "trimmedFaces"), {"faceIds": TRIMMED, "trimmedFaceIds": TRIMMED})],
                ("BooleanCut", ("rebuildBooleanFromFaces", "ReplayBoolean"), ("operands", "cuts"))),
    "trimmed_freeform": FREEFORM,
    "freeform": FREEFORM,
    "generic_brep": PLAIN,
    **{"primitive_" + kind: PRIMITIVE for kind in ("box", "cylinder", "cone", "sphere", "torus")},
}


def face(face_id):
    return {"faceId": face_id, "surface": {"kind": "plane"}, "trim": {"loops": []}}


def faces(ids):
    return [face(face_id) for face_id in ids]


def shell(shell_id=7, ids=FACES):
    return {"shellId": shell_id, "isClosed": True, "faces": faces(ids)}


def solid():
    return {"solidId": 3, "exactBrep": "CASCADE\n'exact' \\ text", "shells": [shell()]}


def make_step(step_id, kind, command, apis, keys, scope="solid", entity=3, **lists):
    return {"id": step_id, "kind": kind, "scope": scope, "entityId": entity, "contractName": "ReplayCommandV1",
            "commandName": command, "targetKind": "target", "resultKey": "result", "dependsOn": [],
            **{key: lists.get(key, []) for key in ("faceIds", "shellIds", "solidIds", "supportFaceIds",
                                                   "capFaceIds", "trimmedFaceIds")},
            "apiCandidates": list(apis), "parameterKeys": list(keys), "tags": [kind]}


def request_of(step):
    """The request of a step: what it has, its bindings, and the groups of ids that they lead to."""
    bindings = [{"parameterName": key, "sourceKey": BINDINGS[key][0],
                 "fallbackSourceKeys": list(BINDINGS[key][1:])} for key in step["parameterKeys"]]
    groups = {key: step[ids] for key, ids in ID_LISTS.items()}
    for key in step["parameterKeys"]:
        groups[key] = next((step[ID_LISTS[source]] for source in BINDINGS[key] if step[ID_LISTS[source]]), [])
    request = {key: value for key, value in step.items() if key not in ("id", "parameterKeys")}
    return {"stepId": step["id"], **request, "bindings": bindings,
            "inputGroups": [{"name": name, "ids": sorted(set(ids))} for name, ids in sorted(groups.items()) if ids]}


def bundle_of(payload, steps, strategy="generic_brep", **plan):
    bundle = {"payload": payload, "features": [{"kind": "some_candidate"}],
              "plan": {"primaryStrategy": strategy, "contractName": "ReplaySolidPlanV1", **plan, "steps": steps},
              "commandRequests": {"requests": [request_of(step) for step in steps]}}
    return json.loads(json.dumps(bundle))


def face_group(first, face_id):
    return [make_step(first + i, *row, scope="face", entity=face_id, faceIds=[face_id]) for i, row in enumerate([
        ("define_surface", "DefineSurface", ["defineSurfaceFromPayload"], ["faces"]),
        ("define_trim_loops", "DefineTrimLoops", ["defineTrimLoopsFromPayload"], ["trimmedFaces", "faces"]),
        ("build_trimmed_face", "BuildTrimmedFace", ["buildTrimmedFaceFromPayload"], ["faces", "trimmedFaces"])])]


def sew(step_id):
    return make_step(step_id, "sew_shell", "Sew", ["sewFacesFromPayload", "ReplaySewShell"], ["faces"],
                     scope="shell", entity=7, faceIds=FACES, shellIds=[7])


def solid_bundle(strategy, caps=CAPS, supports=SUPPORTS, trimmed=TRIMMED):
    """The three lists are those of the build step; the extraction steps keep theirs."""
    extractions, (command, apis, keys) = STRATEGIES[strategy]
    lists = {"shellIds": [7], "solidIds": [3], "supportFaceIds": supports, "capFaceIds": caps,
             "trimmedFaceIds": trimmed}
    built = sorted({*caps, *supports, *trimmed})
    steps = face_group(1, 1) + [sew(4)]
    steps.append(make_step(5, "infer_primary_rebuild_strategy", "InferReplayStrategy", ["inferReplayStrategy"],
                           ALL_KEYS, faceIds=FACES, **lists))
    for kind, extraction, api, parameters, ids in extractions:
        steps.append(make_step(len(steps) + 1, kind, extraction, [api], parameters, **ids))
    steps.append(make_step(len(steps) + 1, "build_solid", command, apis, keys, faceIds=built, **lists))
    steps.append(make_step(len(steps) + 1, "validate_solid", "ValidateSolid", ["validateSolidReplay"], ALL_KEYS,
                           faceIds=built, shellIds=[7], solidIds=[3]))
    return bundle_of(solid(), steps, strategy)


def load(bundle, **switches):
    """The script as a module that carries the bundle."""
    module = types.ModuleType("replay_script")
    exec(compile(SCRIPT.read_text(encoding="utf-8"), str(SCRIPT), "exec"), module.__dict__)
    module.REPLAY_BUNDLE = bundle
    module.__dict__.update(switches)
    return module


class Host:
    """Offers the commands named, or every one when none is named. Calls are pairs of name and payload."""

    def __init__(self, *offered, failing=(), execute=False):
        self.calls, self.offered, self.failing = [], offered, failing
        if execute:
            self.executeCommand = lambda name, payload: self.answer("executeCommand " + name, payload)

    def __getattr__(self, name):
        if name == "executeCommand" or self.offered and name not in self.offered:
            raise AttributeError(name)
        return lambda payload: self.answer(name, payload)

    def answer(self, name, payload):
        self.calls.append((name, payload))
        if name in self.failing:
            raise RuntimeError("no " + name)
        return len(self.calls)

    def names(self):
        return [name for name, _ in self.calls]
