"""The driver: a board's port and PHY, held exclusively while it is active."""
# mypy: allow-subclassing-any, allow-untyped-decorators
from __future__ import annotations

from typing import Any, Optional, Union

import attr
from labgrid.driver.common import Driver  # type: ignore[import]
from labgrid.factory import target_factory  # type: ignore[import]
from labgrid.step import step  # type: ignore[import]

from orvane.labgrid.keys import key_of
from orvane.labgrid.opener import Opener
from orvane.labgrid.remote import HostConnection
from orvane.phy import Phy
from orvane.rack import Port, Rack
from orvane.registers import RegisterLike
from orvane.services import CommandOutcome

__all__ = ["OrvaneDriver"]


@target_factory.reg_driver
@attr.s(eq=False)
class OrvaneDriver(Driver):
    """A board's PHY with all services, as `phy`; its port, for other PHYs, as `port`.

    Its sessions are exclusive, with the key of the place's acquisition: other programs of the holder may join in,
    nobody else. They end with the driver's activity. Behind an isolated exporter all of it happens on the exporter's
    host, by a program that labgrid's ssh connection runs there; `phy` and `port` are used as ever (RemoteObject).

    open_timeout  seconds that opening the session may take
    python        the interpreter on the exporter's host
    """

    bindings = {"board": {"OrvanePort", "NetworkOrvanePort"}}

    open_timeout: float = attr.ib(default=5.0, converter=float)
    python: str = attr.ib(default="python3")

    def __attrs_post_init__(self) -> None:
        super().__attrs_post_init__()
        self._rack: Optional[Rack] = None
        self._port: Optional[Port] = None
        self._host: Optional[HostConnection] = None

    @step()
    def on_activate(self) -> None:
        """Called by labgrid: opens the session."""
        board = self.board
        self._host = HostConnection([*board.command_prefix, self.python, "-m", "orvane.labgrid.agent"], board.host) \
            if getattr(board, "proxied", False) else None
        opener: Any = Opener(Rack()) if self._host is None else self._host.opener
        self._rack = opener.rack
        try:
            port = opener.open(board.device, board.address, board.port, key_of(board), self.open_timeout)
            port.phy(board.phy or 0).open(within=self.open_timeout)
        except BaseException:
            self._close()
            raise
        self._port = port

    @step()
    def on_deactivate(self) -> None:
        """Called by labgrid: closes every session. What a board that is gone cannot be told is nobody's failure."""
        self._close()

    def _close(self) -> None:
        rack, self._rack, self._port = self._rack, None, None
        host, self._host = self._host, None
        if host is not None:
            host.close()
        elif rack is not None:
            rack.close()

    @property
    def rack(self) -> Rack:
        """The rack of the driver: events, counters, the transaction log."""
        self._only_when_active()
        assert self._rack is not None
        return self._rack

    @property
    def port(self) -> Port:
        """The board's port, with all services."""
        self._only_when_active()
        assert self._port is not None
        return self._port

    @property
    def phy(self) -> Phy:
        """The PHY that the resource names."""
        return self.port.phy(self.board.phy or 0)

    @Driver.check_active
    def _only_when_active(self) -> None:
        """Raises labgrid's StateError when the driver is not active."""

    @Driver.check_active
    @step(args=["where", "number"], result=True)
    def read(self, where: Any, number: Union[int, range, None] = None) -> Any:
        """Phy.read(), as a step of labgrid's log."""
        return self.phy.read(where, number)

    @Driver.check_active
    @step(args=["where", "value"])
    def write(self, where: RegisterLike, value: int) -> None:
        """Phy.write(), as a step of labgrid's log."""
        self.phy.write(where, value)

    @Driver.check_active
    @step(args=["where", "mask", "value"], result=True)
    def modify(self, where: RegisterLike, mask: int, value: int) -> int:
        """Phy.modify(), as a step of labgrid's log."""
        return self.phy.modify(where, mask, value)

    @Driver.check_active
    @step(args=["command"], result=True)
    def run(self, command: str, *, seconds: int = 10) -> CommandOutcome:
        """A command on the board itself, as a step of labgrid's log."""
        return self.phy.shell.run(command, seconds=seconds)
