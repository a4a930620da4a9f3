"""Comparing, checking, measuring, collisions and picks, against closed formulas."""

import math

import pytest

import orvex


def test_comparison_tells_what_differs(plate):
    assert orvex.compare(plate, plate).equivalent
    report = orvex.compare(plate, orvex.box(60, 40, 10))
    assert not report.equivalent and report.source_valid and report.candidate_valid
    assert report.failures == ["volume_mismatch", "area_mismatch", "topology_mismatch"]
    assert report.volume_error == pytest.approx(250 * math.pi / 24000)
    assert report.area_error > 0 and report.box_deviation == pytest.approx(0, abs=1e-6)
    assert report.source.counts["faces"] == 7 and report.candidate.counts["faces"] == 6
    assert report.candidate.volume == pytest.approx(24000) and report.source.area > 0
    assert report.candidate.bounding_box[1] == pytest.approx([60, 40, 10], abs=1e-6)
    assert orvex.compare(plate, orvex.box(60, 40, 10), volume=False, area=False,
                         topology=False).equivalent
    assert orvex.compare(plate, orvex.box(60, 40, 10), relative_tolerance=0.5, topology=False
                         ).equivalent
    with pytest.raises(ValueError, match="tolerance"):
        orvex.compare(plate, plate, relative_tolerance=-1)
    assert "volume_mismatch" in repr(report)


def test_check_finds_short_edges_and_small_faces(plate):
    clean = orvex.check(plate)
    assert clean.success and clean.issue_count == 0 and clean.shape_count == 1
    report = orvex.check([plate, orvex.box(0.5, 3, 3)], small_hole_radius=6)
    codes = {issue.code for issue in report.issues}
    assert "GEO_FACE_TINY" in codes and report.warning_count + report.info_count > 0
    tiny = next(issue for issue in report.issues if issue.code == "GEO_FACE_TINY")
    assert tiny.shape_index == 1 and tiny.value == pytest.approx(1.5) and tiny.threshold == 2
    assert tiny.severity == "warning" and tiny.entity_type and tiny.category and tiny.message
    assert tiny.sub_index >= 0 and report.critical_count == 0
    assert "warnings" in repr(report)


def test_measures_of_surfaces():
    tube = orvex.cylinder(10, 20) - orvex.cylinder(8, 20)
    thickness = orvex.thickness(tube, samples=4)
    assert thickness.valid and thickness.min == pytest.approx(2, abs=1e-3)
    assert thickness.max >= thickness.average >= thickness.min
    assert thickness.hotspots.shape[1] == 7 and thickness.faces == 4 and thickness.samples > 0
    ball = orvex.sphere(5)
    samples = orvex.curvature(ball.faces[0], samples=6)
    assert samples.shape == (24, 5)  # there is no curvature at the poles
    assert abs(samples[:, 2]).max() == pytest.approx(1 / 25)
    assert orvex.min_radius(ball).min == pytest.approx(5)
    stripes = orvex.zebra(ball.faces[0], samples=5)[:, 4]
    assert stripes.min() != stripes.max()
    draft = orvex.draft(orvex.cone(10, 5, 5 / math.tan(math.radians(10))), min_angle=5)
    assert draft.valid and draft.samples > 0 and draft.max_angle >= draft.average_angle
    assert draft.min_angle == pytest.approx(10, abs=1e-6) and draft.passes
    assert draft.violations == 0 and draft.hotspots.shape[1] == 4
    with pytest.raises(ValueError, match="face"):
        orvex.curvature(ball)
    with pytest.raises(ValueError, match="samples"):
        orvex.thickness(ball, samples=0)


def test_collisions_tell_touching_from_overlapping():
    shapes = [orvex.box(10, 10, 10), orvex.box(10, 10, 10).translated((8, 0, 0)),
              orvex.box(10, 10, 10).translated((30, 0, 0)),
              orvex.box(10, 10, 10).translated((40, 0, 0))]
    found = {(one.first, one.second): one for one in orvex.collisions(shapes, preset="strict",
                                                                      overlap_shapes=True)}
    assert set(found) == {(0, 1), (2, 3)}
    assert found[0, 1].state == "Intersect" and not found[0, 1].is_contact
    assert found[0, 1].overlap_volume == pytest.approx(200)
    assert found[0, 1].overlap_shape.volume == pytest.approx(200)
    assert found[2, 3].is_contact and found[2, 3].overlap_volume == 0
    assert found[2, 3].distance == pytest.approx(0)
    assert len(found[2, 3].point_on_first) == len(found[2, 3].point_on_second) == 3
    assert found[0, 1].has_collision and "overlap of 200" in repr(found[0, 1])
    assert orvex.interferences(shapes, 1.0) == [(0, 1)]
    with pytest.raises(ValueError, match="preset"):
        orvex.collisions(shapes, preset="quick")


def test_picks_come_nearest_first(plate):
    hits = orvex.Picker([orvex.box(1, 1, 1), plate]).pick((50, 20, 99), (0, 0, -2))
    assert [hit.shape_index for hit in hits] == [1, 1]
    assert hits[0].point == pytest.approx((50, 20, 10)) and hits[1].point[2] == pytest.approx(0)
    assert hits[0].parameter == pytest.approx(89) and hits[0].level == "face"
    assert hits[0].sub_shape.kind == "face" and hits[0].sub_shape in plate.faces
    assert orvex.Picker([plate]).pick((20, 20, 99), (0, 0, -1)) == []
    corner = orvex.Picker([plate], level="vertex", tolerance=0.5).pick((60, 40, 99), (0, 0, -1))
    assert corner[0].sub_shape.kind == "vertex" and "vertex of shape 0" in repr(corner[0])
    with pytest.raises(ValueError, match="level"):
        orvex.Picker([plate], level="wire")
    with pytest.raises(ValueError, match="direction"):
        orvex.Picker([plate]).pick((0, 0, 0), (0, 0, 0))
    with pytest.raises(ValueError, match="tolerance"):
        orvex.Picker([plate], tolerance=-1)
