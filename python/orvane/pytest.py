"""The plugin for pytest: boards for tests, simulated ones or those on the desk.

    @pytest.mark.orvane_lab(boards=2)                # or file="rack.json"; one board without the marker
    def test_read_is_sent_again(orvane_board):
        phy = orvane_board.phy(3)
        orvane_board.inject("lose-reply", procedure="mdio_read")
        assert phy[1, 2] == 0x0A5C
        orvane_board.assert_requested("mdio_read", count=2)

orvane_lab     the simulated lab of the test, an orvane.lab.Lab with fresh boards
orvane_board   its first board, opened by the test's own rack: port, registers, faults, requests
orvane_boards  all of them
orvane_rack    the rack

The first of them moves the test process into a private network. With --orvane-device OV0001:0 the tests run on that
port of a real board instead, once for each that is named; what needs a simulated board is skipped there.
When a test fails, its report shows the last 20 requests of each of its boards; of a real one the last 20 accesses of
the test's rack.
"""
from __future__ import annotations

from collections import abc
from typing import Any, List, Optional

import pytest

import orvane.lab
from orvane.lab import Request
from orvane.phy import Phy
from orvane.rack import Port, Rack

__all__ = ["BoardUnderTest"]

SHOWN = 20  # requests of a board, when a test fails


class BoardUnderTest:
    """A board as a test has it: its port, and what a simulated one can be told and asked.

    On a real board the test is skipped where it comes to what only simulated boards do.
    """

    def __init__(self, rack: Rack, name: str, phy: int, simulated: Optional[orvane.lab.Board] = None,
                 log: abc.Sequence[str] = ()) -> None:
        self.rack = rack
        """the test's rack"""
        self.name = name
        """its port, as it is opened: "OV0001:0\""""
        self.simulated = simulated
        """the simulated board; None: a real one"""
        self._phy = phy
        self._log = log
        self._port: Optional[Port] = None

    def __repr__(self) -> str:
        return f"<orvane.pytest.BoardUnderTest {self.name}{'' if self.simulated else ', real'}>"

    @property
    def serial(self) -> str:
        """The board's serial number."""
        return self.name.partition(":")[0]

    @property
    def port(self) -> Port:
        """The port, opened in simple mode by the first use; tests of other modes open self.name by self.rack."""
        if self._port is None:
            self._port = self.rack.open(self.name)
        return self._port

    def phy(self, number: Optional[int] = None) -> Phy:
        """A PHY of the port; without a number that of --orvane-phy, which is 0 unless told."""
        return self.port.phy(self._phy if number is None else number)

    def inject(self, fault: str, *, count: int = 1, **members: Any) -> None:
        """Lays a fault in wait, such as "lose-reply"; see orvane.lab.Board.inject()."""
        self._only_simulated("fault injection").inject(fault, count=count, **members)

    def requests(self, procedure: Optional[str] = None) -> List[Request]:
        """What the board was asked since the test began, of one procedure or of all."""
        return self._only_simulated("the record of requests").requests(procedure)

    def forget_requests(self) -> None:
        """From now on requests() begins here."""
        self._only_simulated("the record of requests").forget_requests()

    def assert_requested(self, procedure: str, *, count: Optional[int] = None, **arguments: Any) -> List[Request]:
        """Fails unless the board was asked for a procedure with these arguments: at all, or `count` times.

        assert_requested("mdio_read", addresses=[0x03010002]) looks at `addresses` only, whose words are those of the
        wire: PHY << 24 | MMD << 16 | register. Gives the requests that it found.
        """
        asked = self.requests(procedure)
        found = [each for each in asked if arguments.items() <= each.arguments.items()]
        if not found if count is None else len(found) != count:
            wanted = f"{procedure} with {arguments}" if arguments else procedure
            often = "" if count is None else f" {count} times"
            came = "".join(f"\n  {each}" for each in asked[-SHOWN:]) or "\n  nothing"
            pytest.fail(f"{self.serial} was not asked for {wanted}{often}, but {len(found)} times; of {procedure} came"
                        + came, pytrace=False)
        return found

    def newest(self) -> str:
        """Its last 20 requests, or accesses, a line each."""
        if self.simulated is not None:
            return "\n".join(map(str, self.simulated.requests(last=SHOWN)))
        return "".join([line for line in self._log if f",{self.serial}:" in line][-SHOWN:])

    def _only_simulated(self, what: str) -> orvane.lab.Board:
        if self.simulated is None:
            pytest.skip(f"{what} needs a simulated board, and this is {self.name}")
        return self.simulated


_boards = pytest.StashKey[List[BoardUnderTest]]()


def pytest_addoption(parser: pytest.Parser) -> None:
    group = parser.getgroup("orvane", "boards (orvane.pytest)")
    group.addoption("--orvane-device", action="append", default=[], metavar="NAME",
                    help="run tests of boards on this port of a real one, such as OV0001:0; may be repeated")
    group.addoption("--orvane-phy", type=int, default=0, metavar="N", help="PHY that tests of boards use (default: 0)")


def pytest_configure(config: pytest.Config) -> None:
    config.addinivalue_line("markers", "orvane_lab(boards=1, file=None): the simulated boards of a test, so many or "
                                       "those of a lab file; on real boards, how many it takes")


def pytest_generate_tests(metafunc: pytest.Metafunc) -> None:
    devices = metafunc.config.getoption("orvane_device")
    if devices and "orvane_board" in metafunc.fixturenames:
        metafunc.parametrize("orvane_board", devices, indirect=True)


@pytest.fixture
def orvane_lab(request: pytest.FixtureRequest) -> abc.Iterator[orvane.lab.Lab]:
    """The simulated lab of the test, as its marker orvane_lab says; skips tests on real boards."""
    if request.config.getoption("orvane_device"):
        pytest.skip("needs simulated boards, and --orvane-device names real ones")
    wanted = _wanted(request)
    file = wanted.get("file")
    boards = None if file is not None else wanted.get("boards", 1)
    with orvane.lab.Lab(boards=boards, file=None if file is None else request.path.parent / file) as lab:
        with pytest.MonkeyPatch.context() as environment:
            environment.setenv("ORVANE_LAB_CONTROL", lab.control)  # for programs that the test runs
            yield lab


@pytest.fixture
def orvane_rack(request: pytest.FixtureRequest) -> abc.Iterator[Rack]:
    """A rack for the test, closed before its boards end."""
    if not request.config.getoption("orvane_device"):
        request.getfixturevalue("orvane_lab")
    with Rack() as rack:
        yield rack


@pytest.fixture
def orvane_boards(request: pytest.FixtureRequest, orvane_rack: Rack) -> List[BoardUnderTest]:
    """Every board of the test: those of its lab, or those that --orvane-device names."""
    devices = request.config.getoption("orvane_device")
    phy = request.config.getoption("orvane_phy")
    if devices:
        most = _wanted(request).get("boards", 1)
        if most > len(devices):
            pytest.skip(f"needs {most} boards, and --orvane-device names {len(devices)}")
        log: List[str] = []
        orvane_rack.log_to(log.append)
        boards = [BoardUnderTest(orvane_rack, name, phy, log=log) for name in devices]
    else:
        lab = request.getfixturevalue("orvane_lab")
        boards = [BoardUnderTest(orvane_rack, each.ports[0], phy, each) for each in lab.boards()]
    request.node.stash[_boards] = boards
    return boards


@pytest.fixture
def orvane_board(request: pytest.FixtureRequest, orvane_boards: List[BoardUnderTest]) -> BoardUnderTest:
    """The first board of the test's lab, or the real one whose turn it is."""
    turn = getattr(request, "param", None)
    return next(each for each in orvane_boards if turn in (None, each.name))


def _wanted(request: pytest.FixtureRequest) -> Any:
    """What the marker says; the nearest one."""
    marker = request.node.get_closest_marker("orvane_lab")
    if marker is None:
        return {}
    unknown = sorted(set(marker.kwargs) - {"boards", "file"})
    if marker.args or unknown:
        raise pytest.UsageError(f"the marker orvane_lab takes boards=N or file=NAME, not {marker.args or unknown}")
    return marker.kwargs


@pytest.hookimpl(hookwrapper=True)  # type: ignore[misc]
def pytest_runtest_makereport(item: pytest.Item, call: pytest.CallInfo[None]) -> Any:
    outcome = yield
    report = outcome.get_result()
    if report.failed and report.when != "teardown":
        for board in item.stash.get(_boards, []):
            report.sections.append((f"requests of {board.serial}", _newest(board)))


def _newest(board: BoardUnderTest) -> str:
    try:
        return board.newest() or "none"
    except (orvane.lab.LabError, OSError) as problem:
        return f"not known: {problem}"
