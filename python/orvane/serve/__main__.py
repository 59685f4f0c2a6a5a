"""orvane serve: a web page of the rack."""
from __future__ import annotations

import argparse
import asyncio
import contextlib
import ipaddress
import os
import pathlib
import secrets
import signal
import socket
import ssl
import sys
from collections import abc
from typing import List, Optional

from orvane.errors import Error

__all__ = ["main"]

SUCCESS, FAILED, USAGE = 0, 1, 2
_EXAMPLES = """\
  orvane serve
  orvane serve 'OV00*' --write
  orvane serve --log session.csv --run drive-sweep.orvrun
  orvane serve --listen 192.0.2.7 --name lab-pc --certificate lab.pem --key lab.key

It prints the address to open, with a token that nobody else has, and serves until it is interrupted. Who has the
address sees the boards; with --write, registers can be written, too.
"""


def main(arguments: Optional[abc.Sequence[str]] = None) -> int:
    """The command line without its name; returns the exit status."""
    parser = _parser()
    told = parser.parse_args(sys.argv[1:] if arguments is None else arguments)
    if (told.certificate is None) != (told.key is None):
        parser.error("--certificate and --key go together")
    if not _is_loopback(told.listen) and told.certificate is None:
        parser.error("--listen for others needs --certificate and --key: the token must not be read on the way")
    try:
        import aiohttp  # noqa: F401
    except ModuleNotFoundError:
        return _complain("the Python package aiohttp is missing (Debian: python3-aiohttp)")
    try:
        asyncio.run(_serve(told))
        return SUCCESS
    except (Error, ValueError, OSError) as problem:
        return _complain(str(problem))
    except KeyboardInterrupt:
        return SUCCESS


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="orvane serve", description="Show the rack in a browser.", epilog=_EXAMPLES,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    add = parser.add_argument
    add("boards", metavar="BOARD", nargs="*", help="serial numbers to show, with * and ?; all that answer unless told")
    add("--address", metavar="ADDRESS", action="append", default=[], help="ask for a board at this address, too")
    add("--map", metavar="FILE", action="append", default=[], help="a register map, beside that of IEEE 802.3")
    add("--log", metavar="FILE", action="append", default=[], help="a transaction log to show")
    add("--run", metavar="FILE", action="append", default=[], help="a data set of 'orvane run' to show")
    add("--write", action="store_true", help="allow what changes registers, temperatures and captures")
    add("--port", type=int, default=8765, help="TCP port, 8765 unless told; 0: any that is free")
    add("--listen", metavar="ADDRESS", default="127.0.0.1", help="address to listen at, 127.0.0.1 unless told")
    add("--name", metavar="HOST", action="append", default=[], help="a name that browsers may use for this host")
    add("--certificate", metavar="FILE", help="certificate for TLS, in PEM form")
    add("--key", metavar="FILE", help="its key")
    add("--token-file", metavar="FILE",
        help="keep the token in this file, which is made if it is not there; unless told, each start has a new one")
    return parser


def _complain(text: str) -> int:
    sys.stderr.write(f"orvane: serve: {text}\n")
    return FAILED


async def _serve(told: argparse.Namespace) -> None:
    from orvane.serve import maps
    from orvane.serve.access import Access
    from orvane.serve.server import Server, pages_folder
    from orvane.serve.site import Site, Wishes
    tls = None
    if told.certificate is not None:
        tls = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        tls.load_cert_chain(told.certificate, told.key)
    listening = socket.create_server((told.listen, told.port), backlog=512)
    port = int(listening.getsockname()[1])
    wishes = Wishes(told.boards, told.address, maps.load(told.map), _readable(told.log), _readable(told.run),
                    told.write)
    access = Access(hosts(told.listen, told.name, port, tls is not None), port,
                    token=_token(told.token_file) if told.token_file else None, secure=tls is not None)
    server = Server(Site(wishes), access, pages=pages_folder())
    await server.start(listening, tls)
    over = _signals()
    host = (told.name or [told.listen])[0]
    print(f"http{'s' if tls else ''}://{host}:{port}/?token={access.token}", flush=True)
    try:
        await over.wait()
    finally:
        await server.stop()


def hosts(address: str, names: List[str], port: int, secure: bool) -> List[str]:
    """What may stand in a browser's address line. The usual port of the scheme is left out there."""
    known = [address, *names] + (["localhost", "127.0.0.1"] if _is_loopback(address) else [])
    usual = 443 if secure else 80
    return [f"{each}:{port}" for each in known] + (known if port == usual else [])


def _signals() -> asyncio.Event:
    """Set when a signal asks for the end."""
    asked = asyncio.Event()
    for number in (signal.SIGINT, signal.SIGTERM):
        asyncio.get_running_loop().add_signal_handler(number, asked.set)
    return asked


def _is_loopback(address: str) -> bool:
    with contextlib.suppress(ValueError):
        return ipaddress.ip_address(address).is_loopback
    return address == "localhost"


def _readable(paths: List[str]) -> List[str]:
    for path in paths:
        with open(path, "rb"):
            continue
    return paths


def _token(path: str) -> str:
    """That of the file, which only its owner may read."""
    file = pathlib.Path(path)
    with contextlib.suppress(FileExistsError):
        made = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600)
        with os.fdopen(made, "w", encoding="utf-8") as new:
            new.write(secrets.token_urlsafe(24) + "\n")
    token = file.read_text(encoding="utf-8").strip()
    if len(token) < 16:
        raise ValueError(f"{path}: a token has 16 characters or more")
    return token


if __name__ == "__main__":
    sys.exit(main())
