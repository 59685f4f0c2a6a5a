"""A run that is killed while boards lose answers and restart gives the data set of an undisturbed one.

ORVANE_RUN_KILLS says how often it is killed, 10 times unless told; ORVANE_RUN_SEED chooses the moments.
"""
import os
import random
import signal
import sqlite3
import subprocess
import sys
import time

import orvane

KILLS = int(os.environ.get("ORVANE_RUN_KILLS", "10"))
SEED = int(os.environ.get("ORVANE_RUN_SEED", "20"))
LEVELS = 10 + 2 * KILLS
POINTS_BETWEEN = 6
SWEEP = """
import sys
import numpy
import orvane

run = orvane.Run("kills", boards=["OV0001:0", "OV0002:0"], phy=3, level=range({levels}), drive=range(8), safe_within=10,
                 exclusive=True)

@run.setup
def bias(p, level):
    p.phy[30, 0xC050] = 0x100 + level

@run.point
def measure(p, level, drive):
    p.phy[30, 0xC051] = drive
    p.sleep(0.01)
    p.record(bias=p.phy[30, 0xC050], drive_read=p.phy[30, 0xC051],
             row=p.phy.read(30, range(0xC050, 0xC052)) + numpy.uint16(p.repeat))

run.safe_state(lambda p: p.phy.write((30, 0xC052), 1))
run.go(sys.argv[1], resume=True)
"""


def count(path):
    """Points that are measured; 0 before there is a data set."""
    try:
        base = sqlite3.connect(f"file:{path}?mode=ro", uri=True, timeout=10)
        try:
            return base.execute("SELECT count(*) FROM point WHERE state = 'done'").fetchone()[0]
        finally:
            base.close()
    except sqlite3.OperationalError:
        return 0


def restart(board):
    """A board that has lost its registers and its sessions."""
    board.do("kill")
    board.set_value((30, 0xC050), 0, phy=3)
    board.do("forget-sessions")
    board.do("start")


def wait_for(process, path, points):
    """Returns when so many points are there, or the process has ended."""
    until = time.monotonic() + 60
    while count(path) < points and process.poll() is None and time.monotonic() < until:
        time.sleep(0.002)


def test_run_that_is_killed_gives_the_data_set_of_an_undisturbed_one(tmp_path, lab, out):
    chance = random.Random(SEED)
    program = tmp_path / "kills.py"
    program.write_text(SWEEP.format(levels=LEVELS))
    boards = [lab["OV0001"], lab["OV0002"]]
    for board in boards:
        board.clear()
    subprocess.run([sys.executable, program, tmp_path / "undisturbed.orvrun"], check=True, stderr=subprocess.DEVNULL)

    for board in boards:
        board.set_value((30, 0xC052), 0, phy=3)
        board.inject("lose-reply", count=-1, probability=0.05)
    killed = 0
    for number in range(KILLS):
        process = subprocess.Popen([sys.executable, program, out], stderr=subprocess.DEVNULL)
        wait_for(process, out, count(out) + chance.randint(0, POINTS_BETWEEN))
        time.sleep(chance.uniform(0, 0.3))
        process.send_signal(signal.SIGKILL)
        killed += process.wait() == -signal.SIGKILL
    with orvane.DataSet(out) as data:
        assert set(data.not_safe()) == {"OV0001:0", "OV0002:0"}
    process = subprocess.Popen([sys.executable, program, out], stderr=subprocess.PIPE, text=True)
    for board in boards:
        wait_for(process, out, count(out) + 5)
        restart(board)
    told = process.communicate(timeout=120)[1]
    for board in boards:
        board.clear()

    assert (killed, process.returncode) == (KILLS, 0), told
    ended = subprocess.run([sys.executable, "-m", "orvane.run", "diff", tmp_path / "undisturbed.orvrun", out],
                           text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert (ended.returncode, ended.stdout) == (0, "")
    with orvane.DataSet(out) as data:
        assert len(list(data.points())) == 16 * LEVELS
        assert [each.how for each in data.sessions()].count("complete") == 1
        assert data.not_safe() == {}
        assert {each.port for each in data.errors() if each.kind == "Restarted"} == {"OV0001:0", "OV0002:0"}
        assert {point.values["bias"] - 0x100 == point.conditions["level"] for point in data.points()} == {True}
    base = sqlite3.connect(out)
    assert base.execute("PRAGMA integrity_check").fetchall() == [("ok",)]
    base.close()
    assert [board.value((30, 0xC052), phy=3) for board in boards] == [1, 1]
