"""Racks, ports, and what is done to many boards at once."""
from __future__ import annotations

import dataclasses
import logging
import os
from collections import abc
from types import TracebackType
from typing import Any, Callable, Dict, List, Optional, Tuple, Type, Union

import numpy
import numpy.typing

from orvane import _orvane
from orvane.codes import AccessMode
from orvane.errors import Error
from orvane.events import BoardCounters, Event, counters_of, event_of
from orvane.limits import Within, WithinLike, limits_of
from orvane.phy import Phy
from orvane.registers import RegisterLike, check_range, register_at
from orvane.services import Services
from orvane.tables import table

__all__ = ["Discovery", "FoundBoard", "Port", "Ports", "Rack", "Readings", "discover", "open", "read_all"]


@dataclasses.dataclass(frozen=True)
class FoundBoard:
    """A board that answered a search."""

    serial: str
    address: str
    ports: abc.Sequence[int]
    kind: str = ""
    """the word that its answer begins with: what sort of board it is"""

    def __str__(self) -> str:
        return f"{self.serial} at {self.address}, ports {', '.join(map(str, self.ports))}"


class Discovery(List[FoundBoard]):
    """The boards that a search found, by serial number."""

    def __init__(self, boards: abc.Iterable[FoundBoard], malformed: int) -> None:
        super().__init__(boards)
        self.malformed = malformed
        """different answers that name no port as they should"""

    def _repr_html_(self) -> str:
        return table(("board", "address", "ports"),
                     ((each.serial, each.address, ", ".join(map(str, each.ports))) for each in self))


class Port(Services):
    """One port of a board. As a context manager it closes its sessions at the end.

    The services (port.i2c, port.thermal, ...) go through the session of the PHY that was asked for first, or of PHY 0.
    """

    def __init__(self, core: _orvane.Port, access: str) -> None:
        self._core = core
        self._access = access
        self._phys: Dict[int, Phy] = {}

    @property
    def board(self) -> str:
        """The board's serial number."""
        return self._core.board

    @property
    def number(self) -> int:
        """0 to 9: MDIO. From 10 on: SMBus, of I2C bus number - 10."""
        return self._core.number

    @property
    def name(self) -> str:
        """As it is opened: "OV0001:0"."""
        return f"{self.board}:{self.number}"

    def __repr__(self) -> str:
        return f"<orvane.Port {self.name}, {self._access}>"

    def phy(self, number: int) -> Phy:
        """The PHY at an address of the port: 0 to 31, on an SMBus port 0 to 127."""
        known = self._phys.get(number)
        if known is None:
            check_range("PHY", number, 127 if self.number >= 10 else 31)
            known = self._phys[number] = Phy(self._core.phy(number), self.name, number)
        return known

    def close(self) -> None:
        """Closes the sessions of all its PHYs, which cannot be used after that."""
        self._phys.clear()
        self._core.close()

    def __enter__(self) -> Port:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], raised: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def _session(self) -> _orvane.Phy:
        first = next(iter(self._phys.values()), None) or self.phy(0)
        return first._core


class Ports(List[Port]):
    """The ports that an open_all() found."""

    def __init__(self, ports: abc.Iterable[Port], failures: Dict[str, Error]) -> None:
        super().__init__(ports)
        self.failures = failures
        """what went wrong, by the name of port or pattern; a port whose session failed may still be used"""


class Rack:
    """Any number of boards: finds them, opens their ports, keeps sessions alive by one thread of its own.

    As a context manager it closes everything at the end; so does the end of the program.
    """

    def __init__(self) -> None:
        self._core = _orvane.Rack()

    def __repr__(self) -> str:
        return "<orvane.Rack>" if self._core.usable else "<orvane.Rack, closed>"

    def __enter__(self) -> Rack:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], raised: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def close(self) -> None:
        """Closes every session, all boards side by side, and ends the rack's thread."""
        self._core.close()

    def open(self, name: str, *, exclusive: Union[bool, int] = False, shared: Union[bool, int] = False,
             key: int = 0, queue: bool = False, within: WithinLike = None) -> Port:
        """A port by its name: "OV0001:0". A board that is not known yet is looked for.

        exclusive  keeps everybody out who does not bring the key, which may stand here: exclusive=0x4711
        shared     beside other shared sessions; likewise
        key        of a session without the two
        queue      a refused opening is tried again up to the call's limit

        No session is opened yet: the first use does that, or Phy.open().
        """
        mode, key = _access(exclusive, shared, key)
        return Port(self._core.open(name, (int(mode), key, queue), limits_of(within)), _text(mode, key))

    def open_all(self, *names: str, phys: abc.Iterable[int] = (), exclusive: Union[bool, int] = False,
                 shared: Union[bool, int] = False, key: int = 0, queue: bool = False, within: WithinLike = None
                 ) -> Ports:
        """Ports by their names, all together; in names '*', '?' and '[...]' stand for what they do in file names.

        open_all("OV*:0") is port 0 of every such board that answers within a second, in alphabetical order;
        open_all() is every port. The sessions of `phys` are opened on all of them at the same time. What failed is in
        the result's `failures`, and costs the others nothing. The other words are those of open(); `within` limits the
        call as a whole, 5 s unless told.
        """
        mode, key = _access(exclusive, shared, key)
        wanted = [check_range("PHY", each, 127) for each in phys]
        opened = self._core.open_all(list(names) or ["*"], wanted, (int(mode), key, queue), limits_of(within))
        return Ports((Port(core, _text(mode, key)) for _, core, _ in opened if core is not None),
                     {name: failure for name, _, failure in opened if failure is not None})

    def close_sessions(self, *, within: WithinLike = None) -> List[Error]:
        """Closes every session, all boards side by side; the next use opens it again. What boards could not be told is
        returned; it is closed here all the same."""
        return self._core.close_sessions(limits_of(within))

    def discover(self, enough: Optional[Callable[[FoundBoard], object]] = None, *, within: WithinLike = None
                 ) -> Discovery:
        """Every board that answers on the networks of this host. Listens for the whole time, 1 s unless told.

        With `enough` it ends as soon as that is true of a board that has answered:
        discover(lambda board: board.serial == "OV0001", within=10).
        """
        if enough is None:
            return _discovery(self._core.discover(None, limits_of(within, _SEARCH)))
        says = enough
        return _discovery(self._core.discover(lambda *found: bool(says(_found(*found))), limits_of(within, _SEARCH)))

    def ask(self, *addresses: str, within: WithinLike = None) -> Discovery:
        """The boards at these addresses (dotted IPv4), which are known then. Nothing is sent anywhere else; who does
        not answer within two seconds is left out."""
        return _discovery(self._core.ask(list(addresses), limits_of(within)))

    def know(self, board: str, address: str) -> None:
        """Makes a board known, or tells where it is now: spares the search."""
        self._core.know(board, address)

    def on_event(self, callback: Optional[Callable[[Event], object]]) -> None:
        """Called with each Event, on the rack's own thread, one at a time and in order. None: no more."""
        if callback is None:
            self._core.on_event(None)
        else:
            tell = callback
            self._core.on_event(lambda *told: tell(event_of(*told)))

    def log_events(self, logger: Optional[logging.Logger] = None) -> None:
        """Makes records of a logger ("orvane" unless told) of the events; each has its Event as record.event."""
        target = logger or logging.getLogger("orvane")
        self.on_event(lambda event: target.log(int(event.level), "%s", event, extra={"event": event}))

    def log_to(self, target: Union[str, os.PathLike[str], Callable[[str], object], None]) -> None:
        """Logs every access of this rack, a line each, at the end of a file; None ends that.

        A function gets the lines instead, each with its end, on the thread of the access; it must not use the rack.
        What it raises loses the lines and is told as an event. The columns are those of the command line's logs.
        """
        if target is None:
            self._core.end_log()
        elif callable(target):
            self._core.log_to_function(target)
        else:
            self._core.log_to_file(os.fspath(target))

    def note(self, text: str) -> None:
        """A line of your own at its place in the log."""
        self._core.note(text)

    def counters(self) -> Dict[str, BoardCounters]:
        """Counts of each board that was opened, by its serial number."""
        return {board: counters_of(counts) for board, counts in self._core.counters().items()}


class Readings(abc.Sequence[int]):
    """What read_all() read, in the order of what was read: readings[i] is a value, or raises that board's failure."""

    def __init__(self, values: numpy.typing.NDArray[numpy.uint32], failed: numpy.typing.NDArray[numpy.bool_],
                 failures: Dict[int, Error]) -> None:
        self.values: Any = numpy.ma.masked_array(values, failed)  # type: ignore[no-untyped-call]
        """a masked array; what was not read is masked"""
        self.failures = failures
        """why, by index"""

    def __len__(self) -> int:
        return len(self.values)

    def __getitem__(self, index: Any) -> Any:
        if isinstance(index, slice):
            return [self[each] for each in range(*index.indices(len(self)))]
        index = range(len(self))[index]
        if index in self.failures:
            raise self.failures[index].with_traceback(None)
        return int(self.values.data[index])

    def __iter__(self) -> abc.Iterator[int]:
        return (self[each] for each in range(len(self)))

    def __repr__(self) -> str:
        first = next(iter(self.failures.values()), None)
        tail = "" if first is None else f", {len(self.failures)} failed, the first: {first}"
        return f"<orvane.Readings: {len(self) - len(self.failures)} read{tail}>"


def read_all(targets: abc.Iterable[Union[Phy, Port]], register: RegisterLike, *, phy: int = 0,
             within: WithinLike = None) -> Readings:
    """Reads one register of many boards, all at once; a failure of one leaves the others alone.

    Of a port, the PHY `phy` is read.
    """
    where = register_at(register)
    cores = [(each.phy(phy) if isinstance(each, Port) else each)._core for each in targets]
    return Readings(*_orvane.read_all(cores, *where, limits_of(within)))


_SEARCH = Within(1.0)
_usual: Optional[Rack] = None


def rack() -> Rack:
    """The rack of open() and discover(): one for the process, made when it is first asked for."""
    global _usual
    if _usual is None or not _usual._core.usable:
        _usual = Rack()
    return _usual


def open(name: str, *, exclusive: Union[bool, int] = False, shared: Union[bool, int] = False, key: int = 0,
         queue: bool = False, within: WithinLike = None) -> Port:
    """Opens a port of the process's usual rack; see Rack.open().

    >>> with orvane.open("OV0001:0", exclusive=0x4711) as port:
    ...     port.phy(3)[1, 2]
    """
    return rack().open(name, exclusive=exclusive, shared=shared, key=key, queue=queue, within=within)


def discover(*, within: WithinLike = None) -> Discovery:
    """Every board that answers; see Rack.discover()."""
    return rack().discover(within=within)


def _found(serial: str, address: str, ports: abc.Iterable[int], kind: str) -> FoundBoard:
    return FoundBoard(serial, address, tuple(ports), kind)


def _discovery(told: Tuple[List[Tuple[str, str, List[int], str]], int]) -> Discovery:
    boards, malformed = told
    return Discovery((_found(*each) for each in boards), malformed)


def _text(mode: AccessMode, key: int) -> str:
    return f"{mode.name.lower()} {key:#06x}" if key else mode.name.lower()


def _access(exclusive: Union[bool, int], shared: Union[bool, int], key: int) -> tuple[AccessMode, int]:
    if exclusive is not False and shared is not False:
        raise ValueError("a session is exclusive or shared, not both")
    for wanted, mode in ((exclusive, AccessMode.EXCLUSIVE), (shared, AccessMode.SHARED)):
        if wanted is not False:
            return mode, check_range("key", key if wanted is True else wanted, 0xFFFF)
    return AccessMode.SIMPLE, check_range("key", key, 0xFFFF)
