"""A real Prometheus that scrapes the server beside the lab, and is asked."""
import asyncio
import json
import shutil
import socket
import subprocess
import time
import urllib.error
import urllib.parse
import urllib.request

import pytest

from conftest import WAIT

pytestmark = pytest.mark.skipif(shutil.which("prometheus") is None, reason="needs prometheus")
REPEATS = 'orvane_repeats_total{board="OV0001",program="mdio"}'


@pytest.fixture
def token(tmp_path):
    """The file of the server's token."""
    return tmp_path / "token"


@pytest.fixture
def ask(tmp_path, token):
    """Begins Prometheus for a server; what it gives answers queries: the value of the one series, or None."""
    begun = []

    def begin(served):
        with socket.create_server(("127.0.0.1", 0)) as free:
            address = f"127.0.0.1:{free.getsockname()[1]}"
        (tmp_path / "prometheus.yml").write_text(json.dumps({
            "global": {"scrape_interval": "1s"},
            "scrape_configs": [{"job_name": "orvane", "authorization": {"credentials_file": str(token)},
                                "static_configs": [{"targets": [served.host]}]}]}))
        log = (tmp_path / "log").open("w")
        begun.append(subprocess.Popen(["prometheus", f"--config.file={tmp_path}/prometheus.yml", "--log.level=warn",
                                       f"--storage.tsdb.path={tmp_path}/data", f"--web.listen-address={address}"],
                                      stdout=log, stderr=log))

        def query(text):
            url = f"http://{address}/api/v1/query?query={urllib.parse.quote(text)}"
            try:
                with urllib.request.urlopen(url, timeout=WAIT) as answer:
                    found = json.load(answer)["data"]["result"]
            except urllib.error.URLError:  # it has not begun yet
                return None
            return float(found[0]["value"][1]) if len(found) == 1 else None
        return query

    yield begin
    for process in begun:
        process.terminate()
        process.wait(WAIT)


def wait_for(query, text, value):
    """Waits until a query has an answer of this value."""
    end = time.monotonic() + 2 * WAIT
    while (found := query(text)) != value:
        assert time.monotonic() < end, f"{text} is {found}"
        time.sleep(0.2)


def test_three_lost_replies_are_three_repeats_to_prometheus(serve, board, ask, token):
    served = serve("--token-file", str(token))
    query = ask(served)

    async def act():
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            topic = await viewer.watch("registers", port="OV0001:0", phy=3, names=["PMA.CONTROL1"], interval=1.0)
            await viewer.until(topic, lambda values: "0" in values)
            await asyncio.to_thread(wait_for, query, REPEATS, 0)
            board.inject("lose-reply", procedure="mdio_read", count=3)
            await asyncio.to_thread(wait_for, query, REPEATS, 3)
    asyncio.run(act())
    wait_for(query, 'up{job="orvane"}', 1)
    assert query("count(orvane_call_duration_seconds_bucket) > 13") is not None


def test_scrape_without_the_token_is_refused(serve, ask, token):
    token.write_text("another-token-of-somebody-else\n")
    query = ask(serve())
    wait_for(query, 'up{job="orvane"}', 0)
