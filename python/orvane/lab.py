"""The simulated lab: talks to the one that this program runs in, or runs a program in one.

    lab = orvane.lab.Lab()                          # in a program that orvane-lab runs
    lab["OV0001"].inject("lose-reply", count=3)
    lab["OV0001"].executions("mdio_read")

    orvane.lab.run(["python3", "test.py"], boards=2)  # in a private network with two boards
"""
from __future__ import annotations

import json
import os
import socket
import subprocess
from collections import abc
from typing import Any, Dict, List, Optional, cast

from orvane.registers import Register, RegisterLike, register_at

__all__ = ["Board", "Lab", "LabError", "run"]


def _named(register: Register) -> Dict[str, Any]:
    return {"register": register.mmd << 16 | register.number, "space": register.space.name.lower()}


class LabError(RuntimeError):
    """The lab does not do what it was asked for, or there is none."""


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

    def executions(self, procedure: str) -> int:
        """Calls of a procedure, such as "mdio_read", that it has executed."""
        return self._count(procedure, "executed")

    def received(self, procedure: str) -> int:
        """Calls of a procedure that have reached it."""
        return self._count(procedure, "received")

    def _count(self, procedure: str, what: str) -> int:
        return sum(int(each[what]) for each in self.do("counts", procedure=procedure))


class Lab:
    """The lab whose control socket is `control`, else the one that the program runs in."""

    def __init__(self, control: Optional[str] = None) -> None:
        path = control or os.environ.get("ORVANE_LAB_CONTROL")
        if not path:
            raise LabError("there is no lab here: run the program by orvane-lab, or name a control socket")
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            self._socket.connect(path)
        except OSError as problem:
            self._socket.close()
            raise LabError(f"no lab serves {path}") from problem
        self._answers = self._socket.makefile("r", encoding="utf-8")

    def close(self) -> None:
        """Leaves the lab, which goes on."""
        self._answers.close()
        self._socket.close()

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


def run(command: abc.Sequence[str], *, boards: int = 1, options: abc.Sequence[str] = (), **how: Any
        ) -> subprocess.CompletedProcess[Any]:
    """Runs a command in a private network with simulated boards OV0001, OV0002, ...

    `options` go to orvane-lab, which must be in PATH; `how` to subprocess.run().
    """
    return subprocess.run(["orvane-lab", "--boards", str(boards), *options, "--", *command], **how)
