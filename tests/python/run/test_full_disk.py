"""A disk that is full: the run ends, boards are safe, nothing that was measured is lost."""
import subprocess
import sys

import pytest

import orvane

SWEEP = """
import os, sys
import numpy
import orvane

run = orvane.Run("full", boards="OV0001:0", phy=3, drive=range(40), safe_within=5)

@run.point
def measure(p, drive):
    p.record(row=numpy.full(64 * 1024, drive, numpy.uint8))

run.safe_state(lambda p: p.phy.write((30, 0xC060), 1))
run.go(sys.argv[1], resume=True)
"""


@pytest.mark.parametrize("limit", ["disk", "file"])
def test_full_disk_ends_the_run_and_keeps_what_was_measured(tmp_path, lab, limit):
    (tmp_path / "full.py").write_text(SWEEP)
    lab["OV0001"].set_value((30, 0xC060), 0, phy=3)
    folder = tmp_path / "disk"
    folder.mkdir()
    out = folder / "full.orvrun"
    program = f"{sys.executable} {tmp_path}/full.py {out}"
    small = (f"mount -t tmpfs -o size=1m none {folder} && {{ {program}; status=$?; "
             f"cp {folder}/* {tmp_path}; exit $status; }}")
    command = ["unshare", "-m", "sh", "-c", small] if limit == "disk" else [
        "prlimit", "--fsize=1048576", "sh", "-c", program]
    ended = subprocess.run(command, stderr=subprocess.PIPE, text=True, timeout=120)
    kept = tmp_path / "full.orvrun" if limit == "disk" else out
    assert ended.returncode == 1
    last = ended.stderr.splitlines()[-1]
    assert last.startswith(f"orvane.run.storage.DataSetError: {out}: cannot be written: "), ended.stderr
    assert last.endswith("What was written before is there; make room and resume")
    assert lab["OV0001"].value((30, 0xC060), phy=3) == 1
    with orvane.DataSet(kept) as data:
        points = list(data.points())
        assert len(points) + len(data.missing()) == 40
        assert 3 <= len(points) < 16
        assert all((point.values["row"] == point.conditions["drive"]).all() for point in points)
    subprocess.run([sys.executable, tmp_path / "full.py", kept], check=True, stderr=subprocess.DEVNULL, timeout=120)
    with orvane.DataSet(kept) as data:
        assert data.missing() == []
