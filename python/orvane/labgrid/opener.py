"""How a driver's board is opened, on its own host or on the exporter's."""
from __future__ import annotations

from orvane.rack import Port, Rack

__all__ = ["Opener"]


class Opener:
    """Opens boards by a rack. A connection to another host begins with one."""

    def __init__(self, rack: Rack) -> None:
        self.rack = rack

    def open(self, device: str, address: str, port: int, key: int, within: float) -> Port:
        """A port of a board at an address, for exclusive sessions."""
        if address:
            self.rack.know(device, address)
        return self.rack.open(f"{device}:{port}", exclusive=key or True, within=within)
