"""The key of a place's acquisition, which lets its holder's programs share the board and keeps everybody else out."""
from __future__ import annotations

import hashlib
from typing import Any, Optional

__all__ = ["key_of", "derived_key"]


def derived_key(place: str, holder: str) -> int:
    """A key, 1 to 0xFFFF, that every program of the holder comes to by itself.

    It is the same for the next acquisition by the same holder, and one in 65535 pairs of holders shares one: an
    exporter that holds the lock gives each acquisition a key of its own instead.
    """
    told = hashlib.sha256(f"{place}\0{holder}".encode()).digest()
    return int.from_bytes(told[:4], "big") % 0xFFFF + 1


def key_of(resource: Any) -> int:
    """The key for a resource of labgrid: what its exporter says, else one derived from the place that it came by; 0,
    of a resource that no place brought: the session has a key of its own."""
    key: Optional[int] = getattr(resource, "key", None)
    if key is not None:
        return key
    place = _place_of(resource)
    return 0 if place is None or not place.acquired else derived_key(place.name, place.acquired)


def _place_of(resource: Any) -> Any:
    """The coordinator's record of the place that a resource came by; None of one that an environment lists itself."""
    parent = resource.parent
    session = getattr(parent.manager, "session", None) if parent is not None else None
    return None if session is None else session.get_place(parent.name)
