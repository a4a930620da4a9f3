# Auto-generated STEP replay prototype
import json

REPLAY_SCOPE = 'manifest'
REPLAY_ENTITY_ID = 0
REPLAY_DEBUG_INTERMEDIATES = False
REPLAY_EXPERIMENTAL_STRATEGY_BUILD = False
REPLAY_BUNDLE_JSON = '{}'
REPLAY_BUNDLE = json.loads(REPLAY_BUNDLE_JSON)
def get_primary_strategy():
    return get_bundle().get("plan", {}).get("primaryStrategy", "generic_brep")

def get_semantic_strategy():
    return get_bundle().get("plan", {}).get("semanticStrategy", get_primary_strategy())

def get_bundle():
    return REPLAY_BUNDLE

def debug_intermediates_enabled():
    return bool(globals().get("REPLAY_DEBUG_INTERMEDIATES", False))

def experimental_strategy_build_enabled():
    return bool(globals().get("REPLAY_EXPERIMENTAL_STRATEGY_BUILD", False))

def _collect_faces_from_payload(payload):
    if not isinstance(payload, dict):
        return []
    faces = [payload] if "faceId" in payload else []
    faces.extend(_collect_faces_from_shells(_collect_shells_from_payload(payload)))
    faces.extend(payload.get("faces", []))
    return faces

def _index_face_payloads(bundle):
    faces = _collect_faces_from_payload(bundle.get("payload"))
    return {face["faceId"]: face for face in faces if "faceId" in face}

def _collect_shells_from_payload(payload):
    return payload.get("shells", []) if isinstance(payload, dict) else []

def _index_shell_payloads(bundle):
    shells = _collect_shells_from_payload(bundle.get("payload"))
    return {shell["shellId"]: shell for shell in shells if "shellId" in shell}

def _step_by_kind(bundle, kind):
    for step in bundle.get("plan", {}).get("steps", []):
        if step.get("kind") == kind:
            return step
    return {}

def _request_by_step_id(bundle, step_id):
    for request in bundle.get("commandRequests", {}).get("requests", []):
        if request.get("stepId") == step_id:
            return request
    return {}

def _request_or_step_value(request, step, key):
    if request and key in request:
        return request[key]
    return step.get(key) if step else None

def _request_input_group_ids(request, name):
    for group in request.get("inputGroups", []):
        if group.get("name") == name:
            return group.get("ids", [])
    return []

def _lookup_faces(face_map, face_ids):
    return [face_map[face_id] for face_id in face_ids if face_id in face_map]

def _lookup_shells(shell_map, shell_ids):
    return [shell_map[shell_id] for shell_id in shell_ids if shell_id in shell_map]

def _collect_faces_from_shells(shells):
    return [face for shell in shells for face in shell.get("faces", [])]

def _safe_call(func, *args, **kwargs):
    try:
        return True, func(*args, **kwargs)
    except Exception as error:
        return False, error

def _call_strategy_api(CAD, api_name, payload):
    # Looking an attribute up may run code of the host, too.
    found, func = _safe_call(getattr, CAD, api_name, None)
    if found and callable(func):
        answer = {"api": api_name}
        ok, outcome = _safe_call(func, payload)
    else:
        found, func = _safe_call(getattr, CAD, "executeCommand", None)
        if not found or not callable(func):
            return None
        answer = {"api": "executeCommand", "command": api_name}
        ok, outcome = _safe_call(func, api_name, payload)
    answer["ok"] = ok
    if ok:
        answer["result"] = outcome
    else:
        # An exception of a host's own making may fail even to tell its text.
        has_text, text = _safe_call(str, outcome)
        answer["error"] = text if has_text else type(outcome).__name__
    return answer

def _call_step_plan(CAD, step, payload, request):
    for api_name in request.get("apiCandidates") or step.get("apiCandidates", []):
        answer = _call_strategy_api(CAD, api_name, payload)
        if answer is not None:
            return answer
    command_name = request.get("commandName") or step.get("commandName")
    return _call_strategy_api(CAD, command_name, payload) if command_name else None

def _command_payload_for_step(step_payload, step, request):
    command_payload = {
        "schemaVersion": 1,
        "contractName": request.get("contractName") or step.get("contractName")
        or get_bundle().get("plan", {}).get("contractName"),
        "kind": _request_or_step_value(request, step_payload, "kind"),
        "scope": _request_or_step_value(request, step_payload, "scope"),
        "entityId": _request_or_step_value(request, step_payload, "entityId"),
        "targetKind": _request_or_step_value(request, step, "targetKind"),
        "resultKey": _request_or_step_value(request, step, "resultKey"),
        "groups": {
            "faces": step_payload.get("faces", []),
            "supportFaces": step_payload.get("supportFaces", []),
            "capFaces": step_payload.get("capFaces", []),
            "trimmedFaces": step_payload.get("trimmedFaces", []),
        },
        "inputGroups": request.get("inputGroups", []),
    }
    bindings = request.get("bindings", [])
    parameter_keys = step.get("parameterKeys", [])
    if bindings:
        for binding in bindings:
            name = binding.get("parameterName")
            source = binding.get("sourceKey")
            value = step_payload.get(source) if name and source else None
            if value in (None, [], {}):
                fallbacks = [step_payload.get(key) for key in binding.get("fallbackSourceKeys", [])]
                value = next((found for found in fallbacks if found not in (None, [], {})), None)
            if name and value is not None:
                command_payload[name] = value
        command_payload["bindings"] = bindings
        command_payload["apiCandidates"] = (
            request.get("apiCandidates") or step.get("apiCandidates", []))
    elif not parameter_keys:
        command_payload.update(step_payload)
    else:
        for key in parameter_keys:
            if key in step_payload:
                command_payload[key] = step_payload[key]
        command_payload["parameterKeys"] = parameter_keys
    return command_payload

def _materialize_step_payload(bundle, step, request):
    face_map = _index_face_payloads(bundle)
    shell_map = _index_shell_payloads(bundle)
    payload = {key: _request_or_step_value(request, step, key)
               for key in ("scope", "entityId", "kind")}
    for key in ("faceIds", "shellIds", "solidIds", "supportFaceIds", "capFaceIds",
                "trimmedFaceIds"):
        payload[key] = _request_or_step_value(request, step, key) or []
    payload["tags"] = request.get("tags") or step.get("tags", [])
    payload["faces"] = _lookup_faces(face_map, payload["faceIds"])
    payload["shells"] = _lookup_shells(shell_map, payload["shellIds"])
    payload["supportFaces"] = _lookup_faces(face_map, payload["supportFaceIds"])
    payload["capFaces"] = _lookup_faces(face_map, payload["capFaceIds"])
    payload["trimmedFaces"] = _lookup_faces(face_map, payload["trimmedFaceIds"])
    for group in request.get("inputGroups", []):
        name = group.get("name")
        if name:
            payload[name + "Ids"] = _request_input_group_ids(request, name)
            payload[name] = _lookup_faces(face_map, payload[name + "Ids"])
    kind = step.get("kind")
    if kind in ("sew_shell", "validate_shell", "build_solid") and not payload["faces"]:
        payload["faces"] = _collect_faces_from_shells(payload["shells"])
    if kind in ("extract_sweep_profiles", "extract_loft_sections", "build_solid"):
        payload["sections"] = payload["capFaces"]
    if kind in ("extract_sweep_guides", "extract_loft_rails", "extract_revolve_axis",
                "build_solid"):
        payload["guides"] = payload["supportFaces"]
    if kind in ("partition_boolean_operands", "build_solid"):
        payload["operands"] = payload["faces"]
    if kind in ("classify_boolean_roles", "build_solid"):
        payload["cuts"] = payload["trimmedFaces"]
    if kind == "extract_revolve_profile":
        payload["profileFaces"] = payload["faces"]
    elif kind == "extract_freeform_surface_sets":
        payload["surfaceSets"] = payload["supportFaces"] or payload["faces"]
    elif kind == "extract_trimmed_boundaries":
        payload["trimBoundaries"] = payload["trimmedFaces"]
    elif kind == "build_solid":
        payload["profileFaces"] = payload["capFaces"] or payload["faces"]
        payload["axisFaces"] = payload["supportFaces"]
    return payload

def _execute_plan_step(CAD, bundle, step):
    request = _request_by_step_id(bundle, step.get("id"))
    payload = _materialize_step_payload(bundle, step, request)
    command_payload = _command_payload_for_step(payload, step, request)
    return {
        "kind": step.get("kind"),
        "entityId": step.get("entityId"),
        "request": request,
        "payload": payload,
        "commandPayload": command_payload,
        "apiResult": _call_step_plan(CAD, step, command_payload, request),
    }

def _default_replay_name(strategy, entity_id):
    name = {
        "sweep": "ReplaySweep",
        "loft": "ReplayLoft",
        "revolve": "ReplayRevolve",
        "boolean": "ReplayBoolean",
        "trimmed_freeform": "ReplayTrimmedFreeform",
    }.get(strategy, "ReplaySolid")
    return name if entity_id in (None, 0) else "{}_{}".format(name, entity_id)

def _exact_brep_request(step, request):
    exact_request = dict(request)
    exact_request["contractName"] = (
        request.get("contractName") or step.get("contractName")
        or get_bundle().get("plan", {}).get("contractName"))
    exact_request["commandName"] = "BuildSolid"
    exact_request["apiCandidates"] = ["buildSolidFromReplay"]
    exact_request["parameterKeys"] = ["faces", "supportFaces", "capFaces", "trimmedFaces"]
    exact_request["bindings"] = [
        {"parameterName": "faces", "sourceKey": "faces", "fallbackSourceKeys": []},
        {"parameterName": "supportFaces", "sourceKey": "supportFaces",
         "fallbackSourceKeys": ["faces"]},
        {"parameterName": "capFaces", "sourceKey": "capFaces", "fallbackSourceKeys": ["faces"]},
        {"parameterName": "trimmedFaces", "sourceKey": "trimmedFaces",
         "fallbackSourceKeys": ["faces"]},
    ]
    return exact_request

def _build_exact_brep_solid(CAD, bundle, build_step, request, payload, strategy):
    exact_request = _exact_brep_request(build_step, request)
    command_payload = _command_payload_for_step(payload, build_step, exact_request)
    exact_brep = bundle.get("payload", {}).get("exactBrep")
    if exact_brep:
        command_payload["exactBrep"] = exact_brep
    command_payload["name"] = _default_replay_name(strategy, command_payload.get("entityId"))
    api_result = _call_step_plan(CAD, build_step, command_payload, exact_request)
    return exact_request, command_payload, api_result

def replay_sweep(CAD, bundle):
    profile_step = _step_by_kind(bundle, "extract_sweep_profiles")
    guide_step = _step_by_kind(bundle, "extract_sweep_guides")
    build_step = _step_by_kind(bundle, "build_solid")
    request = _request_by_step_id(bundle, build_step.get("id"))
    payload = _materialize_step_payload(bundle, build_step, request)
    profile = _materialize_step_payload(
        bundle, profile_step, _request_by_step_id(bundle, profile_step.get("id")))
    guide = _materialize_step_payload(
        bundle, guide_step, _request_by_step_id(bundle, guide_step.get("id")))
    payload["profileFaceIds"] = payload.get("sectionsIds") or profile["capFaceIds"]
    payload["guideFaceIds"] = payload.get("guidesIds") or guide["supportFaceIds"]
    payload["guideFaces"] = payload.get("guides") or guide.get("guides", [])
    payload["steps"] = [profile_step, guide_step]
    if experimental_strategy_build_enabled():
        command_payload = _command_payload_for_step(payload, build_step, request)
        api_result = _call_step_plan(CAD, build_step, command_payload, request)
    else:
        request, command_payload, api_result = _build_exact_brep_solid(
            CAD, bundle, build_step, request, payload, "sweep")
    payload["request"] = request
    payload["commandPayload"] = command_payload
    payload["apiResult"] = api_result
    payload["strategy"] = "sweep"
    payload["executedStepIds"] = [
        step["id"] for step in (profile_step, guide_step, build_step)
        if step.get("id") is not None]
    return payload

def replay_loft(CAD, bundle):
    section_step = _step_by_kind(bundle, "extract_loft_sections")
    rail_step = _step_by_kind(bundle, "extract_loft_rails")
    build_step = _step_by_kind(bundle, "build_solid")
    request = _request_by_step_id(bundle, build_step.get("id"))
    payload = _materialize_step_payload(bundle, build_step, request)
    section = _materialize_step_payload(
        bundle, section_step, _request_by_step_id(bundle, section_step.get("id")))
    rail = _materialize_step_payload(
        bundle, rail_step, _request_by_step_id(bundle, rail_step.get("id")))
    payload["sectionFaceIds"] = payload.get("sectionsIds") or section["capFaceIds"]
    payload["railFaceIds"] = payload.get("guidesIds") or rail["supportFaceIds"]
    payload["sectionFaces"] = payload.get("sections") or section.get("sections", [])
    payload["railFaces"] = payload.get("guides") or rail.get("guides", [])
    payload["steps"] = [section_step, rail_step]
    if experimental_strategy_build_enabled():
        command_payload = _command_payload_for_step(payload, build_step, request)
        api_result = _call_step_plan(CAD, build_step, command_payload, request)
    else:
        request, command_payload, api_result = _build_exact_brep_solid(
            CAD, bundle, build_step, request, payload, "loft")
    payload["request"] = request
    payload["commandPayload"] = command_payload
    payload["apiResult"] = api_result
    payload["strategy"] = "loft"
    payload["executedStepIds"] = [
        step["id"] for step in (section_step, rail_step, build_step)
        if step.get("id") is not None]
    return payload

def replay_revolve(CAD, bundle):
    axis_step = _step_by_kind(bundle, "extract_revolve_axis")
    profile_step = _step_by_kind(bundle, "extract_revolve_profile")
    build_step = _step_by_kind(bundle, "build_solid")
    request = _request_by_step_id(bundle, build_step.get("id"))
    payload = _materialize_step_payload(bundle, build_step, request)
    axis = _materialize_step_payload(
        bundle, axis_step, _request_by_step_id(bundle, axis_step.get("id")))
    profile = _materialize_step_payload(
        bundle, profile_step, _request_by_step_id(bundle, profile_step.get("id")))
    payload["axisFaceIds"] = payload.get("axisFacesIds") or axis["supportFaceIds"]
    payload["profileFaceIds"] = payload.get("profileFacesIds") or profile["faceIds"]
    payload["axisGuides"] = payload.get("guides") or axis.get("guides", [])
    payload["profileSet"] = payload.get("profileFaces") or profile.get("profileFaces", [])
    payload["steps"] = [axis_step, profile_step]
    if experimental_strategy_build_enabled():
        command_payload = _command_payload_for_step(payload, build_step, request)
        api_result = _call_step_plan(CAD, build_step, command_payload, request)
    else:
        request, command_payload, api_result = _build_exact_brep_solid(
            CAD, bundle, build_step, request, payload, "revolve")
    payload["request"] = request
    payload["commandPayload"] = command_payload
    payload["apiResult"] = api_result
    payload["strategy"] = "revolve"
    payload["executedStepIds"] = [
        step["id"] for step in (axis_step, profile_step, build_step)
        if step.get("id") is not None]
    return payload

def replay_boolean(CAD, bundle):
    operand_step = _step_by_kind(bundle, "partition_boolean_operands")
    role_step = _step_by_kind(bundle, "classify_boolean_roles")
    build_step = _step_by_kind(bundle, "build_solid")
    request = _request_by_step_id(bundle, build_step.get("id"))
    payload = _materialize_step_payload(bundle, build_step, request)
    operand = _materialize_step_payload(
        bundle, operand_step, _request_by_step_id(bundle, operand_step.get("id")))
    role = _materialize_step_payload(
        bundle, role_step, _request_by_step_id(bundle, role_step.get("id")))
    payload["operandFaceIds"] = payload.get("operandsIds") or operand["faceIds"]
    payload["cutFaceIds"] = payload.get("cutsIds") or role["trimmedFaceIds"]
    payload["cutFaces"] = payload.get("cuts") or role.get("cuts", [])
    payload["steps"] = [operand_step, role_step]
    if experimental_strategy_build_enabled():
        command_payload = _command_payload_for_step(payload, build_step, request)
        api_result = _call_step_plan(CAD, build_step, command_payload, request)
    else:
        request, command_payload, api_result = _build_exact_brep_solid(
            CAD, bundle, build_step, request, payload, "boolean")
    payload["request"] = request
    payload["commandPayload"] = command_payload
    payload["apiResult"] = api_result
    payload["strategy"] = "boolean"
    payload["executedStepIds"] = [
        step["id"] for step in (operand_step, role_step, build_step)
        if step.get("id") is not None]
    return payload

def replay_trimmed_freeform(CAD, bundle):
    surface_step = _step_by_kind(bundle, "extract_freeform_surface_sets")
    trim_step = _step_by_kind(bundle, "extract_trimmed_boundaries")
    build_step = _step_by_kind(bundle, "build_solid")
    request = _request_by_step_id(bundle, build_step.get("id"))
    payload = _materialize_step_payload(bundle, build_step, request)
    surface = _materialize_step_payload(
        bundle, surface_step, _request_by_step_id(bundle, surface_step.get("id")))
    trim = _materialize_step_payload(
        bundle, trim_step, _request_by_step_id(bundle, trim_step.get("id")))
    payload["surfaceFaceIds"] = (
        payload.get("surfaceSetsIds") or surface["supportFaceIds"] or surface["faceIds"])
    payload["trimmedFaceIds"] = payload.get("trimBoundariesIds") or trim["trimmedFaceIds"]
    payload["surfaceFaces"] = payload.get("surfaceSets") or surface.get("surfaceSets", [])
    payload["steps"] = [surface_step, trim_step]
    command_payload = _command_payload_for_step(payload, build_step, request)
    payload["request"] = request
    payload["commandPayload"] = command_payload
    payload["apiResult"] = _call_step_plan(CAD, build_step, command_payload, request)
    payload["strategy"] = "trimmed_freeform"
    payload["executedStepIds"] = [
        step["id"] for step in (surface_step, trim_step, build_step)
        if step.get("id") is not None]
    return payload

def replay_primitive(CAD, bundle, strategy):
    build_step = _step_by_kind(bundle, "build_solid")
    request = _request_by_step_id(bundle, build_step.get("id"))
    payload = _materialize_step_payload(bundle, build_step, request)
    payload["primitiveStrategy"] = strategy
    command_payload = _command_payload_for_step(payload, build_step, request)
    command_payload["primitiveStrategy"] = strategy
    payload["request"] = request
    payload["commandPayload"] = command_payload
    payload["apiResult"] = _call_step_plan(CAD, build_step, command_payload, request)
    payload["strategy"] = strategy
    payload["executedStepIds"] = [
        step["id"] for step in (build_step,) if step.get("id") is not None]
    return payload

def replay(CAD):
    bundle = get_bundle()
    plan = bundle.get("plan", {})
    strategy = plan.get("primaryStrategy", "generic_brep")
    strategy_result = None
    if strategy == "sweep":
        strategy_result = replay_sweep(CAD, bundle)
    elif strategy == "loft":
        strategy_result = replay_loft(CAD, bundle)
    elif strategy == "revolve":
        strategy_result = replay_revolve(CAD, bundle)
    elif strategy == "boolean":
        strategy_result = replay_boolean(CAD, bundle)
    elif strategy == "trimmed_freeform":
        strategy_result = replay_trimmed_freeform(CAD, bundle)
    elif strategy in ("primitive_box", "primitive_cylinder", "primitive_cone",
                      "primitive_sphere", "primitive_torus"):
        strategy_result = replay_primitive(CAD, bundle, strategy)
    executed = strategy_result["executedStepIds"] if strategy_result else []
    created = []
    pending = []
    for step in plan.get("steps", []):
        kind = step.get("kind")
        if step.get("id") in executed:
            continue
        if kind in ("define_surface", "define_trim_loops", "build_trimmed_face", "sew_shell"):
            if debug_intermediates_enabled():
                created.append(_execute_plan_step(CAD, bundle, step))
        elif kind in ("build_solid", "validate_shell", "validate_solid",
                      "infer_primary_rebuild_strategy",
                      "extract_sweep_profiles", "extract_sweep_guides",
                      "extract_loft_sections", "extract_loft_rails",
                      "extract_revolve_axis", "extract_revolve_profile",
                      "partition_boolean_operands", "classify_boolean_roles",
                      "extract_freeform_surface_sets", "extract_trimmed_boundaries"):
            created.append(_execute_plan_step(CAD, bundle, step))
        else:
            pending.append(step)
    return {
        "scope": REPLAY_SCOPE,
        "entityId": REPLAY_ENTITY_ID,
        "strategy": strategy,
        "semanticStrategy": plan.get("semanticStrategy", strategy),
        "strategyResult": strategy_result,
        "payload": bundle.get("payload", {}),
        "features": bundle.get("features", []),
        "created": created,
        "pending": pending,
    }

def _run_as_main():
    global REPLAY_RESULT
    CAD = globals().get("CAD")
    if CAD is None:
        print("[STEP Replay] CAD module not available; replay() was not executed.")
        return None
    REPLAY_RESULT = replay(CAD)
    print(REPLAY_RESULT)
    return REPLAY_RESULT

if __name__ == "__main__":
    _run_as_main()
