"""The connection of one viewer: requests in, answers and what has changed out."""
from __future__ import annotations

import asyncio
import contextlib
import json
import logging
from typing import Any, Dict, Set

from aiohttp import WSMsgType, web

from orvane.errors import Error
from orvane.serve.requests import Requests
from orvane.serve.site import Site
from orvane.serve.topics import Topic

__all__ = ["Viewer", "live"]

MOST_VIEWERS = 200
_MOST_BYTES = 1 << 18  # of a request
_AT_ONCE = 8  # requests of one viewer
_PATIENCE = 30.0  # seconds for a viewer to take a message
_HEARTBEAT = 20.0
_log = logging.getLogger("orvane.serve")


class Viewer:
    """One open page. Nothing queues for it: it is told the newest values when it can take them."""

    def __init__(self, site: Site, socket: web.WebSocketResponse) -> None:
        self._site = site
        self._socket = socket
        self._requests = Requests(site, self)
        self._seen: Dict[int, int] = {}
        self._news: Set[Topic] = set()
        self._wake = asyncio.Event()
        self._answers: Set[asyncio.Task[None]] = set()

    def notice(self, topic: Topic) -> None:
        """A topic has something new."""
        self._news.add(topic)
        self._wake.set()

    async def serve(self) -> None:
        """Until it leaves."""
        telling = asyncio.create_task(self._tell())
        try:
            async for message in self._socket:
                if message.type is not WSMsgType.TEXT or not self._take(message.data):
                    break
        finally:
            self._requests.end()
            for task in (telling, *self._answers):
                task.cancel()

    def _take(self, text: str) -> bool:
        """Whether it is a request at all."""
        try:
            request = json.loads(text)
        except (ValueError, RecursionError):
            request = None
        if not isinstance(request, dict):
            return False
        task = asyncio.create_task(self._answer(request, len(self._answers) >= _AT_ONCE))
        self._answers.add(task)
        task.add_done_callback(self._answers.discard)
        return True

    async def _answer(self, request: Dict[str, Any], too_many: bool) -> None:
        answer: Dict[str, Any] = {"id": request.get("id")}
        try:
            if too_many:
                raise ValueError("too many requests at once")
            answer["ok"] = await self._requests.answer(request)
        except (Error, ValueError, OSError) as problem:
            answer["error"] = str(problem)
        except Exception:
            _log.exception("a request failed")
            answer["error"] = "the server made a mistake; its log says which"
        await self._send(json.dumps(answer, separators=(",", ":")))

    async def _tell(self) -> None:
        while True:
            await self._wake.wait()
            self._wake.clear()
            news, self._news = self._news, set()
            for topic in news:
                if self not in topic.watchers:
                    self._seen.pop(topic.number, None)
                    continue
                self._seen[topic.number], text = topic.since(self._seen.get(topic.number, 0))
                if text is not None:
                    self._site.messages += 1
                    await self._send(text)

    async def _send(self, text: str) -> None:
        try:
            await asyncio.wait_for(self._socket.send_str(text), _PATIENCE)
        except (ConnectionError, asyncio.TimeoutError):
            with contextlib.suppress(Exception):
                assert self._socket._req is not None and self._socket._req.transport is not None
                self._socket._req.transport.abort()


async def live(request: web.Request) -> web.StreamResponse:
    """Serves a viewer until it leaves."""
    site: Site = request.app["site"]
    if site.viewers >= MOST_VIEWERS:
        raise web.HTTPServiceUnavailable(text=f"{MOST_VIEWERS} viewers are here already.\n")
    socket = web.WebSocketResponse(heartbeat=_HEARTBEAT, max_msg_size=_MOST_BYTES, compress=False)
    await socket.prepare(request)
    site.viewers += 1
    try:
        await Viewer(site, socket).serve()
    finally:
        site.viewers -= 1
    return socket
