"""The command line of runs: carrying out, showing, comparing."""
import re
import sqlite3
import subprocess
import sys

import pytest

SWEEP = """
import orvane

run = orvane.Run("sweep", boards=["OV0001:0", "OV0002:0"], phy=3, drive=range(4), safe_within=5)

@run.setup
def prepare(p):
    p.phy.PMA.CONTROL1.LOOPBACK = 1

@run.point
def measure(p, drive):
    p.phy[30, 0xC010] = drive
    p.record(read=p.phy[30, 0xC010] {slip})

@run.safe_state
def off(p):
    p.phy.PMA.CONTROL1.LOOPBACK = 0

{go}
"""


@pytest.fixture
def orvane_run(tmp_path, lab):
    """Runs the command line: orvane_run("show", "it.orvrun") gives the ended process."""
    for board in lab.boards():
        board.clear()

    def write(name="sweep.py", slip="", go="run.go()"):
        (tmp_path / name).write_text(SWEEP.format(slip=slip, go=go))

    def run(*words):
        return subprocess.run([sys.executable, "-m", "orvane.run", *words], cwd=tmp_path, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)

    write()
    run.write = write
    run.folder = tmp_path
    return run


@pytest.mark.parametrize("go", ["run.go()", ""])
def test_program_is_carried_out_whether_it_calls_go_or_not(orvane_run, go):
    orvane_run.write(go=go)
    ended = orvane_run("sweep.py", "--out", "it.orvrun")
    assert (ended.returncode, ended.stdout) == (0, "it.orvrun: 8 points\n"), ended.stderr
    again = orvane_run("sweep.py", "--out", "it.orvrun")
    assert (again.returncode, again.stdout) == (1, "")
    assert again.stderr == "orvane: run: it.orvrun: there is such a data set already; resume goes on with it\n"
    assert orvane_run("sweep.py", "--out", "it.orvrun", "--resume").stdout == "it.orvrun: 8 points\n"


def test_plan_is_printed_and_nothing_is_written(orvane_run):
    ended = orvane_run("sweep.py", "--plan")
    assert (ended.returncode, ended.stderr) == (0, "")
    assert ended.stdout.splitlines()[:2] == ["sweep: 8 points to measure, 0 are there",
                                             "  boards      OV0001:0, OV0002:0, PHY 3, side by side"]
    assert not (orvane_run.folder / "sweep.orvrun").exists()


def test_dry_run_prints_what_would_be_sent_by_name_and_sends_nothing(orvane_run, lab):
    before = lab["OV0001"].received("open"), lab["OV0001"].received("mdio_write")
    ended = orvane_run("sweep.py", "--dry-run")
    assert ended.stdout.splitlines()[:6] == [
        "OV0001:0 prepare", "  write PMA.CONTROL1.LOOPBACK = 1", "OV0001:0 measure drive 0", "  write 30.0xC010 0x0000",
        "  read  30.0xC010", "  records read"], ended.stderr
    assert ended.stdout.splitlines()[-1] == "  write PMA.CONTROL1.LOOPBACK = 0"
    assert (lab["OV0001"].received("open"), lab["OV0001"].received("mdio_write")) == before


def test_data_set_is_shown_with_what_is_missing_and_what_went_wrong(orvane_run):
    orvane_run.write(slip="// (0 if drive == 2 else 1)")
    assert orvane_run("sweep.py").returncode == 1
    told = orvane_run("show", "sweep.orvrun").stdout
    assert re.match(r"sweep: 6 points, 2 missing \(2 failed\), recipe [0-9a-f]{12}\n  drive: 0, 1, 2, 3\n"
                    r"OV0001:0 PHY 3 0x0a5c1e83: 3 points\n", told), told
    assert 'missing: OV0001:0 {"drive": 2}\n' in told
    assert "measure: ZeroDivisionError: integer division or modulo by zero" in told


def test_points_and_plots_are_written_on_demand(orvane_run):
    orvane_run("sweep.py")
    h5py = pytest.importorskip("h5py")
    files = ["--csv", "it.csv", "--hdf5", "it.h5", "--report", "it.html"]
    assert orvane_run("show", "sweep.orvrun", *files).returncode == 0
    with h5py.File(orvane_run.folder / "it.h5") as file:
        assert file["values/read"][:, :, 0].tolist() == [[0, 1, 2, 3]] * 2
    assert len((orvane_run.folder / "it.csv").read_text().splitlines()) == 9
    page = (orvane_run.folder / "it.html").read_text()
    assert page.count("<polyline") == 2
    assert "<title>OV0001:0</title>" in page and "<h2>read</h2>" in page


def test_killed_run_is_shown_as_not_safe(orvane_run):
    orvane_run("sweep.py")
    base = sqlite3.connect(orvane_run.folder / "sweep.orvrun")
    base.execute("UPDATE session SET ended = NULL, how = NULL")
    base.execute("DELETE FROM step WHERE kind = 'safe'")
    base.commit()
    base.close()
    assert orvane_run("show", "sweep.orvrun").stdout.startswith(
        "NOT IN A SAFE STATE: OV0001:0: the program was killed, or is at work\n")


def test_data_sets_that_are_the_same_differ_in_nothing(orvane_run):
    orvane_run("sweep.py", "--out", "a.orvrun")
    orvane_run("sweep.py", "--out", "b.orvrun")
    ended = orvane_run("diff", "a.orvrun", "b.orvrun")
    assert (ended.returncode, ended.stdout, ended.stderr) == (0, "", "")


@pytest.mark.parametrize("tolerance, lines", [
    ([], 6), (["read=1"], 4), (["read=2"], 2), (["read=3"], 0), (["read=100%"], 0), (["read=10%"], 6)])
def test_values_may_differ_by_the_tolerance_of_their_name(orvane_run, tolerance, lines):
    orvane_run("sweep.py", "--out", "a.orvrun")
    orvane_run.write("other.py", slip="* 2")
    orvane_run("other.py", "--out", "b.orvrun")
    ended = orvane_run("diff", "a.orvrun", "b.orvrun", *(f"--tolerance={each}" for each in tolerance))
    assert (ended.returncode, len(ended.stdout.splitlines())) == (1 if lines else 0, lines)
    if not tolerance:
        assert ended.stdout.splitlines()[0] == 'OV0001:0 {"drive": 1} read: 1 -> 2'


@pytest.mark.parametrize("words, status, told", [
    (["show", "none.orvrun"], 1, "orvane: run: none.orvrun: there is no such file\n"),
    (["diff", "a.orvrun", "a.orvrun", "--tolerance", "eye=1"], 1,
     "orvane: run: --tolerance eye: no point has such a value; there are read\n"),
    (["diff", "a.orvrun", "a.orvrun", "--tolerance", "read=x"], 1,
     "orvane: run: --tolerance read=x: a name and how far its values may differ, as eye=2 or temp=1%\n"),
    (["none.py"], 1, "orvane: run: none.py: there is no such program\n"),
])
def test_what_cannot_be_done_is_told_on_one_line(orvane_run, words, status, told):
    orvane_run("sweep.py", "--out", "a.orvrun")
    ended = orvane_run(*words)
    assert (ended.returncode, ended.stderr) == (status, told)


def test_data_set_that_is_damaged_is_told_on_one_line_and_left_as_it_was(orvane_run):
    orvane_run("sweep.py", "--out", "a.orvrun")
    file = orvane_run.folder / "a.orvrun"
    damaged = bytearray(file.read_bytes())
    damaged[4096:] = b"\xff" * (len(damaged) - 4096)
    file.write_bytes(damaged)
    for words in (["show", "a.orvrun"], ["sweep.py", "--out", "a.orvrun", "--resume"]):
        ended = orvane_run(*words)
        assert (ended.returncode, ended.stdout) == (1, "")
        assert ended.stderr.splitlines()[-1].endswith("database disk image is malformed")
        assert ended.stderr.count("\n") == 1
    assert file.read_bytes()[4096:] == damaged[4096:]


def test_program_without_a_run_is_told(orvane_run):
    (orvane_run.folder / "empty.py").write_text("import orvane\n")
    assert orvane_run("empty.py").stderr == "orvane: run: empty.py: it makes no runs, and calls go() of none\n"


def test_reader_that_leaves_ends_it_quietly(orvane_run):
    orvane_run("sweep.py")
    told = subprocess.run(f"{sys.executable} -m orvane.run show sweep.orvrun | true", shell=True, cwd=orvane_run.folder,
                          text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
    assert (told.stdout, told.stderr) == ("", "")
