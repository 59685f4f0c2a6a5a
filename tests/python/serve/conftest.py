"""What the tests of the web server share: a server of its own process, and viewers."""
import asyncio
import contextlib
import json
import subprocess
import sys
import urllib.parse

import aiohttp
import pytest

WAIT = 30.0  # seconds for what happens at once on a quiet machine


class Refusal(Exception):
    """A request was answered by an error."""


class Viewer:
    """An open page: requests, and the newest values of what it watches."""

    def __init__(self, socket):
        self.socket = socket
        self.values = {}
        self.messages = []
        self._count = 0

    async def ask(self, do, **members):
        """The answer to a request; updates that come meanwhile are taken."""
        self._count += 1
        await self.socket.send_json({"id": self._count, "do": do, **members})
        while True:
            message = await self.receive()
            if message.get("id") == self._count:
                if "error" in message:
                    raise Refusal(message["error"])
                return message["ok"]

    async def watch(self, kind, **members):
        """Watches something; the number of its topic."""
        return (await self.ask("watch", kind=kind, **members))["topic"]

    async def receive(self):
        """The next message."""
        message = json.loads((await asyncio.wait_for(self.socket.receive(), WAIT)).data)
        if "topic" in message:
            self.messages.append(message)
            self.values.setdefault(message["topic"], {}).update(message["set"])
        return message

    async def until(self, topic, holds):
        """Waits for values of a topic; what they are then."""
        async def wait():
            while not (topic in self.values and holds(self.values[topic])):
                await self.receive()
        await asyncio.wait_for(wait(), WAIT)
        return self.values[topic]

    async def find(self, *boards):
        """Watches the rack until these boards are found."""
        rack = await self.watch("rack")
        await self.until(rack, lambda rows: set(boards) <= set(rows))
        return rack


class Served:
    """A running server."""

    def __init__(self, process):
        self.process = process
        self.address = process.stdout.readline().strip()
        parts = urllib.parse.urlsplit(self.address)
        self.origin = f"{parts.scheme}://{parts.netloc}"
        self.host = parts.netloc
        self.port = parts.port
        self.token = urllib.parse.parse_qs(parts.query)["token"][0]

    @contextlib.asynccontextmanager
    async def session(self):
        """A browser that has opened the address."""
        async with aiohttp.ClientSession(cookie_jar=aiohttp.CookieJar(unsafe=True)) as session:
            async with session.get(self.address) as answer:
                assert answer.status == 200
            yield session

    @contextlib.asynccontextmanager
    async def viewer(self):
        """One open page."""
        async with self.session() as session:
            async with session.ws_connect(f"{self.origin}/live", headers={"Origin": self.origin}) as socket:
                yield Viewer(socket)


@pytest.fixture(scope="session")
def beginning():
    """Starts servers that end with the tests."""
    begun = []

    def start(*words):
        process = subprocess.Popen([sys.executable, "-m", "orvane.serve", "--port", "0", *words], text=True,
                                   stdout=subprocess.PIPE)
        begun.append(process)
        return Served(process)

    yield start
    for process in begun:
        process.terminate()
    for process in begun:
        assert process.wait(WAIT) == 0
        process.stdout.close()


@pytest.fixture(scope="session")
def usual(beginning):
    """A server without options, for all tests that need no other."""
    return beginning()


@pytest.fixture
def serve(lab, beginning, usual):
    """Gives a server: serve() the usual one, serve("--write") one of its own."""
    for board in lab.boards():
        board.clear()
    return lambda *words: beginning(*words) if words else usual
