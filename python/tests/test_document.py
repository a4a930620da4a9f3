"""Documents: parametric shapes, expressions, undo, files, and what happens with two of them."""

import math

import pytest

import orvex


@pytest.fixture
def document():
    with orvex.Document() as opened:
        yield opened


def test_every_kind_is_made_and_measures_what_its_formula_says(document):
    square = orvex.box(2, 2, 1).faces[0]
    side = square.area
    made = {
        "line": (dict(start_point=(0, 0, 0), end_point=(3, 4, 0)), "length", 5),
        "rectangle": (dict(length=3, width=4), "length", 14),
        "polygon": (dict(base_point=(0, 0, 0), end_point=(1, 0, 0), number_polygon=6), None, 0),
        "arc": (dict(start_point=(1, 0, 0), end_point=(0, 1, 0), third_point=(-1, 0, 0)), "length",
                math.pi),
        "circle": (dict(radius=2), None, 0),
        "ellipse": (dict(major_radius=3, minor_radius=2), None, 0),
        "bspline": (dict(control_points=[(0, 0, 0), (1, 2, 0), (3, 1, 0), (4, 0, 0)]), None, 0),
        "bezier": (dict(control_points=[(0, 0, 0), (1, 0, 0), (2, 0, 0)]), "length", 2),
        "box": (dict(length=2, width=3, height=4), "volume", 24),
        "cylinder": (dict(bottom_radius=2, height=3), "volume", 12 * math.pi),
        "sphere": (dict(radius=3), "volume", 36 * math.pi),
        "cone": (dict(bottom_radius=3, top_radius=1, height=6), "volume", 26 * math.pi),
        "torus": (dict(bottom_radius=5, radius=1), "volume", 10 * math.pi ** 2),
        "extrude": (dict(normal=(1, 0, 0), length=5, shape_to_extrude=square), "volume", 5 * side),
    }
    for kind, (parameters, measure, expected) in made.items():
        feature = document.add(kind, **parameters)
        assert feature.kind.lower() == kind and feature.shape.is_valid, kind
        assert set(feature.parameters) == set(orvex.kinds()[feature.kind])
        if measure:
            assert getattr(feature.shape, measure) == pytest.approx(expected), kind
        else:
            assert feature.shape.length > 0
    assert [feature.kind.lower() for feature in document.features][:len(made)] == list(made)


def test_expressions_follow_parameters_and_globals(document):
    document.parameters["wall"] = 4
    plate = document.add("box", length=40, width=20, height=5)
    plate["height"] = "2*wall"
    assert plate.shape.volume == pytest.approx(6400) and plate["Height"] == pytest.approx(8)
    assert plate.expression("height") == "2*wall" and plate.expression("length") == ""
    document.parameters["wall"] = 10
    assert plate.shape.volume == pytest.approx(16000)
    plate["length"] = 10
    assert plate.shape.volume == pytest.approx(4000)
    plate["height"] = 1
    document.parameters["wall"] = 3
    assert plate["height"] == 1 and plate.expression("height") == ""
    assert dict(document.parameters) == {"wall": 3} and len(document.parameters) == 1
    assert "wall" in repr(document.parameters)
    with pytest.raises(ValueError):
        del document.parameters["wall"]


def test_undo_takes_back_whole_steps(document):
    plate = document.add("box", length=4, width=2, height=1)
    with document.transaction():
        plate["length"] = 10
        plate["width"] = 10
    assert plate.shape.volume == pytest.approx(100)
    assert document.undo() and plate.shape.volume == pytest.approx(8) and plate["width"] == 2
    assert document.redo() and plate.shape.volume == pytest.approx(100)
    assert not document.redo()
    with pytest.raises(RuntimeError):
        with document.transaction():
            plate["length"] = 99
            raise RuntimeError
    assert plate["length"] == 10 and plate.shape.volume == pytest.approx(100)
    with pytest.raises(ValueError, match="transaction"):
        with document.transaction(), document.transaction():
            pass


@pytest.mark.parametrize("change, words", [
    (lambda plate: plate.__setitem__("length", -1), "Length: > 0"),
    (lambda plate: plate.__setitem__("radius", 1), "radius: no parameter of a Box"),
    (lambda plate: plate.__setitem__("height", "2*nothing"), "has no value"),
    (lambda plate: plate.__setitem__("length", (1, 2, 3)), "Length"),
    (lambda plate: plate.__setitem__("normal", (0, 0, 0)), "not zero"),
])
def test_refused_changes_leave_everything_as_it_was(document, change, words):
    plate = document.add("box", length=4, width=2, height=1)
    before = plate.parameters
    with pytest.raises(ValueError, match=words):
        change(plate)
    assert plate.parameters == before and plate.shape.volume == pytest.approx(8)
    assert plate.shape.is_valid


def test_refused_shapes(document):
    for call in (lambda: document.add("blob"), lambda: document.add("box", length=1),
                 lambda: document.add("box", length=0, width=1, height=1),
                 lambda: document.parameters.__setitem__("1x", 2)):
        with pytest.raises(ValueError):
            call()
    assert document.features == [] and repr(document) == "<orvex.Document: 0 features>"


def test_saved_and_opened_again(tmp_path):
    path = tmp_path / "plate.xbf"
    with orvex.Document() as document:
        document.parameters["wall"] = 4
        plate = document.add("box", length=40, width=20, height=5)
        document.save(path)
        with pytest.raises(FileNotFoundError):
            document.save(tmp_path / "no folder" / "plate.xbf")
    with orvex.Document(path) as again:
        [feature] = again.features
        assert feature.shape.volume == pytest.approx(4000) and feature.kind == "Box"
        assert dict(again.parameters) == {"wall": 4}
        feature["height"] = "wall"
        assert feature.shape.volume == pytest.approx(3200)
    with pytest.raises(FileNotFoundError):
        orvex.Document(tmp_path / "none.xbf")
    path.write_text("nonsense")
    with pytest.raises(orvex.KernelError, match="plate.xbf"):
        orvex.Document(path)


def test_another_document_closes_the_first():
    first = orvex.Document()
    plate = first.add("box", length=1, width=2, height=3)
    shape = plate.shape
    second = orvex.Document()
    assert repr(first) == "<orvex.Document: closed>"
    for call in (lambda: plate.shape, lambda: first.add("sphere", radius=1), first.undo,
                 lambda: first.features):
        with pytest.raises(ValueError, match="closed"):
            call()
    assert shape.volume == pytest.approx(6) and second.features == []
    assert plate != second.add("box", length=1, width=2, height=3)
    first.close()
    assert len(second.features) == 1
    second.close()
