"""Ports of boards as labgrid's resources, and who says whether they are there."""
# mypy: allow-subclassing-any
from __future__ import annotations

from typing import Any, Dict, Optional

import attr
from labgrid.factory import target_factory  # type: ignore[import]
from labgrid.resource.common import ManagedResource, NetworkResource, ResourceManager  # type: ignore[import]
from labgrid.resource.remote import RemotePlaceManager  # type: ignore[import]

from orvane.labgrid.watch import BoardWatch

__all__ = ["BoardManager", "NetworkOrvanePort", "OrvanePort"]

_a_text = attr.validators.instance_of(str)
_a_port = attr.validators.and_(attr.validators.instance_of(int), attr.validators.ge(0), attr.validators.le(255))
_a_phy = attr.validators.optional(
    attr.validators.and_(attr.validators.instance_of(int), attr.validators.ge(0), attr.validators.le(127)))
_a_key = attr.validators.optional(
    attr.validators.and_(attr.validators.instance_of(int), attr.validators.ge(1), attr.validators.le(0xFFFF)))


@attr.s(eq=False)
class BoardManager(ResourceManager):
    """Asks the boards of all resources, so that `avail` follows one that goes and comes back."""

    def __attrs_post_init__(self) -> None:
        super().__attrs_post_init__()
        self.watch = BoardWatch()

    def on_resource_added(self, resource: Any) -> None:
        """Called by labgrid."""
        self.watch.ask_at(resource.address)

    def poll(self) -> None:
        """Tells every resource what is known by now; waits for nobody."""
        for resource in self.resources:
            self.watch.ask_at(resource.address)  # it may have moved
            resource.avail = self.watch.answers(resource.device, resource.port, resource.address)


@target_factory.reg_resource
@attr.s(eq=False)
class OrvanePort(ManagedResource):
    """A PHY of a board that this host reaches.

    device   the board's serial number, "OV0001"
    address  dotted IPv4; "": the board is searched for
    port     number of the port, 0 unless told
    phy      the PHY that the driver holds, 0 unless told
    """

    manager_cls = BoardManager

    device: str = attr.ib(validator=_a_text)
    address: str = attr.ib(default="", validator=_a_text)
    port: int = attr.ib(default=0, validator=_a_port)
    phy: Optional[int] = attr.ib(default=None, validator=_a_phy)

    def __attrs_post_init__(self) -> None:
        self.timeout = 5.0
        super().__attrs_post_init__()


@target_factory.reg_resource
@attr.s(eq=False)
class NetworkOrvanePort(NetworkResource, ManagedResource):
    """The same in a place of labgrid's coordinator.

    host  the exporter's host
    key   of the place's acquisition, 1 to 0xFFFF; None: the exporter holds no lock, and the driver derives one

    It is there when the exporter says so and, unless the exporter's host has to be passed through, the board answers
    this host, too.
    """

    manager_cls = RemotePlaceManager

    device: str = attr.ib(validator=_a_text)
    address: str = attr.ib(default="", validator=_a_text)
    port: int = attr.ib(default=0, validator=_a_port)
    phy: Optional[int] = attr.ib(default=None, validator=_a_phy)
    key: Optional[int] = attr.ib(default=None, validator=_a_key)

    extra: Dict[str, Any] = {}  # labgrid sets what the exporter adds

    def __attrs_post_init__(self) -> None:
        self.timeout = 10.0
        self._said = False
        super().__attrs_post_init__()

    @property
    def avail(self) -> bool:
        """Whether it can be used from here now."""
        if not self._said or self.proxied:
            return self._said
        watch = BoardManager.get().watch
        watch.ask_at(self.address)
        return bool(watch.answers(self.device, self.port, self.address))

    @avail.setter
    def avail(self, said: bool) -> None:
        self._said = said

    @property
    def proxied(self) -> bool:
        """Whether accesses are made on the exporter's host, for the exporter is isolated."""
        return bool(self.extra.get("proxy_required"))
