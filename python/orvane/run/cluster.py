"""The workers of a scheduler of Dask distributed, asked beside its tasks. Every call ends in a bounded time."""
from __future__ import annotations

import asyncio
import contextlib
import importlib
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Set, Tuple

from orvane.run.host import Host, resource_of
from orvane.run.recipe import RecipeError

__all__ = ["ANSWER", "CONNECT", "Cluster"]

CONNECT = 10.0
"""seconds for the scheduler"""
ANSWER = 60.0
"""seconds for what workers do"""


class Cluster:
    """A scheduler and its workers. Its methods are called by one thread; they raise OSError or asyncio.TimeoutError
    when the scheduler does not answer."""

    def __init__(self, dask: Any, name: str, host: Host) -> None:
        """`dask`: a scheduler's address, or a client; `host` becomes the plugin `name` of every worker, also of those
        that begin later."""
        self._name = name
        self._own = not hasattr(dask, "submit")
        self.client = _client(dask) if self._own else dask
        self._telling: Optional[asyncio.Future[None]] = None
        self.address = str(self.client.scheduler.address)
        self.reached: Dict[str, Set[str]] = {}
        """workers by the port that they have announced, as look() has found it"""
        self._processes: Dict[str, str] = {}
        try:
            self.call(lambda: self.client.register_worker_plugin(host, name), ANSWER)
        except Exception as problem:
            self.close(CONNECT)
            raise RecipeError(f"a worker of {self.address} cannot take part: {problem}") from problem

    def call(self, work: Callable[[], Any], within: float) -> Any:
        """What an asynchronous call gives."""
        async def bounded() -> Any:
            return await asyncio.wait_for(work(), within)
        return self.client.sync(bounded)

    def look(self) -> Dict[str, Any]:
        """The workers that are connected, by address."""
        workers: Dict[str, Any] = self.call(lambda: self.client.scheduler.identity(), CONNECT)["workers"]
        self.reached = {}
        self._processes = {address: worker["local_directory"] for address, worker in workers.items()}
        for address, worker in workers.items():
            for resource, count in worker["resources"].items():
                if count and resource.startswith(resource_of("")):
                    self.reached.setdefault(resource[len(resource_of("")):], set()).add(address)
        return workers

    def processes(self, workers: abc.Iterable[str]) -> Set[str]:
        """Names of those that are connected: another one for each process, also when it is begun again."""
        return {self._processes[each] for each in workers if each in self._processes}

    def ask(self, function: Callable[..., Any], arguments: abc.Mapping[str, Tuple[Any, ...]], within: float
            ) -> Dict[str, Any]:
        """Calls a function on workers, each with its arguments; what each gives, or what went wrong."""
        async def one(worker: str) -> Any:
            try:
                asked = self.client.run(function, self._name, *arguments[worker], workers=[worker], on_error="return")
                return (await asyncio.wait_for(asked, within))[worker]
            except (asyncio.TimeoutError, OSError, KeyError) as problem:
                return ConnectionError(f"its host does not answer: {problem or type(problem).__name__}")

        async def all_of_them() -> Any:
            return await asyncio.gather(*map(one, arguments))
        return dict(zip(arguments, self.call(all_of_them, within + 5)))

    def keep_telling(self, function: Callable[..., Any], what: Callable[[], Any], pause: float) -> None:
        """Calls a function on all workers again and again until close(), whatever the caller does meanwhile; what() is
        its argument. A worker that does not answer holds the others up for ten seconds at most."""
        async def tell() -> None:
            while True:
                call = self.client.run(function, self._name, what(), on_error="ignore")
                with contextlib.suppress(asyncio.TimeoutError, OSError):
                    await asyncio.wait_for(call, CONNECT)
                await asyncio.sleep(pause)

        async def begin() -> None:
            self._telling = asyncio.ensure_future(tell())
        self.call(begin, CONNECT)

    async def _end_telling(self) -> None:
        if self._telling is not None:
            self._telling.cancel()
            await asyncio.wait([self._telling])

    def results(self, futures: List[Any]) -> List[Any]:
        """Of tasks that have finished. Empty when one was lost with its worker: it is done again."""
        async def fetch() -> Any:
            return await self.client.gather(futures, errors="skip")
        try:
            return list(self.call(fetch, CONNECT)) if futures else []
        except asyncio.TimeoutError:
            return []

    def close(self, within: float) -> None:
        """Takes the plugin from the workers, which ends its work there."""
        with contextlib.suppress(Exception):  # the hosts end by themselves when they hear nothing
            self.call(self._end_telling, CONNECT)
            self.call(lambda: self.client.unregister_worker_plugin(self._name), within)
        if self._own:
            self.client.close(timeout=CONNECT)


def _client(address: Any) -> Any:
    try:
        distributed = importlib.import_module("distributed")
    except ImportError as problem:
        raise RecipeError("this needs distributed, which is not installed (Debian: python3-distributed)") from problem
    return distributed.Client(str(address), timeout=CONNECT, set_as_default=False)
