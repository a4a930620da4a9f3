"""The object `CAD` that a replay script asks for what it needs."""

from __future__ import annotations

import json
from dataclasses import dataclass, field
from typing import Any, Callable, Dict, List, Mapping, Optional, Tuple

from .. import _orvex
from .._orvex import EquivalenceReport, Shape, compare

Payload = Mapping[str, Any]

# The names under which plans and scripts ask for a command, and what does it here.
COMMANDS: Dict[str, Tuple[str, ...]] = {
    "define_surface": ("DefineSurface", "defineSurfaceFromPayload"),
    "define_trim_loops": ("DefineTrimLoops", "defineTrimLoopsFromPayload"),
    "build_trimmed_face": ("BuildTrimmedFace", "buildTrimmedFaceFromPayload"),
    "sew": ("Sew", "sewFacesFromPayload", "ReplaySewShell"),
    "validate_shell": ("ValidateShell", "validateShellReplay"),
    "infer_strategy": ("InferReplayStrategy", "inferReplayStrategy"),
    "extract_sweep_profiles": ("ExtractSweepProfiles", "extractSweepProfilesFromFaces"),
    "extract_sweep_guides": ("ExtractSweepGuides", "extractSweepGuidesFromFaces"),
    "extract_loft_sections": ("ExtractLoftSections", "extractLoftSectionsFromFaces"),
    "extract_loft_rails": ("ExtractLoftRails", "extractLoftRailsFromFaces"),
    "extract_revolve_axis": ("ExtractRevolveAxis", "extractRevolveAxisFromFaces"),
    "extract_revolve_profile": ("ExtractRevolveProfile", "extractRevolveProfileFromFaces"),
    "partition_operands": ("PartitionBooleanOperands", "partitionBooleanOperandsFromFaces"),
    "classify_roles": ("ClassifyBooleanRoles", "classifyBooleanRolesFromFaces"),
    "extract_surface_sets": ("ExtractFreeformSurfaceSets", "extractFreeformSurfaceSetsFromFaces"),
    "extract_boundaries": ("ExtractTrimmedBoundaries", "extractTrimmedBoundariesFromFaces"),
    "rebuild_sweep": ("Sweep", "rebuildSweepFromFaces", "ReplaySweep"),
    "rebuild_loft": ("AdvancedLoft", "rebuildLoftFromFaces", "ReplayLoft"),
    "rebuild_revolve": ("Revolve", "rebuildRevolveFromFaces", "ReplayRevolve"),
    "rebuild_boolean": ("BooleanCut", "rebuildBooleanFromFaces", "ReplayBoolean"),
    "rebuild_freeform": ("ReplayTrimmedFreeform", "rebuildTrimmedFreeformFromFaces"),
    "build_solid": ("BuildSolid", "BuildPrimitive", "buildSolidFromReplay"),
    "validate_solid": ("ValidateSolid", "validateSolidReplay"),
}


@dataclass
class Built:
    """A solid that a command has built."""

    shape: Optional[Shape]
    way: str
    """"exact", or by which strategy: "sweep", "primitive_box", "faces" and so on."""
    parts: List[Any] = field(default_factory=list)
    """What it was put together from: `face_ids`, `role` and `form` of each."""
    failure: str = ""
    """Why there is no shape."""
    digits: str = "payload"
    """"payload" for the six digits of the script's text, "exact" for all that the solid has."""
    report: Optional[EquivalenceReport] = None
    """Against the exact solid; None without one."""

    def __repr__(self) -> str:
        state = self.failure or (repr(self.report) if self.report else "not compared")
        return f"<Built: {self.way}, {state}>"

    @property
    def forms(self) -> Dict[str, int]:
        """How many parts there are of each role and form, as "cut extrusion"."""
        counts: Dict[str, int] = {}
        for part in self.parts:
            name = f"{part.role} {part.form}"
            counts[name] = counts.get(name, 0) + 1
        return counts


class Host:
    """Offers every command that plans name, by their names and by `executeCommand`.

    bundle: the script's own bundle, `REPLAY_BUNDLE`. It completes what a command's payload leaves
        out: all faces of the solid, and its exact text.
    strategy: rebuild solids by their strategies; else `buildSolidFromReplay` restores them from
        the exact text, and joins the faces of the payload where there is none.

    After a run `built` holds what the commands have built last, and `shells` and `faces` what came
    on the way.
    """

    def __init__(self, bundle: Optional[Mapping[str, Any]] = None, *,
                 strategy: bool = False) -> None:
        self._bundle = dict(bundle or {})
        self._strategy = strategy
        self._rebuilders: Dict[str, Any] = {}
        self.built: Optional[Built] = None
        self.faces: Dict[int, Shape] = {}
        self.shells: List[Shape] = []

    def __repr__(self) -> str:
        return f"<orvex.replay.Host: {'strategy' if self._strategy else 'exact'}>"

    def executeCommand(self, name: str, payload: Payload) -> Any:
        """Runs a command by its name.

        Errors: ValueError for a name that no command has.
        """
        for method, names in COMMANDS.items():
            if name in names:
                return getattr(self, method)(payload)
        raise ValueError(f"name: there is no command {name!r}")

    # Faces and shells

    def define_surface(self, payload: Payload) -> List[dict]:
        """Kind and bounds of the surface under each face."""
        return [{"faceId": face["faceId"], "kind": face["surface"]["kind"],
                 "bounds": [face["surface"][key] for key in ("uMin", "uMax", "vMin", "vMax")]}
                for face in _faces_in(payload)]

    def define_trim_loops(self, payload: Payload) -> List[dict]:
        """How many edges each loop of a face has, the outer one marked."""
        return [{"faceId": face["faceId"],
                 "loops": [{"isOuter": loop["isOuter"], "edges": len(loop["coedges"])}
                           for loop in face["trim"]["loops"]]}
                for face in _faces_in(payload)]

    def build_trimmed_face(self, payload: Payload) -> List[Shape]:
        """The faces of the payload.

        Errors: ValueError with the reason for one that cannot be built.
        """
        faces = _faces_in(payload)
        built = [self._face(face["faceId"], faces) for face in faces]
        self.faces.update((face["faceId"], shape) for face, shape in zip(faces, built))
        return built

    def sew(self, payload: Payload) -> Shape:
        """The faces of the payload as one shell."""
        faces = _faces_in(payload)
        shell = self._rebuilder(faces).shell([face["faceId"] for face in faces])
        if shell.is_null:
            raise ValueError("faces: there are none that can be sewn")
        self.shells.append(shell)
        return shell

    def validate_shell(self, payload: Payload) -> dict:
        """Whether the shell of the payload's faces is sound, and closed."""
        shell = self.sew(payload)
        return {"valid": shell.is_valid, "closed": shell.volume != 0}

    # What strategies work on

    def infer_strategy(self, payload: Payload) -> dict:
        """The strategy of the plan, and how many faces it has to work on."""
        plan = self._bundle.get("plan", {})
        return {"strategy": plan.get("primaryStrategy", "generic_brep"),
                "groups": {name: len(faces) for name, faces in payload.get("groups", {}).items()}}

    def extract_sweep_profiles(self, payload: Payload) -> List[Shape]:
        """The flat faces at the ends, whose outlines are swept."""
        return self._shapes(payload, "sections", "capFaces")

    def extract_sweep_guides(self, payload: Payload) -> List[Shape]:
        """The faces along which profiles are swept."""
        return self._shapes(payload, "guides", "supportFaces")

    extract_loft_sections = extract_sweep_profiles
    extract_loft_rails = extract_sweep_guides

    def extract_revolve_axis(self, payload: Payload) -> dict:
        """The axis that most of the round faces share: a point on it and its direction.

        Errors: ValueError where no face tells of an axis.
        """
        axes: Dict[tuple, List[int]] = {}
        for face in self._group(payload, "axisFaces", "guides", "supportFaces"):
            numbers = face["surface"]["analyticParameters"]
            if len(numbers) >= 6 and face["surface"]["kind"] != "plane":
                axes.setdefault(_line_key(numbers), []).append(face["faceId"])
        if not axes:
            raise ValueError("supportFaces: none of them has an axis")
        (point, direction), ids = max(axes.items(), key=lambda item: len(item[1]))
        return {"point": list(point), "direction": list(direction), "faceIds": ids}

    def extract_revolve_profile(self, payload: Payload) -> List[Shape]:
        """The faces whose outlines are revolved."""
        return self._shapes(payload, "profileFaces", "capFaces", "supportFaces")

    def partition_operands(self, payload: Payload) -> List[dict]:
        """The parts that the solid is put together from, as far as its faces tell.

        Errors: ValueError with the reason where it cannot be taken apart.
        """
        rebuilt = self._solid(payload).from_features()
        if rebuilt.shape.is_null:
            raise ValueError(f"operands: {rebuilt.failure}")
        return [{"faceIds": part.face_ids, "role": part.role, "form": part.form}
                for part in rebuilt.operands]

    def classify_roles(self, payload: Payload) -> List[int]:
        """The faces that cuts have left."""
        cuts = [part for part in self.partition_operands(payload) if part["role"] == "cut"]
        return sorted(number for part in cuts for number in part["faceIds"])

    def extract_surface_sets(self, payload: Payload) -> List[Shape]:
        """The faces on free-form surfaces."""
        return self._shapes(payload, "surfaceSets", "supportFaces", "faces")

    def extract_boundaries(self, payload: Payload) -> List[List[Shape]]:
        """The edges of each trimmed face."""
        return [face.edges for face in self._shapes(payload, "trimBoundaries", "trimmedFaces")]

    # Solids

    def rebuild_sweep(self, payload: Payload) -> Built:
        """The solid from parts that are extruded, revolved or lofted."""
        return self._rebuild(payload, "sweep", lambda solid: solid.from_features())

    def rebuild_loft(self, payload: Payload) -> Built:
        """As `rebuild_sweep`; the strategies differ in what they were recognised by."""
        return self._rebuild(payload, "loft", lambda solid: solid.from_features())

    def rebuild_revolve(self, payload: Payload) -> Built:
        """As `rebuild_sweep`."""
        return self._rebuild(payload, "revolve", lambda solid: solid.from_features())

    def rebuild_boolean(self, payload: Payload) -> Built:
        """As `rebuild_sweep`."""
        return self._rebuild(payload, "boolean", lambda solid: solid.from_features())

    def rebuild_freeform(self, payload: Payload) -> Built:
        """The solid from its trimmed faces."""
        return self._rebuild(payload, "trimmed_freeform", lambda solid: solid.from_faces())

    def build_solid(self, payload: Payload) -> Built:
        """The solid from its exact text or, by strategy, as a primitive, from features, or from its
        trimmed faces, whichever works first.

        A text that has lost the digits that made its solid valid is joined from faces, too.
        """
        exact = self._exact(payload)
        if exact is not None and not self._strategy and exact.is_valid:
            self.built = Built(exact, "exact", digits="exact", report=compare(exact, exact))
            return self.built
        ways: List[Tuple[str, Callable[[Any], Any]]] = [
            ("features", lambda solid: solid.from_features()),
            ("faces", lambda solid: solid.from_faces())]
        kind = payload.get("primitiveStrategy") or self._primary()
        if not self._strategy:
            ways = ways[1:]
        elif kind.startswith("primitive_"):
            ways = [(kind, lambda solid: solid.from_primitive(kind)), *ways[:1]]
        for way, build in ways:
            built = self._rebuild(payload, way, build)
            if built.shape is not None and (built.report is None or built.report.equivalent):
                return built
        if exact is not None and not self._strategy and not (built.shape and built.shape.is_valid):
            self.built = Built(exact, "exact", digits="exact", report=compare(exact, exact))
        return self.built  # type: ignore[return-value]

    def validate_solid(self, payload: Payload) -> dict:
        """How the solid that was built last compares with the exact one.

        Errors: ValueError while there is nothing to compare.
        """
        if self.built is None or self.built.shape is None:
            raise ValueError("nothing has been built")
        exact = self._exact(payload)
        if exact is None:
            return {"valid": self.built.shape.is_valid}
        report = compare(exact, self.built.shape)
        return {"equivalent": report.equivalent, "failures": report.failures}

    # How it is done

    def _rebuild(self, payload: Payload, way: str, build: Callable[[Any], Any]) -> Built:
        """First with the payload's own digits, then with all digits of the exact solid."""
        faces = self._all_faces(payload)
        exact = self._exact(payload)
        self.built = self._attempt(way, build, _orvex.SolidRebuilder(json.dumps(faces)), exact,
                                   "payload")
        if exact is None or (self.built.report and self.built.report.equivalent):
            return self.built
        refined = _orvex.SolidRebuilder(json.dumps(faces))
        if refined.restore_digits(exact):
            self.built = self._attempt(way, build, refined, exact, "exact")
        return self.built

    @staticmethod
    def _attempt(way: str, build: Callable[[Any], Any], solid: Any, exact: Optional[Shape],
                 digits: str) -> Built:
        rebuilt = build(solid)
        if rebuilt.shape.is_null:
            return Built(None, way, failure=rebuilt.failure, digits=digits)
        report = None if exact is None else compare(exact, rebuilt.shape)
        return Built(rebuilt.shape, way, rebuilt.operands, digits=digits, report=report)

    def _primary(self) -> str:
        return self._bundle.get("plan", {}).get("primaryStrategy", "generic_brep")

    def _exact(self, payload: Payload) -> Optional[Shape]:
        own = self._bundle.get("payload", {})
        text = payload.get("exactBrep") or own.get("exactBrep")
        return _orvex.shape_from_bytes(text.encode("utf-8", "surrogateescape")) if text else None

    def _all_faces(self, payload: Payload) -> List[dict]:
        own = [face for shell in self._bundle.get("payload", {}).get("shells", [])
               for face in shell["faces"]]
        return own or _faces_in(payload)

    def _solid(self, payload: Payload) -> Any:
        return self._rebuilder(self._all_faces(payload))

    def _rebuilder(self, faces: List[dict]) -> Any:
        text = json.dumps(faces)
        if text not in self._rebuilders:
            self._rebuilders = {text: _orvex.SolidRebuilder(text)}
        return self._rebuilders[text]

    def _face(self, number: int, faces: List[dict]) -> Shape:
        rebuilder = self._rebuilder(faces)
        for failed, reason in rebuilder.failures:
            if failed == number:
                raise ValueError(f"face {number}: {reason}")
        return rebuilder.face(number)

    def _group(self, payload: Payload, *names: str) -> List[dict]:
        groups = payload.get("groups", {})
        for name in names:
            faces = payload.get(name) or groups.get(name)
            if faces:
                return list(faces)
        return []

    def _shapes(self, payload: Payload, *names: str) -> List[Shape]:
        faces = self._group(payload, *names)
        return [self._face(face["faceId"], faces) for face in faces]


def _faces_in(payload: Payload) -> List[dict]:
    """All faces that a command's payload holds, each once."""
    groups = payload.get("groups", {})
    found: Dict[int, dict] = {}
    for name in ("faces", "supportFaces", "capFaces", "trimmedFaces"):
        for face in [*payload.get(name, []), *groups.get(name, [])]:
            found.setdefault(face["faceId"], face)
    return list(found.values())


def _line_key(numbers: List[float]) -> tuple:
    """A line by its direction and the point of it nearest to the origin, rounded."""
    x, y, z, dx, dy, dz = numbers[:6]
    if (dx, dy, dz) < (0, 0, 0):
        dx, dy, dz = -dx, -dy, -dz
    along = x * dx + y * dy + z * dz
    point = (x - along * dx, y - along * dy, z - along * dz)
    return (tuple(round(value, 4) + 0.0 for value in point),
            tuple(round(value, 5) + 0.0 for value in (dx, dy, dz)))


def _offer(method: str, name: str) -> None:
    def command(self: Host, payload: Payload) -> Any:
        return getattr(self, method)(payload)

    command.__name__ = name
    command.__doc__ = getattr(Host, method).__doc__
    setattr(Host, name, command)


for _method, _names in COMMANDS.items():
    for _name in _names:
        _offer(_method, _name)
