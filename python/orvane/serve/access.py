"""Who is let in: names that the server answers to, the token of the printed address, the session's cookie."""
from __future__ import annotations

import asyncio
import secrets
from collections import abc
from typing import List, Optional

from aiohttp import hdrs, web

from orvane.serve.lobby import Lobby

__all__ = ["Access"]

_HEADERS = {
    "Content-Security-Policy": "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
                               "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'",
    "Cross-Origin-Opener-Policy": "same-origin",
    "Cross-Origin-Resource-Policy": "same-origin",
    "Referrer-Policy": "no-referrer",
    "X-Content-Type-Options": "nosniff",
    "Cache-Control": "no-store",
}
_SECONDS = 30.0  # for an answer; a live connection has limits of its own
_LIVE = "/live"

Handler = abc.Callable[[web.Request], abc.Awaitable[web.StreamResponse]]


class Access:
    """Decides about each request before anything else sees it.

    hosts  names and ports that a browser may have in its address line, such as "127.0.0.1:8765": another one is a
           name that somebody else made to point here
    """

    def __init__(self, hosts: abc.Iterable[str], port: int, *, token: Optional[str] = None, secure: bool = False
                 ) -> None:
        self.token = token or secrets.token_urlsafe(24)
        self._session = secrets.token_urlsafe(24)
        self._cookie = f"orvane-{port}"  # cookies do not tell ports apart
        self._hosts = frozenset(each.lower() for each in hosts)
        self._secure = secure
        self._lobby: Optional[Lobby] = None

    def guard(self, application: web.Application, lobby: Lobby) -> None:
        """Has every request of an application pass here, and every answer carry what browsers are to obey."""
        self._lobby = lobby
        application.middlewares.append(self._middleware)
        application.on_response_prepare.append(_add_headers)

    @property
    def _middleware(self) -> abc.Callable[[web.Request, Handler], abc.Awaitable[web.StreamResponse]]:
        @web.middleware
        async def decide(request: web.Request, handler: Handler) -> web.StreamResponse:
            assert self._lobby is not None
            with self._lobby.inside(request.protocol):
                self._check_origin(request)
                with_token = self._check_permission(request)
                answer = await (handler(request) if request.path == _LIVE
                                else asyncio.wait_for(handler(request), _SECONDS))
                if with_token:
                    answer.set_cookie(self._cookie, self._session, httponly=True, samesite="Strict", path="/",
                                      secure=self._secure)
                return answer
        return decide

    def _check_origin(self, request: web.Request) -> None:
        if request.method not in (hdrs.METH_GET, hdrs.METH_HEAD):
            raise web.HTTPMethodNotAllowed(request.method, [hdrs.METH_GET, hdrs.METH_HEAD])
        hosts: List[str] = request.headers.getall(hdrs.HOST, [])
        if len(hosts) != 1 or hosts[0].lower() not in self._hosts:
            raise web.HTTPForbidden(text="This server does not answer to that name.\n")
        origin = request.headers.get(hdrs.ORIGIN)
        own = f"{'https' if self._secure else 'http'}://{hosts[0].lower()}"
        if (origin is None and request.path == _LIVE) or (origin is not None and origin.lower() != own):
            raise web.HTTPForbidden(text="A page from elsewhere may not ask here.\n")

    def _check_permission(self, request: web.Request) -> bool:
        """True: by the token of the address."""
        if _equal(request.cookies.get(self._cookie, ""), self._session):
            return False
        if _equal(request.headers.get(hdrs.AUTHORIZATION, ""), f"Bearer {self.token}"):
            return False
        if request.path == "/" and _equal(request.query.get("token", ""), self.token):
            return True
        raise web.HTTPForbidden(text="Open the address that 'orvane serve' printed: it has the token.\n")


async def _add_headers(_: web.Request, answer: web.StreamResponse) -> None:
    for name, value in _HEADERS.items():
        answer.headers.setdefault(name, value)


def _equal(told: str, known: str) -> bool:
    return secrets.compare_digest(told.encode("utf-8", "surrogateescape"), known.encode())
