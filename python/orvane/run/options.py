"""What the command line says about the run of a program that it carries out."""
from __future__ import annotations

import contextlib
import contextvars
import dataclasses
import sys
from collections import abc
from typing import Any, Callable, List, Optional

from orvane.run.storage import PathLike

__all__ = ["Options", "current_options", "options_for"]


def _to_stderr(text: str) -> None:
    sys.stderr.write(text + "\n")
    sys.stderr.flush()


@dataclasses.dataclass
class Options:
    """How a run goes."""

    out: Optional[PathLike] = None
    resume: bool = False
    extend: bool = False
    dask: Any = None
    """a scheduler's address, or a client"""
    act: Optional[Callable[[Any], Any]] = None
    """what go() does in place of measuring"""
    done: Callable[[Any], object] = lambda what: None
    """told of what go() came to"""
    tell: Callable[[str], None] = _to_stderr
    """takes a line for the person who waits"""
    runs: List[Any] = dataclasses.field(default_factory=list)
    """every Run that was made"""

    def or_else(self, out: Optional[PathLike], resume: bool, extend: bool, dask: Any) -> Options:
        """These, and what they do not say from the arguments of go()."""
        return dataclasses.replace(self, out=self.out or out, resume=self.resume or resume,
                                   extend=self.extend or extend, dask=self.dask or dask)


_current: contextvars.ContextVar[Optional[Options]] = contextvars.ContextVar("options", default=None)


def current_options() -> Options:
    """Those of options_for(), else the usual."""
    return _current.get() or Options()


@contextlib.contextmanager
def options_for(options: Options) -> abc.Iterator[None]:
    """While it lasts, every Run of this thread follows them."""
    token = _current.set(options)
    try:
        yield
    finally:
        _current.reset(token)
