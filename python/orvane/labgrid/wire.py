"""What goes over the connection to an exporter's host: calls and their outcomes, with live objects left where they are.

A message is its length in four bytes and a pickle, in which an object of the other side stands as its number.
"""
from __future__ import annotations

import builtins
import dataclasses
import enum
import io
import pickle
import struct
from typing import Any, BinaryIO, Callable, Optional, Tuple

__all__ = ["Call", "Outcome", "receive", "send"]

_LENGTH = struct.Struct("!I")
_VALUES = frozenset("orvane." + each for each in (
    "batch", "codes", "errors", "events", "labgrid.wire", "limits", "names", "rack", "registers", "services"))
_PLAIN = frozenset({
    ("_codecs", "encode"), ("collections", "OrderedDict"), ("datetime", "datetime"), ("datetime", "timezone"),
    ("numpy", "dtype"), ("numpy", "ndarray"), ("numpy.core.multiarray", "_reconstruct"),
    ("numpy.core.multiarray", "scalar"), ("numpy._core.multiarray", "_reconstruct"),
    ("numpy._core.multiarray", "scalar"), ("numpy.ma.core", "MaskedArray"), ("numpy.ma.core", "_mareconstruct")})
_BUILT_IN = frozenset({"bytearray", "complex", "frozenset", "range", "set", "slice"})


@dataclasses.dataclass(frozen=True)
class Call:
    """What is to be done with an object: "get" or "set" an attribute, or "call" a method."""

    what: str
    target: Any
    name: str
    arguments: Tuple[Any, ...] = ()
    words: Tuple[Tuple[str, Any], ...] = ()
    forgotten: Tuple[int, ...] = ()
    """numbers of objects that nobody on this side has any more"""


@dataclasses.dataclass(frozen=True)
class Outcome:
    """What came of it."""

    value: Any = None
    raised: Optional[BaseException] = None
    method: bool = False
    """the attribute is something to be called"""


def send(stream: BinaryIO, message: Any, number_of: Callable[[Any], Any]) -> None:
    """Sends a message; number_of(object) is what stands for one that stays here, None of what is sent itself."""
    room = io.BytesIO()
    pickler = pickle.Pickler(room, protocol=4)
    pickler.persistent_id = number_of  # type: ignore[assignment]
    pickler.dump(message)
    stream.write(_LENGTH.pack(room.tell()) + room.getvalue())
    stream.flush()


def receive(stream: BinaryIO, object_of: Callable[[Any], Any]) -> Any:
    """The next message; EOFError when there is none. object_of(number) is the object that it stands for."""
    head = stream.read(_LENGTH.size)
    if len(head) < _LENGTH.size:
        raise EOFError
    body = stream.read(*_LENGTH.unpack(head))
    if len(body) < _LENGTH.unpack(head)[0]:
        raise EOFError
    reader = _Reader(io.BytesIO(body))
    reader.persistent_load = object_of  # type: ignore[assignment]
    return reader.load()


class _Reader(pickle.Unpickler):
    """Makes plain values and what this package has of them, and runs nothing else: the other side is another host."""

    def find_class(self, module: str, name: str) -> Any:
        if (module, name) in _PLAIN:
            return super().find_class(module, name)
        if (module, name) == ("builtins", "getattr"):
            return _member
        if module == "builtins":
            found = getattr(builtins, name, None)
            if name in _BUILT_IN or (isinstance(found, type) and issubclass(found, BaseException)):
                return found
        if module in _VALUES and "." not in name:
            found = super().find_class(module, name)
            if found.__module__ == module and (isinstance(found, type) or name == "_again"):
                return found
        raise pickle.UnpicklingError(f"{module}.{name} is not taken from another host")


def _member(kind: Any, name: str) -> Any:
    """As Python 3.11 pickles members of an enumeration."""
    if isinstance(kind, type) and issubclass(kind, enum.Enum):
        return kind[name]
    raise pickle.UnpicklingError("builtins.getattr is not taken from another host")
