"""The exporter's host's side: does what a driver elsewhere asks for, until its connection ends.

python3 -m orvane.labgrid.agent, with the connection as standard input and output.
"""
from __future__ import annotations

import itertools
import pickle
import signal
import sys
from typing import Any, BinaryIO, Dict

from orvane.labgrid.opener import Opener
from orvane.labgrid.wire import Call, Outcome, receive, send
from orvane.names import Map, NamesOfPhy, Place, Snapshot
from orvane.phy import Routed
from orvane.rack import Port, Rack
from orvane.services import Services, Thermal, ThermalChannel, _Service

__all__ = ["Agent"]

_LIVE = (Map, NamesOfPhy, Place, Port, Rack, Routed, Services, Snapshot, Thermal, ThermalChannel, _Service)


class Agent:
    """Objects by their numbers, and a loop that uses them."""

    def __init__(self, reads: BinaryIO, writes: BinaryIO, opener: Opener) -> None:
        self._reads = reads
        self._writes = writes
        self._objects: Dict[int, Any] = {0: opener}
        self._numbers = itertools.count(1)

    def serve(self) -> None:
        """Until the other side has gone."""
        while True:
            try:
                call: Call = receive(self._reads, self._object_of)
            except EOFError:
                return
            except pickle.UnpicklingError as problem:
                self._answer(Outcome(raised=TypeError(str(problem))))
                continue
            for number in call.forgotten:
                self._objects.pop(number, None)
            self._answer(_outcome(call))

    def _answer(self, outcome: Outcome) -> None:
        try:
            send(self._writes, outcome, self._number_of)
        except (BrokenPipeError, EOFError):
            raise
        except Exception as problem:  # a value that cannot be sent; nothing of it has been
            send(self._writes, Outcome(raised=TypeError(f"stays on the exporter's host: {problem}")), self._number_of)

    def _object_of(self, number: Any) -> Any:
        return self._objects[number]

    def _number_of(self, value: Any) -> Any:
        if not isinstance(value, _LIVE) and not hasattr(value, "__next__"):
            return None
        number = next(self._numbers)
        self._objects[number] = value
        return number, type(value).__name__, repr(value)


def _outcome(call: Call) -> Outcome:
    try:
        if call.what == "set":
            setattr(call.target, call.name, *call.arguments)
            return Outcome()
        found = getattr(call.target, call.name)
        if call.what == "call":
            return Outcome(found(*call.arguments, **dict(call.words)))
        return Outcome(method=True) if callable(found) and not isinstance(found, _LIVE) else Outcome(found)
    except Exception as raised:
        return Outcome(raised=raised)


def main() -> None:
    """The program."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # the other side says when it is over
    reads, writes = sys.stdin.buffer, sys.stdout.buffer
    sys.stdout = sys.stderr  # what prints does not get in between
    with Rack() as rack:
        Agent(reads, writes, Opener(rack)).serve()


if __name__ == "__main__":
    main()
