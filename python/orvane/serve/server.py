"""The server: addresses, files of the pages, metrics."""
from __future__ import annotations

import asyncio
import os
import pathlib
import socket
import ssl
import sys
from typing import Dict, List, Optional, Tuple

from aiohttp import web

from orvane.metrics import Exposition, expose
from orvane.metrics.exposition import CONTENT_TYPE
from orvane.serve.access import Access
from orvane.serve.lobby import Lobby
from orvane.serve.site import Site
from orvane.serve.viewer import live

__all__ = ["Server", "pages_folder"]

_PAGES = {"/": ("index.html", "text/html"), "/orvane.js": ("orvane.js", "text/javascript"),
          "/orvane.css": ("orvane.css", "text/css"), "/icon.svg": ("icon.svg", "image/svg+xml")}
_WITHOUT_PAGES = ("<!doctype html><html lang=en><meta charset=utf-8><title>Orvane</title>"
                  "<p>The pages are not installed here: they are the Debian package orvane-web. "
                  "<a href=/metrics>Metrics</a> are served.")
_MOST_CONNECTIONS_WAITING = 512  # of the system's queue


class Server:
    """Listens at one address. Made in the event loop."""

    def __init__(self, site: Site, access: Access, *, pages: Optional[pathlib.Path], lobby: Optional[Lobby] = None
                 ) -> None:
        self._site = site
        self._lobby = Lobby() if lobby is None else lobby
        self._files = _read(pages)
        application = web.Application(client_max_size=1 << 12)
        application["site"] = site
        access.guard(application, self._lobby)
        for path in _PAGES:
            application.router.add_get(path, self._page)
        application.router.add_get("/metrics", self._metrics)
        application.router.add_get("/live", live)
        self._runner = web.AppRunner(application, access_log=None, keepalive_timeout=15.0, lingering_time=1.0,
                                     max_line_size=4096, max_field_size=4096)
        self._listening: Optional[asyncio.AbstractServer] = None

    async def start(self, at: socket.socket, tls: Optional[ssl.SSLContext] = None) -> None:
        """Begins to listen at a socket."""
        await self._runner.setup()
        server = self._runner.server
        assert server is not None
        self._listening = await asyncio.get_running_loop().create_server(
            self._lobby.protocols(server), sock=at, ssl=tls, backlog=_MOST_CONNECTIONS_WAITING,
            ssl_handshake_timeout=None if tls is None else 10.0)

    async def stop(self) -> None:
        """Ends every connection."""
        if self._listening is not None:
            self._listening.close()
        await self._runner.cleanup()
        self._site.close()

    async def _page(self, request: web.Request) -> web.Response:
        if self._files:
            body, kind = self._files[request.path]
            return web.Response(body=body, content_type=kind, charset="utf-8")
        if request.path == "/":
            return web.Response(text=_WITHOUT_PAGES, content_type="text/html")
        raise web.HTTPNotFound

    async def _metrics(self, _: web.Request) -> web.Response:
        text = await self._site.sessions.run(self._exposition)
        return web.Response(body=text.encode(), headers={"Content-Type": CONTENT_TYPE})

    def _exposition(self) -> str:
        site, told = self._site, Exposition()
        temperatures = {serial: {channel: each for channel, each in enumerate(board.temperatures) if each is not None}
                        for serial, board in list(site.fleet.boards.items())}
        expose(told, site.rack.counters(), site.fleet.counts, site.fleet.events_dropped, temperatures)
        told.gauge("orvane_serve_viewers", "Pages that are open.", site.viewers)
        told.gauge("orvane_serve_topics", "Things that somebody watches.", len(site.hub))
        told.counter("orvane_serve_messages_total", "Updates that were sent to pages.", site.messages)
        return told.text()


def _read(pages: Optional[pathlib.Path]) -> Dict[str, Tuple[bytes, str]]:
    """The files of the pages, which nothing but these paths leads to."""
    if pages is None:
        return {}
    return {path: ((pages / name).read_bytes(), kind) for path, (name, kind) in _PAGES.items()}


def pages_folder() -> Optional[pathlib.Path]:
    """Where the pages are: ORVANE_WEB, or where they are installed; None: nowhere."""
    chosen = os.environ.get("ORVANE_WEB")
    folders: List[pathlib.Path] = [pathlib.Path(chosen)] if chosen else [
        pathlib.Path(prefix) / "share" / "orvane" / "web" for prefix in (sys.prefix, "/usr/local", "/usr")]
    return next((each for each in folders if (each / "index.html").is_file()), None)
