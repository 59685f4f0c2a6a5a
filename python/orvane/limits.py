"""Limits of a call: how long, how often, and who may end it."""
from __future__ import annotations

import dataclasses
from typing import Optional, Union

from orvane import _orvane
from orvane._orvane import Cancellation

__all__ = ["Cancellation", "Within", "WithinLike"]


@dataclasses.dataclass(frozen=True)
class Within:
    """What a caller may say about one call.

    seconds       how long it may take, 5 s unless told
    reads         times that a read without an answer is sent again; None: up to the limit
    writes        the same for writes
    heal          look a lost board up and open a lost session again
    cancellation  ends the call when it is cancelled, from any thread; a Cancelled is raised
    """

    seconds: float = 5.0
    reads: Optional[int] = None
    writes: Optional[int] = 16
    heal: bool = True
    cancellation: Optional[Cancellation] = None

    @classmethod
    def once(cls, seconds: float = 5.0) -> Within:
        """Nothing is sent twice: for registers whose access has side effects."""
        return cls(seconds, reads=0, writes=0)

    def __post_init__(self) -> None:
        object.__setattr__(self, "_limits", _orvane.Limits(
            self.seconds, _repeats(self.reads), _repeats(self.writes), self.heal, self.cancellation))

    def __reduce__(self) -> tuple[object, ...]:
        if self.cancellation is not None:
            raise TypeError("a Within with a cancellation stays in its process")
        return Within, (self.seconds, self.reads, self.writes, self.heal)


WithinLike = Union[Within, float, None]
"""A Within, a number of seconds, or None for the usual."""


def _repeats(times: Optional[int]) -> int:
    if times is None:
        return _orvane.UP_TO_THE_DEADLINE
    if times < 0:
        raise ValueError(f"{times} repeats: 0 or more, or None for as many as fit")
    return min(times, _orvane.UP_TO_THE_DEADLINE)


USUAL = Within()
ONCE = Within.once()


def limits_of(within: WithinLike, usual: Within = USUAL) -> _orvane.Limits:
    """What the module takes. Of `usual` holds what `within` does not say."""
    if within is None:
        within = usual
    elif not isinstance(within, Within):
        within = dataclasses.replace(usual, seconds=within)
    limits: _orvane.Limits = within._limits  # type: ignore[attr-defined]
    return limits
