"""Simulated boards: of the lab that this program runs in, or of a lab of its own in the same process.

    lab = orvane.lab.Lab()                          # in a program that orvane-lab runs
    lab["OV0001"].inject("lose-reply", count=3)
    lab["OV0001"].executions("mdio_read")

    with orvane.lab.Lab(boards=2) as lab:           # boards in this process, which moves into a private network
        orvane.open("OV0001:0").phy(3)[1, 2]
        lab["OV0001"].requests("mdio_read")

    orvane.lab.run(["python3", "test.py"], boards=2)  # a program in a private network with two boards
"""
from __future__ import annotations

import dataclasses
import json
import os
import pathlib
import socket
import subprocess
import tempfile
import weakref
from collections import abc
from typing import Any, Dict, List, Optional, Union, cast

from orvane.registers import Register, RegisterLike, register_at

__all__ = ["Board", "Lab", "LabError", "Request", "enter_private_network", "run"]

_CONTROL = "ORVANE_LAB_CONTROL"


def _named(register: Register) -> Dict[str, Any]:
    return {"register": register.mmd << 16 | register.number, "space": register.space.name.lower()}


class LabError(RuntimeError):
    """The lab does not do what it was asked for, or there is none."""


@dataclasses.dataclass(frozen=True)
class Request:
    """A request that a board received."""

    board: str
    program: str
    """"mdio", "setup", "i2c", "jtag", "gpio", "keepAlive", "adc", "thermal" or "portmap\""""
    procedure: str
    """such as "mdio_read\""""
    transport: str
    """"udp" or "tcp\""""
    arguments: Dict[str, Any]
    """its members in the order of the wire"""

    def __str__(self) -> str:
        return f"{self.procedure} {json.dumps(self.arguments)} over {self.transport}"


class Board:
    """One board of a lab."""

    def __init__(self, lab: Lab, serial: str) -> None:
        self._lab = lab
        self.serial = serial

    def __repr__(self) -> str:
        return f"<orvane.lab.Board {self.serial}>"

    def do(self, action: str, **members: Any) -> List[Dict[str, Any]]:
        """Takes any action of the control socket: do("stop"), do("set", register=2, value=7, device=1, phy=3)."""
        return self._lab.ask(self.serial, action, **members)

    @property
    def ports(self) -> List[str]:
        """Names of its ports, as they are opened: ["OV0001:0", "OV0001:1", "OV0001:10"]."""
        return str(self.do("list")[0]["name"]).split()[1:]

    def inject(self, fault: str, *, count: int = 1, **members: Any) -> None:
        """Lays a fault in wait, such as "lose-reply" or "delay"; count -1: for every call, until clear()."""
        self.do(fault, count=count, **members)

    def clear(self) -> None:
        """Forgets every fault that waits."""
        self.do("clear")

    def value(self, where: RegisterLike, *, phy: int, port: int = 0) -> int:
        """What a register holds, asked without the wire."""
        told = self.do("get", **_named(register_at(where)), device=port, phy=phy)
        return int(told[0]["value"], 0)

    def set_value(self, where: RegisterLike, value: int, *, phy: int, port: int = 0) -> None:
        """Sets a register without the wire."""
        self.do("set", **_named(register_at(where)), value=value, device=port, phy=phy)

    @property
    def sessions(self) -> int:
        """Sessions that are open on it."""
        return int(self.do("list")[0]["sessions"])

    def requests(self, procedure: Optional[str] = None, *, last: int = 10_000) -> List[Request]:
        """The newest requests that it received, of one procedure or of all but the port mapper's; oldest first."""
        told = self.do("requests", procedure=procedure or "", last=last)
        return [Request(**each) for each in told]

    def forget_requests(self) -> None:
        """From now on requests() begins here. What was counted stays counted."""
        self.do("forget-requests")

    def executions(self, procedure: str) -> int:
        """Calls of a procedure, such as "mdio_read", that it has executed."""
        return self._count(procedure, "executed")

    def received(self, procedure: str) -> int:
        """Calls of a procedure that have reached it."""
        return self._count(procedure, "received")

    def _count(self, procedure: str, what: str) -> int:
        return sum(int(each[what]) for each in self.do("counts", procedure=procedure))


class Lab:
    """A lab: the one whose control socket is `control`, or one of its own, or the one that the program runs in.

    boards   so many boards in this process: OV0001, OV0002, ...; they end with close() and with the program
    file     the boards of a lab file instead

    For boards of its own the process moves into a private network, for good; see enter_private_network().
    """

    def __init__(self, control: Optional[str] = None, *, boards: Optional[int] = None,
                 file: Union[str, os.PathLike[str], None] = None) -> None:
        self._end_boards: abc.Callable[[], object] = lambda: None
        if boards is not None or file is not None:
            control = self._begin_boards(0 if boards is None else boards, file)
        path = control or os.environ.get(_CONTROL)
        if not path:
            raise LabError("there is no lab here: say how many boards, run the program by orvane-lab, or name a "
                           "control socket")
        self.control = path
        """the control socket's path"""
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            self._socket.connect(path)
        except OSError as problem:
            self._socket.close()
            raise LabError(f"no lab serves {path}") from problem
        self._answers = self._socket.makefile("r", encoding="utf-8")

    def _begin_boards(self, boards: int, file: Union[str, os.PathLike[str], None]) -> str:
        if file is not None and boards:
            raise ValueError("a lab has so many boards or those of a file, not both")
        if not 0 <= boards <= 30_000:
            raise ValueError(f"{boards} boards are out of range: 0 to 30000")
        enter_private_network()
        folder = tempfile.mkdtemp(prefix="orvane-lab-")
        control = os.path.join(folder, "control")
        try:
            own = _module().OwnLab(boards, os.fspath(file) if file is not None else "", control)
        except (RuntimeError, ValueError) as problem:
            os.rmdir(folder)
            raise LabError(str(problem)) from problem
        self._end_boards = weakref.finalize(self, _end, own, folder, os.getpid())
        return control

    def __repr__(self) -> str:
        return f"<orvane.lab.Lab {self.control}>"

    def close(self) -> None:
        """Leaves the lab; boards of its own end, others go on."""
        self._answers.close()
        self._socket.close()
        self._end_boards()

    def __enter__(self) -> Lab:
        return self

    def __exit__(self, *raised: object) -> None:
        self.close()

    def __getitem__(self, serial: str) -> Board:
        return Board(self, serial)

    def boards(self) -> List[Board]:
        """Every board, by serial number."""
        return [Board(self, serial) for serial in sorted(each["board"] for each in self.ask("all", "list"))]

    def ask(self, board: str, action: str, **members: Any) -> List[Dict[str, Any]]:
        """One request of the control socket, and its result."""
        self._socket.sendall(json.dumps({"board": board, "action": action, **members}).encode() + b"\n")
        answer = json.loads(self._answers.readline() or '{"ok": false, "error": "the lab has ended"}')
        if not answer["ok"]:
            raise LabError(answer["error"])
        return cast(List[Dict[str, Any]], answer.get("result", []))


def _module() -> Any:
    try:
        from orvane import _lab
    except ImportError as problem:
        raise LabError("this installation has no boards of its own; run the program by orvane-lab") from problem
    return _lab


def _end(own: Any, folder: str, process: int) -> None:
    if os.getpid() != process:  # a child's; what it would end is its parent's
        return
    own.stop()
    os.rmdir(folder)


def enter_private_network() -> None:
    """Moves this process, for good, into a network of its own in which nothing outside can be reached.

    It happens once; later calls do nothing. No root is needed where the kernel lets users have name spaces. The process
    must have no second thread yet, unless orvane-lab runs it: numpy may have begun some, which the environment
    variable OPENBLAS_NUM_THREADS=1 prevents. Raises LabError with what to do.
    """
    module = _module()
    if module.entered():
        return
    threads = len(list(pathlib.Path("/proc/self/task").iterdir()))
    if threads > 1 and _CONTROL not in os.environ:
        raise LabError(f"a process with {threads} threads cannot move into a private network. Begin the lab before "
                       "them, with OPENBLAS_NUM_THREADS=1 in the environment if they are numpy's, or run the program "
                       "by orvane-lab --boards 0 -- ...")
    try:
        module.enter(1)
    except RuntimeError as problem:
        raise LabError(str(problem)) from problem


def run(command: abc.Sequence[str], *, boards: int = 1, options: abc.Sequence[str] = (), **how: Any
        ) -> subprocess.CompletedProcess[Any]:
    """Runs a command in a private network with simulated boards OV0001, OV0002, ...

    `options` go to orvane-lab, which must be in PATH; `how` to subprocess.run().
    """
    try:
        return subprocess.run(["orvane-lab", "--boards", str(boards), *options, "--", *command], **how)
    except FileNotFoundError as problem:
        raise LabError("there is no orvane-lab in PATH (Debian package orvane-tools)") from problem
