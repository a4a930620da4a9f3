"""Reading STEP: parts, reports, documents of a replay, progress, refusals."""

import ast
import json
import threading

import pytest

import orvex
from conftest import SAMPLE, data_files


def test_parts_have_names_colours_and_places(tmp_path):
    orvex.compound([orvex.box(1, 2, 3), orvex.sphere(1).translated((9, 0, 0))]).write(
        tmp_path / "two.step")
    model = orvex.read_step(tmp_path / "two.step")
    assert sum(part.shape.volume for part in model) == pytest.approx(6 + 4.18879, rel=1e-5)
    assert len({part.name for part in model}) == len(model)
    assert model[0].color is None
    assert repr(model) == f"<orvex.Model: two.step, {len(model)} shapes>"


def test_the_report_counts(sample):
    report = sample.report
    assert report["collected"] and report["solids_out"] <= report["solids_in_file"]
    assert report["length_unit"] == "millimetre" and report["losses"] == []
    assert report["schema"].startswith("A")


def test_the_product_tree(sample):
    [root] = sample.tree
    nodes = list(root.walk())
    assert root.name == "gear reducer" and root.part is None
    assert len(nodes) == 141 and max(depth for depth, _ in nodes) == 3
    leaves = [node for _, node in nodes if node.children is None]
    assert len(leaves) == 119
    assert {leaf.part for leaf in leaves if leaf.part} <= set(sample.parts)
    assert leaves[0].part.name == leaves[0].name == "housing bottom"
    balls = [node for _, node in nodes if node.name == "ball"]
    assert len(balls) == 48 and balls[0].placement[3] == (0, 0, 0, 1)
    assert [row[3] for row in balls[0].placement[:3]] == pytest.approx([18, 0, 7.5])
    orvex.read_step(SAMPLE)  # another read does not take it away
    assert sample.tree[0] is root


def test_every_document_is_told_as_json(sample):
    read = sample._read
    for name in ("face", "shell", "solid"):
        bundle = json.loads(getattr(read, f"{name}_bundle")(1))
        assert bundle[f"{name}Id"] == 1 and bundle["plan"]["scope"] == name
        assert sample.plan(**{name: 1})["scope"] == name
    assert set(json.loads(read.bundle())) == {"manifest", "summary", "features"}


def test_documents_of_a_replay(sample):
    solids = sample.solid_ids
    assert solids == list(range(1, len(solids) + 1))
    assert sample.summary["solids"][0]["id"] == 1
    assert {feature["kind"] for feature in sample.features} >= {"analytic_plane_face"}
    plan = sample.plan(solid=1)
    assert plan["scope"] == "solid" and plan["steps"][-1]["kind"] == "validate_solid"
    assert sample.payload(solid=1)["exactBrep"].startswith("\nCASCADE Topology V3")
    assert sample.payload(face=1)["faceId"] == 1 and sample.payload(shell=1)["shellId"] == 1
    for script in (sample.script(solid=1), sample.script(shell=1), sample.script(face=1)):
        ast.parse(script)
    assert sample.plan(solid=99999)["steps"] == [] and sample.payload(face=99999) == {}
    for ids in ({}, {"face": 1, "solid": 1}, {"face": -1}):
        with pytest.raises(ValueError):
            sample.plan(**ids)


def test_progress_is_told_and_may_stop_the_read():
    stages = []
    orvex.read_step(SAMPLE, progress=lambda stage, fraction: stages.append((stage, fraction)))
    assert stages and all(-1 <= fraction <= 1 for _, fraction in stages)

    def stop(stage, fraction):
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        orvex.read_step(SAMPLE, progress=stop)
    assert len(orvex.read_step(SAMPLE)) > 0


def test_other_threads_run_during_a_read():
    turns = []
    done = threading.Event()

    def count():
        while not done.is_set():
            turns.append(1)
            done.wait(0.001)

    thread = threading.Thread(target=count)
    thread.start()
    orvex.read_step(SAMPLE)
    done.set()
    thread.join()
    assert len(turns) > 5


def test_isolated_reads_give_the_same(sample):
    isolated = orvex.read_step(SAMPLE, isolated=True, time_limit=60)
    assert [part.name for part in isolated] == [part.name for part in sample]
    assert isolated[0].shape.volume == pytest.approx(sample[0].shape.volume)


def test_what_cannot_be_read_says_so(tmp_path):
    with pytest.raises(FileNotFoundError):
        orvex.read_step(tmp_path / "none.step")
    with pytest.raises(ValueError, match="time_limit"):
        orvex.read_step(SAMPLE, time_limit=-1)
    path = tmp_path / "bad.step"
    for content in ("", "nonsense", SAMPLE.read_text()[:2000]):
        path.write_text(content)
        with pytest.raises(orvex.KernelError, match="bad.step"):
            orvex.read_step(path)


def test_a_file_that_takes_the_kernel_down_in_a_process_of_its_own():
    with pytest.raises(orvex.KernelError, match="crash"):
        orvex.read_step(data_files() / "crash-line-without-vector.stp", isolated=True)
