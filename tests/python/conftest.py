"""What the tests share: the lab that they run in, a board, a rack of their own."""
import os
import pathlib
import subprocess
import sys

import hypothesis
import pytest

import orvane
import orvane.lab

hypothesis.settings.register_profile("orvane", deadline=None, database=None, derandomize=True, max_examples=60)
hypothesis.settings.load_profile("orvane")


@pytest.fixture(scope="session")
def lab():
    """The lab around the test."""
    return orvane.lab.Lab()


@pytest.fixture
def board(lab):
    """The board OV0001, without faults before and after."""
    board = lab["OV0001"]
    board.clear()
    yield board
    board.clear()


@pytest.fixture
def rack():
    """A rack that is closed with the test."""
    with orvane.Rack() as rack:
        yield rack


@pytest.fixture
def port(rack):
    """Port 0 of OV0001."""
    return rack.open("OV0001:0")


@pytest.fixture
def phy(board, port):
    """PHY 3 of OV0001:0, its session open."""
    phy = port.phy(3)
    phy.open()
    return phy


@pytest.fixture
def program(tmp_path):
    """Runs a program of Python of its own: program(text) gives the ended process, with its output as text."""

    def run(text, **how):
        file = tmp_path / "program.py"
        file.write_text(text)
        return subprocess.run([sys.executable, str(file)], text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=60, **how)

    return run


@pytest.fixture(scope="session")
def source():
    """The root of the source tree."""
    return pathlib.Path(os.environ["ORVANE_PYTHON_SOURCE"])
