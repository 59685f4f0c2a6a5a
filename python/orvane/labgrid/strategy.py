"""A strategy for boards whose power can be switched."""
# mypy: allow-subclassing-any, allow-untyped-decorators
from __future__ import annotations

import enum
from typing import Any, Union

import attr
from labgrid.factory import target_factory  # type: ignore[import]
from labgrid.step import step  # type: ignore[import]
from labgrid.strategy.common import Strategy, StrategyError  # type: ignore[import]

__all__ = ["OrvaneStrategy", "Status"]


class Status(enum.Enum):
    """What a board may be."""

    unknown = 0
    off = 1
    on = 2


@target_factory.reg_driver
@attr.s(eq=False)
class OrvaneStrategy(Strategy):
    """Switches a board off, and on by a power cycle: the PHYs begin with their reset values.

    boot_timeout  seconds that a board may take from power to its first answer
    """

    bindings = {"power": "PowerProtocol", "driver": "OrvaneDriver"}

    boot_timeout: float = attr.ib(default=60.0, converter=float)
    status: Status = attr.ib(default=Status.unknown, init=False)

    @step(args=["status"])
    def transition(self, status: Union[Status, str], *, step: Any) -> None:
        """To "off" or "on". On: the board answers and its session is open."""
        wanted = status if isinstance(status, Status) else Status[status]
        if wanted is Status.unknown:
            raise StrategyError(f"can not transition to {wanted}")
        if wanted is self.status:
            step.skip("nothing to do")
            return
        self.target.deactivate(self.driver)
        self.target.activate(self.power)
        if wanted is Status.off:
            self.power.off()
        else:
            self.power.cycle()
            self.target.await_resources([self.driver.board], timeout=self.boot_timeout)
            self.target.activate(self.driver)
        self.status = wanted

    @step(args=["status"])
    def force(self, status: Union[Status, str]) -> None:
        """Takes the board for what it is said to be, without switching anything."""
        wanted = status if isinstance(status, Status) else Status[status]
        if wanted is Status.unknown:
            raise StrategyError(f"can not force {wanted}")
        if wanted is Status.on:
            self.target.activate(self.driver)
        else:
            self.target.deactivate(self.driver)
        self.status = wanted
