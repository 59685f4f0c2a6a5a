"""orvane metrics: what a rack counts, in a file for node-exporter."""
from __future__ import annotations

import argparse
import contextlib
import math
import os
import signal
import sys
import tempfile
import threading
from collections import abc
from typing import Dict, Optional

from orvane.errors import Error
from orvane.metrics import EventCounts, Exposition, expose
from orvane.rack import Port, Rack

__all__ = ["main"]

SUCCESS, FAILED = 0, 1
_CHANNELS = 4  # of a board's temperature control
_LONGEST_NEWS = 5.0  # seconds that the news of a session may take
_EXAMPLES = """\
  orvane metrics
  orvane metrics 'OV00*:0' --textfile /var/lib/prometheus/node-exporter/orvane.prom --interval 15

Once, or every --interval seconds, each board is pinged and asked for its temperatures; then the file is replaced as a
whole. Without --textfile the metrics are printed.

Exit status: 0 success (a board that does not answer is a metric), 1 something failed, 2 wrong usage.
"""


def main(arguments: Optional[abc.Sequence[str]] = None) -> int:
    """The command line without its name; returns the exit status."""
    parser = argparse.ArgumentParser(prog="orvane metrics", description="Count what boards answer, for Prometheus.",
                                     epilog=_EXAMPLES, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("ports", metavar="PORT", nargs="*", help="such as OV0001:0, with * and ?; '*:0' unless told")
    parser.add_argument("--textfile", metavar="FILE", help="write this file, whose name is to end in .prom")
    parser.add_argument("--interval", metavar="SECONDS", type=float, help="go on, a round every so many seconds")
    told = parser.parse_args(sys.argv[1:] if arguments is None else arguments)
    if told.interval is not None and not (math.isfinite(told.interval) and told.interval > 0):
        parser.error("--interval is more than 0 seconds")
    over = threading.Event()
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda *_: over.set())
    try:
        with Rack() as rack:
            events = EventCounts()
            rack.on_event(events.take)
            while True:
                _write(_round(rack, events, told.ports or ["*:0"]), told.textfile)
                if told.interval is None or over.wait(told.interval):
                    return SUCCESS
    except (Error, OSError) as problem:
        sys.stderr.write(f"orvane: metrics: {problem}\n")
        return FAILED


def _round(rack: Rack, events: EventCounts, names: abc.Sequence[str]) -> str:
    """Asks every board once; the sessions stay open, so that their pings are counted, too."""
    told = Exposition()
    ports = rack.open_all(*names, phys=[0], within=10.0)
    temperatures: Dict[str, Dict[int, float]] = {}
    for port in ports:
        answered = _answers(port)
        told.gauge("orvane_board_up", "Whether a board answered in the last round.", int(answered), board=port.board)
        if answered:
            temperatures[port.board] = _temperatures(port)
            events.await_session(port.board, _LONGEST_NEWS)
    expose(told, rack.counters(), events, 0, temperatures)
    return told.text()


def _answers(port: Port) -> bool:
    try:
        port.shell.ping(within=1.0)
        return True
    except Error:
        return False


def _temperatures(port: Port) -> Dict[int, float]:
    found = {}
    for channel in range(_CHANNELS):
        with contextlib.suppress(Error):  # a board without that channel, or without control
            celsius = port.thermal[channel].temperature
            if math.isfinite(celsius):
                found[channel] = celsius
    return found


def _write(text: str, path: Optional[str]) -> None:
    """Replaces the file as a whole: its reader never sees half of it."""
    if path is None:
        sys.stdout.write(text)
        sys.stdout.flush()
        return
    folder = os.path.dirname(os.path.abspath(path))
    number, name = tempfile.mkstemp(dir=folder, prefix=".orvane-", suffix=".new")
    try:
        with os.fdopen(number, "w", encoding="utf-8") as file:
            file.write(text)
            os.fchmod(file.fileno(), 0o644)
        os.replace(name, path)
    except BaseException:
        os.unlink(name)
        raise


if __name__ == "__main__":
    sys.exit(main())
