"""Connections that ask for nothing, or slowly."""
import asyncio
import collections
import contextlib
import os
import socket

import aiohttp
import pytest

from orvane.serve.access import Access
from orvane.serve.lobby import Lobby
from orvane.serve.server import Server
from orvane.serve.site import Site, Wishes


@contextlib.asynccontextmanager
async def server(rack, places, seconds):
    """A server in this process: its port, its lobby, the address to open."""
    listening = socket.create_server(("127.0.0.1", 0), backlog=512)
    port = listening.getsockname()[1]
    access = Access([f"127.0.0.1:{port}"], port)
    lobby = Lobby(places, seconds)
    served = Server(Site(Wishes(), rack), access, pages=None, lobby=lobby)
    await served.start(listening)
    try:
        yield port, lobby, f"http://127.0.0.1:{port}/?token={access.token}"
    finally:
        await served.stop()


async def is_served(address):
    async with aiohttp.ClientSession() as session:
        async with session.get(address) as answer:
            return answer.status == 200


IDLE = int(os.environ.get("ORVANE_IDLE_CONNECTIONS", "1000"))  # ./check web has ten thousand


def test_thousands_of_idle_connections_leave_room_for_a_viewer(rack):
    async def act():
        async with server(rack, places=32, seconds=60) as (port, lobby, address):
            most = await asyncio.to_thread(connect, port, lobby)
            return most, await is_served(address)

    def connect(port, lobby):
        """Keeps the newest open; the server is not told of the others' end before it looks."""
        for _ in range(IDLE):
            kept.append(socket.create_connection(("127.0.0.1", port), timeout=30))
        for connection in list(kept)[:-32]:
            with contextlib.suppress(ConnectionResetError):
                assert connection.recv(1) == b""  # closed, and not only forgotten
        return len(lobby)

    kept = collections.deque(maxlen=500)
    most, served = asyncio.run(act())
    assert most <= 32
    assert served


def test_connection_that_says_nothing_is_closed(rack):
    async def act():
        async with server(rack, places=8, seconds=0.2) as (port, lobby, _):
            reader, _ = await asyncio.open_connection("127.0.0.1", port)
            with contextlib.suppress(ConnectionResetError):
                assert await asyncio.wait_for(reader.read(), 30) == b""
            return len(lobby)
    assert asyncio.run(act()) == 0


def test_request_that_trickles_in_is_ended(rack):
    async def act():
        async with server(rack, places=8, seconds=0.5) as (port, _, address):
            reader, writer = await asyncio.open_connection("127.0.0.1", port)
            with pytest.raises(ConnectionError):
                for byte in b"GET / HTTP/1.1\r\nHost: " + b"x" * 1000:
                    writer.write(bytes([byte]))
                    await writer.drain()
                    await asyncio.sleep(0.02)
            return await is_served(address)
    assert asyncio.run(act())


def test_connection_that_was_answered_waits_again_and_is_closed(rack):
    async def act():
        async with server(rack, places=8, seconds=0.3) as (port, lobby, address):
            reader, writer = await asyncio.open_connection("127.0.0.1", port)
            path = address.partition(f":{port}")[2]
            writer.write(f"GET {path} HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\n\r\n".encode())
            answer = b""
            with contextlib.suppress(ConnectionResetError):
                while chunk := await asyncio.wait_for(reader.read(65536), 30):
                    answer += chunk
            return answer, len(lobby)
    answer, waiting = asyncio.run(act())
    assert answer.startswith(b"HTTP/1.1 200")
    assert waiting == 0


def test_live_connection_waits_for_nothing_and_stays(rack):
    async def act():
        async with server(rack, places=8, seconds=0.3) as (port, lobby, address):
            async with aiohttp.ClientSession(cookie_jar=aiohttp.CookieJar(unsafe=True)) as session:
                async with session.get(address):
                    pass
                headers = {"Origin": f"http://127.0.0.1:{port}"}
                async with session.ws_connect(f"http://127.0.0.1:{port}/live", headers=headers) as live:
                    await asyncio.sleep(1)  # longer than others may wait
                    await live.send_json({"id": 1, "do": "hello"})
                    return await live.receive_json(timeout=30)
    assert asyncio.run(act())["ok"]["write"] is False
