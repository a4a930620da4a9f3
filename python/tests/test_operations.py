"""Every operation, once at least, against a closed formula."""

import math
import re

import pytest

import orvex
from orvex import operations

CORNERS = [(0, 0, 3), (0, 6, 3), (3, 0, 3), (3, 6, 3), (6, 0, 3), (6, 6, 3)]


@pytest.fixture(scope="module")
def shapes():
    with orvex.Document() as document:
        def made(kind, **parameters):
            return document.add(kind, **parameters).shape

        a = orvex.box(10, 10, 10)
        yield {
            "a": a, "b": a.translated((5, 5, 5)), "far": a.translated((50, 0, 0)),
            "touching": a.translated((10, 0, 0)), "circle": made("circle", radius=3),
            "ring": made("circle", radius=3, base_point=(0, 0, 5)),
            "rectangle": made("rectangle", base_point=(20, 0, 0), length=4, width=5),
            "line": made("line", start_point=(0, 0, 0), end_point=(10, 0, 0)),
            "across": made("line", start_point=(-1, 4, 3), end_point=(9, 4, 3)),
            "patch": operations.nurbs_grid(points=CORNERS, rows=3, u_degree=2, v_degree=1),
        }


RUNS = [
    ("union", "a b", {}, "volume", 1875), ("cut", "a b", {}, "volume", 875),
    ("common", "a b", {}, "volume", 125), ("chop", "a b", {}, "volume", 875),
    ("sew", "a far", {}, "area", 1200), ("general_fuse", "a touching b", {}, "volume", 3000),
    ("section_face", "a touching", {}, "area", 100),
    ("simulation_union", "a b", {}, "volume", 1875),
    ("faces_of_edges", "circle rectangle", {}, "area", 9 * math.pi + 20),
    ("sweep", "circle", dict(length=5, direction=(0, 3, 4)), "volume", 36 * math.pi),
    ("sweep_polyline", "", dict(points=[(0, 0, 0), (3, 0, 0), (0, 4, 0), (0, 0, 0)], length=2),
     "volume", 12),
    ("offset", "a", dict(distance=1, join="intersection"), "volume", 1728),
    ("curve_extend", "line", dict(distance=5, at="start"), "length", 15),
    ("curve_offset", "rectangle", dict(distance=1), "length", 18 + 2 * math.pi),
    ("curve_trim", "circle", dict(first=1.5, last=0), "length", 4.5),
    ("loft", "circle ring", dict(solid=True), "volume", 45 * math.pi),
    ("rail_sweep", "line across circle ring", {}, "area", 30 * math.pi),
    ("patch", "rectangle", dict(points=[(22, 2.5, 0)]), "area", 20),
    ("fill", "circle", {}, "area", 9 * math.pi),
    ("network", "circle ring", {}, "area", 48 * math.pi),
    ("surface_extend", "patch", dict(length=3), "area", 54),
    ("surface_trim", "patch across", dict(project=True), "area", 36),
    ("intersect", "a b", {}, "length", 30), ("project", "across patch", {}, "length", 6),
    ("nurbs_grid", "", dict(points=CORNERS, rows=3), "area", 36),
    ("nurbs_push_pull", "patch", dict(distance=3), "area", 36),
    ("nurbs_reparameterize", "patch", dict(u_max=8), "area", 36),
]


def geometry_of(shape):
    """All but the kernel's marks; it takes "free" from what becomes part of something."""
    return re.sub(rb"(?m)^[01]{7}$", b"", shape.to_bytes())


@pytest.mark.parametrize("name, inputs, options, measure, expected", RUNS)
def test_each_does_what_it_says(shapes, name, inputs, options, measure, expected, tmp_path,
                                monkeypatch):
    monkeypatch.setenv("ORVEX_SIMULATION_DUMPS", str(tmp_path))
    operands = [shapes[word] for word in inputs.split()]
    before = [geometry_of(shape) for shape in operands]
    result = getattr(operations, name)(*operands, **options)
    assert getattr(result, measure) == pytest.approx(expected, rel=1e-3)
    assert [geometry_of(shape) for shape in operands] == before


def test_what_is_found_without_a_shape(shapes):
    assert operations.triangle_count(shapes["b"]) == {"triangles": 0}
    geometry = operations.face_geometry(shapes["a"])
    assert geometry["vertices"] == 8 and geometry["area"] == pytest.approx(100)
    assert operations.same_face(shapes["a"], shapes["a"])["same"] is True
    assert operations.same_face(shapes["a"], shapes["b"])["same"] is False
    assert operations.blend(shapes["line"], shapes["across"]).kind == "face"
    moved = operations.nurbs_move_pole(shapes["patch"], u=1, v=1, delta=(-1, 0, 0))
    assert moved.area > 36
    assert operations.iges(shapes["a"]).volume == pytest.approx(1000)


def test_operate_gives_the_facts_as_well(shapes):
    result = operations.operate("simulation-union", shapes["a"], shapes["b"])
    assert result.facts["sectionFaces"] == 1 and isinstance(result.notes, list)
    assert result.shape.volume == pytest.approx(1875)


@pytest.mark.parametrize("call, words", [
    (lambda s: operations.operate("fold", s["a"]), "general-fuse"),
    (lambda s: operations.cut(s["a"]), "two solids"),
    (lambda s: operations.offset(s["a"]), "distance: it has to be given"),
    (lambda s: operations.offset(s["a"], distance=1, tolerance=0), "tolerance: > 0"),
    (lambda s: operations.offset(s["a"], distance=1, join="glue"), "arc, tangent"),
    (lambda s: operations.offset(s["a"], distance=1, far=2), "far: no option"),
    (lambda s: operations.offset(orvex.Shape(), distance=1), "null"),
    (lambda s: operations.offset(s["a"], distance="wide"), "distance"),
])
def test_refused_input(shapes, call, words):
    with pytest.raises(ValueError, match=words):
        call(shapes)


def test_what_the_kernel_cannot_do(shapes):
    with pytest.raises(orvex.KernelError, match="bounds no face"):
        operations.sweep(shapes["line"], length=3)
    with pytest.raises(orvex.KernelError, match="overlap"):
        operations.chop(shapes["a"], shapes["far"])


def test_each_is_documented_and_run_here():
    told = set(operations.__all__) - {"Operated", "operate"}
    assert told == {name for name, *_ in RUNS} | {"triangle_count", "face_geometry", "same_face",
                                                  "blend", "nurbs_move_pole", "iges"}
    assert "join: " in operations.offset.__doc__
    with pytest.raises(AttributeError, match="no operation"):
        operations.fold
