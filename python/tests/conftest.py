"""Shapes and files that several tests use."""

import os
import pathlib

import pytest

import orvex

SOURCE = pathlib.Path(os.environ["ORVEX_SOURCE"])
SAMPLE = SOURCE / "examples" / "gear-reducer.step"


@pytest.fixture
def plate():
    """60 x 40 x 10 with a hole of radius 5 through it."""
    return orvex.box(60, 40, 10) - orvex.cylinder(5, 30, origin=(20, 20, -10))


@pytest.fixture(scope="session")
def sample():
    return orvex.read_step(SAMPLE)


def data_files():
    """The real files and their facts, or a reason to skip."""
    folder = os.environ.get("ORVEX_TEST_DATA")
    if not folder:
        pytest.skip("ORVEX_TEST_DATA is not set")
    return pathlib.Path(folder)
