"""Simulated boards in a program's own process. Each program has a process to itself: it moves into another network."""
import os

import pytest

import orvane
import orvane.lab


@pytest.fixture
def alone(program):
    """Runs a program that knows nothing of the lab around the tests."""
    environment = {name: value for name, value in os.environ.items() if name != "ORVANE_LAB_CONTROL"}
    return lambda text: program(text, env={**environment, "OPENBLAS_NUM_THREADS": "1"})


def test_boards_of_ones_own_are_found_read_and_disturbed(alone):
    ended = alone("""
import orvane
import orvane.lab

with orvane.lab.Lab(boards=2) as lab:
    print(lab.boards(), lab["OV0001"].ports)
    phy = orvane.open("OV0001:0").phy(3)
    phy.open()
    lab["OV0001"].inject("lose-reply", procedure="mdio_read")
    print(phy[1, 2], len(lab["OV0001"].requests("mdio_read")))
    print(*lab["OV0001"].requests("mdio_read", last=1))
    lab["OV0001"].forget_requests()
    print(lab["OV0001"].requests(), lab["OV0001"].received("mdio_read"))
""")
    lines = ended.stdout.splitlines()
    assert ended.stderr == ""
    assert lines[0] == "[<orvane.lab.Board OV0001>, <orvane.lab.Board OV0002>] ['OV0001:0', 'OV0001:1', 'OV0001:10']"
    assert lines[1] == "2652 2"
    assert lines[2].startswith('mdio_read {"handle": ') and lines[2].endswith('"addresses": [50397186]} over udp')
    assert lines[3] == "[] 2"


def test_one_lab_follows_another_in_one_process(alone):
    ended = alone("""
import os
import orvane
import orvane.lab

for value in (1, 2):
    lab = orvane.lab.Lab(boards=1)
    with orvane.Rack() as rack:
        phy = rack.open("OV0001:0").phy(3)
        print(phy[30, 1], end=" ")
        phy[30, 1] = value
    lab.close()
    print(os.path.exists(os.path.dirname(lab.control)))
""")
    assert (ended.stdout, ended.stderr) == ("0 False\n0 False\n", "")


def test_lab_that_was_not_closed_ends_with_the_program(alone):
    ended = alone("""
import orvane.lab
lab = orvane.lab.Lab(boards=1)
phy = orvane.open("OV0001:0").phy(3)
phy.open()
print(lab.control)
""")
    assert ended.stderr == ""
    assert not os.path.exists(os.path.dirname(ended.stdout.strip()))


def test_child_leaves_the_parents_boards_alone(alone):
    ended = alone("""
import os
import orvane.lab
lab = orvane.lab.Lab(boards=1)
child = os.fork()
if child == 0:
    del lab
    raise SystemExit(0)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), lab["OV0001"].sessions, os.path.exists(lab.control))
""")
    assert (ended.stdout, ended.stderr) == ("0 0 True\n", "")


def test_lab_file_that_is_wrong_is_told_with_the_place(alone, tmp_path):
    (tmp_path / "rack.json").write_text('{"boards": [{"serial": "A B"}]}')
    ended = alone(f"""
import orvane.lab
try:
    orvane.lab.Lab(file={str(tmp_path / "rack.json")!r})
except orvane.lab.LabError as problem:
    print(problem)
""")
    assert "rack.json: boards[0].serial" in ended.stdout, ended.stderr


@pytest.mark.parametrize("arguments", [{"boards": -1}, {"boards": 30001}, {"boards": 1, "file": "rack.json"}])
def test_boards_that_make_no_sense_are_value_errors(arguments):
    with pytest.raises(ValueError):
        orvane.lab.Lab(**arguments)


def test_no_lab_is_told_as_such(monkeypatch):
    monkeypatch.delenv("ORVANE_LAB_CONTROL")
    with pytest.raises(orvane.lab.LabError, match="there is no lab here"):
        orvane.lab.Lab()
    with pytest.raises(orvane.lab.LabError, match="no lab serves /nonexistent"):
        orvane.lab.Lab("/nonexistent")


def test_program_that_is_run_has_boards(monkeypatch, tmp_path):
    (tmp_path / "orvane-lab").symlink_to(os.environ["ORVANE_LAB"])
    monkeypatch.setenv("PATH", str(tmp_path), prepend=os.pathsep)
    text = "import orvane; print(len(orvane.discover()))"
    ended = orvane.lab.run(["/usr/bin/python3", "-c", text], boards=3, capture_output=True, text=True)
    assert (ended.returncode, ended.stdout) == (0, "3\n"), ended.stderr


def test_missing_orvane_lab_is_told_as_such(monkeypatch):
    monkeypatch.setenv("PATH", "/nonexistent")
    with pytest.raises(orvane.lab.LabError, match="no orvane-lab in PATH"):
        orvane.lab.run(["true"])
