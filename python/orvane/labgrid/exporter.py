"""orvane-labgrid-exporter: tells labgrid's coordinator of the boards of a rack, and locks those that are acquired."""
# mypy: allow-subclassing-any
from __future__ import annotations

import argparse
import importlib
import os
import pathlib
import re
import socket
import sys
import tempfile
from collections import abc
from typing import Any, ClassVar, Dict, List, Optional, Tuple, Type

import attr
import labgrid.remote.exporter as exporter  # type: ignore[import]
from labgrid.remote.exporter import BrokenResourceError, ResourceExport

from orvane.errors import Error, Refused
from orvane.labgrid.locks import Keys, Locks
from orvane.labgrid.resources import OrvanePort
from orvane.labgrid.scout import FoundPort, Scout, addresses_of
from orvane.rack import Rack

__all__ = ["OrvanePortExport", "main"]

_CLASS = "NetworkOrvanePort"


@attr.s(eq=False)
class OrvanePortExport(ResourceExport):
    """A PHY of a board, which is locked while a place has it."""

    locks: ClassVar[Locks]

    def __attrs_post_init__(self) -> None:
        super().__attrs_post_init__()
        self.tags: Dict[str, str] = self.local_params.pop("tags", {})
        self.data["cls"] = _CLASS
        self.local = OrvanePort(target=None, name=None, **self.local_params)  # type: ignore[call-arg]
        self.lock = self.locks.lock(self.local.device, self.local.port, self.local.phy or 0)

    def _get_params(self) -> Dict[str, Any]:
        return {"host": self.host, "device": self.local.device, "address": self.local.address,
                "port": self.local.port, "phy": self.local.phy, "key": self.lock.key,
                "extra": {**self.tags, "lock": self.lock.state}}

    def poll(self) -> bool:
        """Called by labgrid four times a second: whether there is something new to tell."""
        self.local.poll()
        if self.local.avail:
            self.lock.mind(self.acquired, self.local.address)
        return bool(super().poll())

    def acquire(self, place_name: str) -> None:
        """Called by labgrid: locks the board. A board that somebody else holds cannot be acquired; one that is not
        there is locked when it comes."""
        super().acquire(place_name)
        if self.local.avail and not self.lock.held:
            try:
                self.lock.take(place_name, self.local.address)
            except Refused as refusal:
                self.release()
                # Alone: to show the refusal itself would ask the coordinator, which waits for this.
                raise BrokenResourceError(f"{place_name} cannot be locked: {refusal.args[0]}") from None
            except Error:
                pass  # it has just gone
        self.poll()

    def release(self) -> None:
        """Called by labgrid: unlocks the board."""
        self.lock.give_back(self.local.avail)
        super().release()


def follow(base: Type[Any], scout: Scout) -> Type[Any]:
    """labgrid's exporter, with boards that come and move while it runs."""

    class Following(base):
        async def _poll_step(self) -> None:
            for found in scout.found():
                export = self.groups.get(found.device, {}).get(resource_name(found))
                if export is None:
                    await self.add_resource(found.device, resource_name(found), "OrvanePort", parameters(found))
                elif export.local.address != found.address:
                    export.local.address = found.address
            await super()._poll_step()

    return Following


def resource_name(found: FoundPort) -> str:
    """What a port is called in its board's group."""
    return f"port{found.port}-phy{found.phy}"


def place_name(found: FoundPort) -> str:
    """A name for its place."""
    return f"{found.device.lower()}-{found.port}-{found.phy}"


def parameters(found: FoundPort) -> Dict[str, Any]:
    """What an OrvanePort is made of, and its tags."""
    return {"device": found.device, "address": found.address, "port": found.port, "phy": found.phy,
            "tags": found.tags()}


def configuration(ports: abc.Iterable[FoundPort], host: str) -> str:
    """The same for labgrid's own exporter, which tells of boards as they are when it starts and locks none."""
    yaml: Any = importlib.import_module("yaml")  # labgrid needs it; its types need not be there
    groups: Dict[str, Dict[str, Any]] = {}
    for found in ports:
        groups.setdefault(found.device, {})[resource_name(found)] = {
            "cls": _CLASS, "host": host, "device": found.device, "address": found.address, "port": found.port,
            "phy": found.phy}
    return str(yaml.safe_dump(groups, sort_keys=False))


def place_commands(ports: abc.Iterable[FoundPort], name: str) -> str:
    """Commands that make a place of each port."""
    lines = []
    for found in ports:
        client = f"labgrid-client -p {place_name(found)}"
        lines += [f"{client} create", f"{client} add-match {name}/{found.device}/{_CLASS}/{resource_name(found)}",
                  f"{client} set-tags " + " ".join(f"{key}={value}" for key, value in found.tags().items())]
    return "".join(f"{line}\n" for line in lines)


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="orvane-labgrid-exporter", description=__doc__)
    parser.add_argument("boards", nargs="*", metavar="BOARDS",
                        help="ports by name ('OV*:0', '*:0' unless told) and addresses (10.0.0.5, 10.0.0.5-20, "
                             "10.0.0.0/28); without addresses, boards are searched for")
    parser.add_argument("--phy", type=int, action="append", metavar="N", help="PHY of each port (0); may be repeated")
    parser.add_argument("--tag", type=_tag, action="append", default=[], metavar="KEY=VALUE",
                        help="another tag of each port, such as bench=7; may be repeated")
    parser.add_argument("--every", type=float, default=5.0, metavar="S",
                        help="look for new and moved boards every S seconds (5)")
    parser.add_argument("--state", type=pathlib.Path, metavar="FILE",
                        help="where keys of acquired places are kept (in $XDG_STATE_HOME/orvane)")
    parser.add_argument("--resources", metavar="FILE", help="labgrid's own configuration of what else there is")
    instead = parser.add_mutually_exclusive_group()
    instead.add_argument("--write", action="store_true",
                         help="print the configuration of labgrid's own exporter instead, and end")
    instead.add_argument("--places", action="store_true",
                         help="print the commands that make a place of each port instead, and end")
    theirs = parser.add_argument_group("as of labgrid-exporter")
    theirs.add_argument("-x", "--crossbar", metavar="URL")
    theirs.add_argument("--coordinator", metavar="HOST:PORT")
    theirs.add_argument("-n", "--name")
    theirs.add_argument("--hostname")
    theirs.add_argument("-i", "--isolated", action="store_true")
    theirs.add_argument("-d", "--debug", action="store_true")
    return parser


def _tag(text: str) -> Tuple[str, str]:
    told = re.fullmatch("([a-z][a-z0-9_]+)=([a-z0-9_]+)", text)
    if told is None:
        raise argparse.ArgumentTypeError(f"{text}: a tag is of lower-case letters, digits, underscores: bench=7")
    return told[1], told[2]


def _theirs(arguments: argparse.Namespace, resources: str) -> List[str]:
    """The command line of labgrid's exporter."""
    line = ["labgrid-exporter"]
    for option in ("crossbar", "coordinator", "name", "hostname"):
        value = getattr(arguments, option)
        line += [] if value is None else [f"--{option}", value]
    line += [f"--{option}" for option in ("isolated", "debug") if getattr(arguments, option)]
    return [*line, resources]


def _state(arguments: argparse.Namespace, name: str) -> pathlib.Path:
    if arguments.state is not None:
        return pathlib.Path(arguments.state)
    home = os.environ.get("XDG_STATE_HOME") or os.path.expanduser("~/.local/state")
    return pathlib.Path(home, "orvane", f"labgrid-{name}.json")


def _scout(arguments: argparse.Namespace, rack: Rack) -> Scout:
    patterns, addresses = [], []
    for each in arguments.boards:
        row = addresses_of(each)
        if row is None:
            patterns.append(each)
        else:
            addresses += row
    return Scout(rack, patterns, addresses, arguments.phy or [0], arguments.every, dict(arguments.tag))


def _serve(arguments: argparse.Namespace, rack: Rack, scout: Scout, name: str) -> None:
    OrvanePortExport.locks = Locks(rack, Keys(_state(arguments, name)))
    exporter.exports["OrvanePort"] = OrvanePortExport
    session = "Exporter" if hasattr(exporter, "Exporter") else "ExporterSession"  # since gRPC, and before
    setattr(exporter, session, follow(getattr(exporter, session), scout))
    scout.start()
    with tempfile.NamedTemporaryFile("w", suffix=".yaml") as empty:
        empty.write("{}\n")
        empty.flush()
        sys.argv = _theirs(arguments, arguments.resources or empty.name)
        exporter.main()


def main(line: Optional[List[str]] = None) -> int:
    """The program; the exit status."""
    parser = _parser()
    arguments = parser.parse_args(line)
    name = arguments.name or socket.gethostname()
    with Rack() as rack:
        try:
            scout = _scout(arguments, rack)
        except ValueError as problem:
            parser.error(str(problem))
        if arguments.write:
            sys.stdout.write(configuration(scout.look(), arguments.hostname or socket.gethostname()))
        elif arguments.places:
            sys.stdout.write(place_commands(scout.look(), name))
        else:
            _serve(arguments, rack, scout, name)
    return 0


if __name__ == "__main__":
    sys.exit(main())
