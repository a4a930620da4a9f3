"""Shapes: figures by closed formulas, files there and back, refusals."""

import math
import pickle

import numpy
import pytest

import orvex


def test_primitives_have_the_volumes_and_areas_of_their_formulas():
    assert orvex.box(2, 3, 4).volume == pytest.approx(24)
    assert orvex.box(2, 3, 4).area == pytest.approx(52)
    assert orvex.cylinder(3, 5).volume == pytest.approx(math.pi * 45)
    assert orvex.cone(3, 1, 6).volume == pytest.approx(math.pi * 6 * (9 + 3 + 1) / 3)
    assert orvex.sphere(2).volume == pytest.approx(32 * math.pi / 3)
    assert orvex.torus(5, 2).volume == pytest.approx(2 * math.pi ** 2 * 5 * 4)
    tilted = orvex.cylinder(1, 4, origin=(1, 2, 3), axis=(1, 0, 0))
    assert tilted.centre == pytest.approx([3, 2, 3])


@pytest.mark.parametrize("call, name", [
    (lambda: orvex.box(0, 1, 1), "length"), (lambda: orvex.box(1, float("nan"), 1), "width"),
    (lambda: orvex.box(1, 1, -1), "height"), (lambda: orvex.sphere(-2), "radius"),
    (lambda: orvex.cylinder(1, 1, axis=(0, 0, 0)), "axis"), (lambda: orvex.cone(1, 1, 1), "radius"),
    (lambda: orvex.torus(1, 2), "major_radius"),
    (lambda: orvex.box(1, 1, 1).mesh(0), "linear_deflection"),
    (lambda: orvex.from_bytes(b"nonsense"), "data"),
])
def test_refused_input_names_the_parameter(call, name):
    with pytest.raises(ValueError, match=name):
        call()


def test_booleans_and_parts(plate):
    assert plate.kind == "solid"
    assert plate.volume == pytest.approx(24000 - 250 * math.pi)
    assert len(plate.faces) == 7 and len(plate.solids) == 1 and len(plate.shells) == 1
    assert len(plate.edges) == 15 and len(plate.vertices) == 10
    assert (plate & orvex.box(10, 10, 10)).volume == pytest.approx(1000)
    both = orvex.box(1, 1, 1) + orvex.box(1, 1, 1).translated((5, 0, 0))
    assert both.kind == "compound" and len(both.solids) == 2
    assert orvex.compound([plate, plate]).volume == pytest.approx(2 * plate.volume)
    assert plate.is_valid and not orvex.Shape().is_valid


def test_measures_of_less_than_solids(plate):
    low, high = plate.bounding_box
    assert low == pytest.approx([0, 0, 0], abs=1e-6) and high == pytest.approx([60, 40, 10], abs=1e-6)
    assert orvex.Shape().bounding_box is None and orvex.Shape().is_null
    circle = [edge for edge in plate.edges if edge.length == pytest.approx(10 * math.pi)]
    assert len(circle) == 2 and circle[0].kind == "edge"
    assert sorted(face.area for face in plate.faces)[0] == pytest.approx(100 * math.pi)
    assert orvex.Shape().volume == 0 and orvex.Shape().area == 0 and orvex.Shape().length == 0
    with pytest.raises(ValueError):
        orvex.Shape().centre


def test_moved_shapes(plate):
    turned = plate.rotated((0, 0, 0), (0, 0, 1), math.pi / 2)
    low, high = turned.bounding_box
    assert low == pytest.approx([-40, 0, 0], abs=1e-6) and high == pytest.approx([0, 60, 10], abs=1e-6)
    moved = plate.translated((1, 2, 3))
    assert moved.is_partner(plate) and not moved.is_same(plate)
    assert moved != plate and plate == plate.solids[0]
    assert len({plate, moved, plate}) == 2


def test_meshes_are_closed_and_near(plate):
    mesh = plate.mesh(0.05)
    assert mesh.vertices.dtype == numpy.float64 and mesh.triangles.dtype == numpy.int32
    assert mesh.faces.min() == 1 and mesh.faces.max() == 7 and len(mesh.faces) == len(mesh.triangles)
    corners = mesh.vertices[mesh.triangles]
    volume = numpy.einsum("ij,ij->", corners[:, 0], numpy.cross(corners[:, 1], corners[:, 2])) / 6
    assert volume == pytest.approx(plate.volume, rel=2e-3)
    vertices = plate.mesh(0.05).vertices
    del plate
    assert vertices.sum() == pytest.approx(mesh.vertices.sum())


@pytest.mark.parametrize("ending", [".brep", ".step", ".stp", ".igs", ".iges"])
def test_files_there_and_back(plate, tmp_path, ending):
    path = tmp_path / f"plate{ending}"
    plate.write(path)
    back = orvex.read(path)
    assert back.area == pytest.approx(plate.area, rel=1e-6)
    if ending not in (".igs", ".iges"):
        assert orvex.compare(plate, back).equivalent
    assert [entry.name for entry in tmp_path.iterdir()] == [path.name]


def test_stl_and_bytes_and_pickles(plate, tmp_path):
    plate.write(tmp_path / "plate.stl")
    content = (tmp_path / "plate.stl").read_bytes()
    triangles = int.from_bytes(content[80:84], "little")
    assert len(content) == 84 + 50 * triangles
    back = orvex.read(tmp_path / "plate.stl")
    assert back.kind == "face" and len(back.mesh().triangles) == triangles
    assert orvex.compare(plate, orvex.from_bytes(plate.to_bytes())).equivalent
    assert orvex.compare(plate, pickle.loads(pickle.dumps(plate))).equivalent


def test_files_that_fail_leave_the_old_one(plate, tmp_path):
    path = tmp_path / "plate.step"
    path.write_text("old")
    with pytest.raises(ValueError):
        orvex.Shape().write(path)
    with pytest.raises(ValueError, match="ends in none"):
        plate.write(tmp_path / "plate.txt")
    with pytest.raises(FileNotFoundError):
        plate.write(tmp_path / "no folder" / "plate.step")
    assert path.read_text() == "old"
    with pytest.raises(orvex.KernelError):
        orvex.read(path)
    with pytest.raises(FileNotFoundError):
        orvex.read(tmp_path / "none.brep")
    (tmp_path / "bad.brep").write_text("nonsense")
    with pytest.raises(orvex.KernelError, match="bad.brep"):
        orvex.read(tmp_path / "bad.brep")
    with pytest.raises(ValueError, match="ends in none"):
        orvex.read(path.with_suffix(".txt") if path.rename(path.with_suffix(".txt")) else path)


def test_names_are_short(plate):
    assert repr(plate) == "<orvex.Shape: solid, 7 faces>"
    assert repr(orvex.Shape()) == "<orvex.Shape: null>"
