"""What viewers watch: newest values with versions, so that nobody needs a queue."""
from __future__ import annotations

import itertools
import json
import time
from collections import abc
from typing import Any, Dict, Optional, Protocol, Set, Tuple

__all__ = ["Hub", "Topic", "Watcher"]

_numbers = itertools.count(1)


class Watcher(Protocol):
    """Who is told that a topic has something new."""

    def notice(self, topic: Topic) -> None:
        """Called in the event loop; must not block."""


class Topic:
    """Values by name. A watcher asks for those that changed since the version that it has: however slow it is, it gets
    the newest, and what it missed in between costs nothing."""

    def __init__(self, *, keep: Optional[int] = None) -> None:
        """keep: so many values at most, the newest; None: all"""
        self.number = next(_numbers)
        self._keep = keep
        self.watchers: Set[Watcher] = set()
        self._version = 0
        self._values: Dict[str, Any] = {}
        self._changed: Dict[str, int] = {}
        self._text: Tuple[int, int, str] = (-1, -1, "")  # the last message, which most watchers want alike

    def begin(self) -> None:
        """The first watcher has come."""

    def end(self) -> None:
        """The last one has left."""

    @property
    def values(self) -> abc.Mapping[str, Any]:
        """All that it holds."""
        return self._values

    def put(self, values: abc.Mapping[str, Any]) -> None:
        """Takes new values; tells the watchers if any differs."""
        changed = [name for name, value in values.items()
                   if name not in self._values or self._values[name] != value]
        if not changed:
            return
        self._version += 1
        for name in changed:
            self._values[name] = values[name]
            self._changed[name] = self._version
        while self._keep is not None and len(self._values) > self._keep:
            oldest = next(iter(self._values))
            del self._values[oldest], self._changed[oldest]
        for watcher in self.watchers:
            watcher.notice(self)

    def since(self, version: int) -> Tuple[int, Optional[str]]:
        """The version now, and a message with what changed after `version`; None when nothing did."""
        if version == self._version:
            return version, None
        if self._text[:2] != (version, self._version):
            changed = {name: value for name, value in self._values.items() if self._changed[name] > version}
            message = {"topic": self.number, "at": round(time.time(), 3), "set": changed}
            self._text = (version, self._version, json.dumps(message, separators=(",", ":")))
        return self._version, self._text[2]


class Hub:
    """The topics that somebody watches, one for each thing however many watch it."""

    def __init__(self) -> None:
        self._topics: Dict[str, Topic] = {}
        self._keys: Dict[int, str] = {}

    def __len__(self) -> int:
        return len(self._topics)

    def watch(self, watcher: Watcher, key: str, make: abc.Callable[[], Topic]) -> Topic:
        """The topic of a key, made if nobody has watched it yet."""
        topic = self._topics.get(key)
        if topic is None:
            topic = self._topics[key] = make()
            self._keys[topic.number] = key
            topic.begin()
        topic.watchers.add(watcher)
        return topic

    def unwatch(self, watcher: Watcher, topic: Topic) -> None:
        """One watcher less; with the last one the topic ends."""
        topic.watchers.discard(watcher)
        key = self._keys.get(topic.number)
        if not topic.watchers and key is not None:
            del self._keys[topic.number], self._topics[key]
            topic.end()
