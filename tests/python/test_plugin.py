"""The plugin for pytest, as a user's tests have it: each runs in a process of its own, which has its own network."""
import os
import subprocess
import sys

import pytest

pytest_plugins = ["pytester"]


@pytest.fixture
def outcome(pytester, monkeypatch):
    """Runs a file of tests: outcome(text, *options) is the ended run. It knows nothing of the lab around it."""
    monkeypatch.setenv("OPENBLAS_NUM_THREADS", "1")

    def run(text, *options):
        pytester.makepyfile(text)
        return pytester.runpytest_subprocess("-p", "no:cacheprovider", *options)

    return run


def test_board_is_read_and_tells_what_it_was_asked(outcome):
    outcome("""
        def test_read(orvane_board):
            assert orvane_board.name == "OV0001:0"
            assert orvane_board.phy(3)[1, 2] == 0x0A5C
            request, = orvane_board.assert_requested("mdio_read", addresses=[0x03010002])
            assert (request.board, request.program, request.transport) == ("OV0001", "mdio", "udp")
    """).assert_outcomes(passed=1)


def test_each_test_has_fresh_boards(outcome):
    outcome("""
        import pytest

        @pytest.mark.parametrize("turn", [1, 2])
        def test_write(orvane_board, turn):
            phy = orvane_board.phy(3)
            assert phy[30, 0x10] == 0
            phy[30, 0x10] = turn
            orvane_board.assert_requested("mdio_write", count=1)
    """).assert_outcomes(passed=2)


def test_marker_says_how_many_boards(outcome):
    outcome("""
        import orvane, pytest

        @pytest.mark.orvane_lab(boards=3)
        def test_boards(orvane_boards, orvane_rack, orvane_lab):
            assert [each.serial for each in orvane_boards] == ["OV0001", "OV0002", "OV0003"]
            assert len(orvane_rack.discover()) == len(orvane_lab.boards()) == 3
    """).assert_outcomes(passed=1)


def test_lab_file_is_found_beside_the_tests(outcome, pytester):
    pytester.makefile(".json", rack="""
        {"boards": [{"serial": "WREN7", "devices": ["WREN7:1"],
                     "registers": [{"register": "0x1E0001", "value": "0xCAFE", "device": 1, "phy": 4}]}]}
    """)
    outcome("""
        import pytest

        @pytest.mark.orvane_lab(file="rack.json")
        def test_register(orvane_board):
            assert (orvane_board.name, orvane_board.phy(4)[30, 1]) == ("WREN7:1", 0xCAFE)
    """).assert_outcomes(passed=1)


def test_fault_is_met_and_the_repeat_is_seen(outcome):
    outcome("""
        def test_repeat(orvane_board):
            phy = orvane_board.phy(3)
            phy.open()
            orvane_board.inject("lose-reply", procedure="mdio_read")
            assert phy[1, 2] == 0x0A5C
            orvane_board.assert_requested("mdio_read", count=2)
    """).assert_outcomes(passed=1)


def test_failure_shows_the_last_20_requests(outcome):
    result = outcome("""
        def test_fails(orvane_board):
            phy = orvane_board.phy(3)
            for number in range(30):
                phy[30, number] = number
            assert phy[30, 0] == 1
    """)
    result.assert_outcomes(failed=1)
    shown = result.stdout.str().split("requests of OV0001", 1)[1].splitlines()
    shown = [line for line in shown if line.startswith("mdio_")]
    assert len(shown) == 20
    assert '"addresses": [52297728]' in shown[-1] and shown[-1].startswith("mdio_read ")
    assert shown[0].startswith("mdio_write ") and '"addresses": [52297739]' in shown[0]


def test_passed_test_shows_no_requests(outcome):
    result = outcome("def test_passes(orvane_board): orvane_board.phy(3)[1, 2]", "-rA")
    result.assert_outcomes(passed=1)
    assert "requests of" not in result.stdout.str()


def test_unmet_assertion_lists_what_came_instead(outcome):
    result = outcome("""
        def test_fails(orvane_board):
            orvane_board.phy(3)[1, 2]
            orvane_board.assert_requested("mdio_read", addresses=[5])
    """)
    result.assert_outcomes(failed=1)
    result.stdout.fnmatch_lines([
        "OV0001 was not asked for mdio_read with {'addresses': [[]5[]]}*",
        "  mdio_read {*\"addresses\": [[]50397186[]]*} over udp"])


def test_marker_that_says_something_else_is_an_error(outcome):
    result = outcome("""
        import pytest

        @pytest.mark.orvane_lab(board=2)
        def test_nothing(orvane_lab): pass
    """)
    result.assert_outcomes(errors=1)
    result.stdout.fnmatch_lines(["*the marker orvane_lab takes boards=N or file=NAME, not *board*"])


def test_nothing_is_reached_outside(outcome):
    """The interfaces of the test's process are the private network's."""
    outcome("""
        import socket

        def test_interfaces(orvane_lab):
            assert {name for _, name in socket.if_nameindex()} == {"lo", "lab0"}
    """).assert_outcomes(passed=1)


def test_tests_without_boards_stay_in_their_network(outcome):
    outcome(f"""
        import os

        def test_network():
            assert os.readlink("/proc/self/ns/net") == {os.readlink("/proc/self/ns/net")!r}
    """).assert_outcomes(passed=1)


def test_commands_of_a_test_find_its_lab(outcome):
    outcome("""
        import orvane.lab

        def test_control(orvane_lab):
            with orvane.lab.Lab() as other:
                assert other.control == orvane_lab.control
    """).assert_outcomes(passed=1)


DESK = """
    import pytest

    def test_identifier(orvane_board):
        assert not orvane_board.simulated
        assert orvane_board.phy()[1, 2] == 0x0A5C

    def test_fault(orvane_board):
        orvane_board.inject("lose-reply")

    def test_lab(orvane_lab): pass

    @pytest.mark.orvane_lab(boards=3)
    def test_three(orvane_boards): pass
"""


def test_same_tests_run_on_the_boards_of_a_desk(outcome):
    """The boards of the lab around this process stand for real ones: the plugin knows nothing of it."""
    result = outcome(DESK, "--orvane-device", "OV0001:0", "--orvane-device", "OV0002:0", "--orvane-phy", "3", "-rs",
                     "-v")
    result.assert_outcomes(passed=2, skipped=4)
    result.stdout.fnmatch_lines_random([
        "*::test_identifier[[]OV0001:0[]] PASSED*",
        "*::test_identifier[[]OV0002:0[]] PASSED*",
        "*fault injection needs a simulated board, and this is OV0002:0*",
        "*needs simulated boards, and --orvane-device names real ones*",
        "*needs 3 boards, and --orvane-device names 2*"])


def test_failure_on_a_real_board_shows_the_accesses_of_its_rack(outcome):
    result = outcome("""
        def test_fails(orvane_board):
            phy = orvane_board.phy(3)
            for number in range(30):
                phy[30, 0x40 + number] = number
            assert phy[30, 0x40] == 1
    """, "--orvane-device", "OV0001:0")
    result.assert_outcomes(failed=1)
    shown = [line for line in result.stdout.str().splitlines() if line.startswith("0,3,")]
    assert len(shown) == 20
    assert shown[0].startswith("0,3,MW,1E,004B,000B,")
    assert shown[-1].startswith("0,3,MR,1E,0040,0000,")


def test_process_with_threads_is_told_what_to_do():
    text = """
import threading
import orvane.lab
event = threading.Event()
thread = threading.Thread(target=event.wait)
thread.start()
try:
    orvane.lab.Lab(boards=1)
except orvane.lab.LabError as problem:
    print(problem)
event.set()
"""
    environment = {name: value for name, value in os.environ.items() if name != "ORVANE_LAB_CONTROL"}
    ended = subprocess.run([sys.executable, "-c", text], env=environment, text=True, capture_output=True, timeout=60)
    assert "cannot move into a private network" in ended.stdout, ended.stderr
    assert "orvane-lab --boards 0 -- " in ended.stdout
