"""A port whose board is reached from another host, over labgrid's ssh connection to it."""
from __future__ import annotations

import subprocess
import threading
from collections import abc
from typing import Any, BinaryIO, Dict, List, Tuple, cast

from orvane.errors import Error
from orvane.labgrid.wire import Call, Outcome, receive, send

__all__ = ["HostConnection", "HostError", "RemoteObject"]


class HostError(Error, ConnectionError):  # type: ignore[misc]
    """The connection to the exporter's host has ended, or there was none. Its sessions are closed there."""


class HostConnection:
    """A program on the exporter's host that does what this side asks for. Any thread may use it; calls take turns.

    A call that is broken off (Ctrl-C) ends the connection, for its answer would be taken for the next one's.
    """

    def __init__(self, command: abc.Sequence[str], host: str) -> None:
        """Runs `command`, which runs the agent there."""
        self._host = host
        self._turn = threading.RLock()
        self._forgotten: List[int] = []
        self._process = subprocess.Popen(list(command), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.methods: Dict[Tuple[str, str], None] = {}

    @property
    def opener(self) -> RemoteObject:
        """What opens boards there."""
        return RemoteObject(self, 0, "Opener", "<opener>")

    def do(self, what: str, target: RemoteObject, name: str, arguments: Tuple[Any, ...] = (),
           words: abc.Mapping[str, Any] = {}) -> Outcome:
        """One call, and what came of it."""
        with self._turn:
            if self._process.poll() is not None:
                raise self._ended()
            forgotten, self._forgotten = tuple(self._forgotten), []
            call = Call(what, target, name, arguments, tuple(words.items()), forgotten)
            try:
                send(cast(BinaryIO, self._process.stdin), call, _number_of)
                outcome: Outcome = receive(cast(BinaryIO, self._process.stdout), self._object_of)
            except (EOFError, OSError):
                self.close()
                raise self._ended() from None
            except (TypeError, AttributeError) as problem:  # what cannot be sent; nothing of it has been
                raise TypeError(f"cannot be sent to {self._host}: {problem}") from None
            except BaseException:
                self.close()
                raise
        if outcome.raised is not None:
            raise outcome.raised
        return outcome

    def forget(self, number: int) -> None:
        """Nobody has that object any more; its host is told with the next call."""
        self._forgotten.append(number)

    def close(self) -> None:
        """Ends the program there, and with it its sessions."""
        with self._turn:
            for stream in (self._process.stdin, self._process.stdout):
                try:
                    cast(BinaryIO, stream).close()
                except OSError:
                    pass  # it has gone
            try:
                self._process.wait(5)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.wait()

    def _ended(self) -> HostError:
        return HostError(f"the connection to {self._host} has ended (status {self._process.poll()}). Is orvane "
                         "installed there, and can you log in by ssh without a password?")

    def _object_of(self, told: Tuple[int, str, str]) -> RemoteObject:
        return RemoteObject(self, *told)


def _number_of(value: Any) -> Any:
    return value._number if isinstance(value, RemoteObject) else None


class RemoteObject:
    """A Port, Phy, service or place of the package orvane that lives on the exporter's host, and is used as one here.

    Values come and go as they are, failures are raised here. What takes a function (together(), on_reopen()), a
    cancellation, or asyncio is a TypeError: it stays there.
    """

    __slots__ = ("_connection", "_number", "_kind", "_text")

    _connection: HostConnection
    _number: int
    _kind: str
    _text: str

    def __init__(self, connection: HostConnection, number: int, kind: str, text: str) -> None:
        object.__setattr__(self, "_connection", connection)
        object.__setattr__(self, "_number", number)
        object.__setattr__(self, "_kind", kind)
        object.__setattr__(self, "_text", text)

    def __repr__(self) -> str:
        return f"{self._text} on {self._connection._host}"

    def __del__(self) -> None:
        self._connection.forget(self._number)

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        kind = (self._kind, name)
        if kind not in self._connection.methods:
            outcome = self._connection.do("get", self, name)
            if not outcome.method:
                return outcome.value
            self._connection.methods[kind] = None
        return lambda *arguments, **words: self._call(name, *arguments, **words)

    def __setattr__(self, name: str, value: Any) -> None:
        self._connection.do("set", self, name, (value,))

    def _call(self, name: str, *arguments: Any, **words: Any) -> Any:
        return self._connection.do("call", self, name, arguments, words).value

    def __getitem__(self, key: Any) -> Any:
        return self._call("__getitem__", key)

    def __setitem__(self, key: Any, value: Any) -> None:
        self._call("__setitem__", key, value)

    def __len__(self) -> int:
        return int(self._call("__len__"))

    def __int__(self) -> int:
        return int(self._call("__int__"))

    def __str__(self) -> str:
        return str(self._call("__str__"))

    def __enter__(self) -> RemoteObject:
        return self

    def __exit__(self, *raised: object) -> None:
        self._call("close")
