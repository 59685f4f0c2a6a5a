"""Who holds a board, as labgrid's coordinator says: python3 -m orvane.labgrid.holder OV0001:0 [PHY]."""
from __future__ import annotations

import dataclasses
import inspect
import os
import sys
from typing import Any, List, Optional

__all__ = ["Holder", "holder_of", "main"]


@dataclasses.dataclass(frozen=True)
class Holder:
    """A place that was acquired, and by whom."""

    place: str
    user: str
    """as labgrid has it: "host/user\""""

    def __str__(self) -> str:
        return f"place {self.place}, acquired by {self.user}"


def holder_of(session: Any, board: str, port: int, phy: Optional[int] = None) -> Optional[Holder]:
    """The holder of a port, or of one PHY of it, as a client's session with the coordinator knows it."""
    for groups in session.resources.values():
        for group in groups.values():
            for resource in group.values():
                if not resource.data:  # its exporter has gone
                    continue
                told = resource.args
                if (told.get("device"), told.get("port")) != (board, port) or not resource.acquired:
                    continue
                if phy is not None and told.get("phy") not in (None, phy):
                    continue
                place = session.places.get(resource.acquired)
                if place is not None and place.acquired:
                    return Holder(place.name, place.acquired)
    return None


def _session() -> Any:
    """A session with the coordinator that the environment names."""
    from labgrid.remote.client import start_session  # type: ignore[import]

    if "realm" in inspect.signature(start_session).parameters:  # before gRPC
        return start_session(os.environ.get("LG_CROSSBAR", "ws://127.0.0.1:20408/ws"),
                             os.environ.get("LG_CROSSBAR_REALM", "realm1"), {})
    return start_session(os.environ.get("LG_COORDINATOR", "127.0.0.1:20408"), extra={})


def main(line: Optional[List[str]] = None) -> int:
    """The program; the exit status: 0 when there is a holder, else 1."""
    words = sys.argv[1:] if line is None else line
    if not 1 <= len(words) <= 2:
        sys.stderr.write(f"{__doc__}\n")
        return 2
    board, _, port = words[0].partition(":")
    holder = holder_of(_session(), board.upper(), int(port or 0), int(words[1]) if len(words) > 1 else None)
    if holder is None:
        return 1
    print(holder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
