"""A rack's counters as metrics."""
from __future__ import annotations

from collections import abc
from typing import Dict, List, Mapping

from orvane import _orvane
from orvane.events import BoardCounters, ProgramCounters
from orvane.metrics.events import EventCounts
from orvane.metrics.exposition import Exposition

__all__ = ["BUCKETS", "MOST_BOARDS", "OTHERS", "expose"]

BUCKETS = (0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1.0, 2.5)
"""upper bounds of the histogram, in seconds"""
MOST_BOARDS = 1_000
"""that have labels of their own"""
OTHERS = "other"
"""the label of the boards beyond, together"""

Temperatures = Mapping[str, Mapping[int, float]]


class _Histogram:
    def __init__(self) -> None:
        self.within = [0] * len(BUCKETS)
        self.sum = 0.0
        self.count = 0

    def add(self, latency: _orvane.Latency) -> None:
        within, total = latency.cumulative(list(BUCKETS))
        self.within = [known + more for known, more in zip(self.within, within)]
        self.sum += total
        self.count += latency.count


def expose(told: Exposition, counters: Mapping[str, BoardCounters], events: EventCounts, events_dropped: int,
           temperatures: Temperatures, most_boards: int = MOST_BOARDS) -> None:
    """Adds everything that is known of a rack; temperatures are those of a board's channels."""
    told.gauge("orvane_info", "The version of Orvane.", 1, version=_orvane.version)
    told.gauge("orvane_boards", "Boards that were opened.", len(counters))
    told.counter("orvane_events_dropped_total", "Events that were not taken because too many waited.", events_dropped)
    named = sorted(counters)[:most_boards]
    for board in named:
        _board(told, board, counters[board], events.sessions(board), events.pings_lost(board))
        for channel, celsius in temperatures.get(board, {}).items():
            told.gauge("orvane_temperature_celsius", "Temperature of a channel of a board's control.", celsius,
                       board=board, channel=str(channel))
    others = [each for each in counters if each not in set(named)]
    if others:
        _board(told, OTHERS, _together(counters[each] for each in others),
               sum(events.sessions(each) for each in others), sum(events.pings_lost(each) for each in others))
    _latencies(told, counters.values())


def _board(told: Exposition, board: str, counts: BoardCounters, sessions: int, pings_lost: int) -> None:
    for program, each in sorted(counts.programs.items()):
        if each.calls or each.repeats:
            _program(told, each, {"board": board, "program": program})
    told.gauge("orvane_sessions", "Sessions that are open on a board.", sessions, board=board)
    for name, what, value in (
            ("orvane_sessions_opened_total", "Sessions that were opened.", counts.opens),
            ("orvane_sessions_reopened_total", "Sessions that a board had lost and that were opened again.",
             counts.reopens),
            ("orvane_board_moves_total", "Times that a board was found at another address.", counts.moves),
            ("orvane_stray_datagrams_total", "Datagrams from a board that answered nothing.", counts.strays),
            ("orvane_pings_lost_total", "Pings of sessions that were not answered in time.", pings_lost)):
        told.counter(name, what, value, board=board)


def _program(told: Exposition, counts: ProgramCounters, labels: Dict[str, str]) -> None:
    other = counts.failed - counts.timed_out - counts.board_errors
    for outcome, value in (("succeeded", counts.succeeded), ("timed_out", counts.timed_out),
                           ("board_error", counts.board_errors), ("failed", max(0, other))):
        told.counter("orvane_calls_total", "Calls that ended, by how they ended.", value, **labels, outcome=outcome)
    told.counter("orvane_repeats_total", "Requests that were sent again.", counts.repeats, **labels)
    told.counter("orvane_sent_bytes_total", "Bytes of requests.", counts.bytes_sent, **labels)
    told.counter("orvane_received_bytes_total", "Bytes of answers.", counts.bytes_received, **labels)


def _latencies(told: Exposition, boards: abc.Iterable[BoardCounters]) -> None:
    programs: Dict[str, _Histogram] = {}
    for board in boards:
        for name, counts in board.programs.items():
            if counts.latency.count:
                programs.setdefault(name, _Histogram()).add(counts.latency)
    for name, each in sorted(programs.items()):
        told.histogram("orvane_call_duration_seconds", "How long calls took that succeeded, of all boards.",
                       list(zip(BUCKETS, each.within)), each.sum, each.count, program=name)


def _together(boards: abc.Iterable[BoardCounters]) -> BoardCounters:
    counts: List[int] = [0, 0, 0, 0]
    programs: Dict[str, ProgramCounters] = {}
    for each in boards:
        counts = [known + more for known, more in zip(counts, (each.opens, each.reopens, each.moves, each.strays))]
        for name, more in each.programs.items():
            programs[name] = _sum(programs[name], more) if name in programs else more
    return BoardCounters(programs, *counts)


def _sum(one: ProgramCounters, other: ProgramCounters) -> ProgramCounters:
    names = ("calls", "succeeded", "failed", "timed_out", "board_errors", "repeats", "bytes_sent", "bytes_received")
    sums: Dict[str, int] = {name: getattr(one, name) + getattr(other, name) for name in names}
    return ProgramCounters(**sums, latency=one.latency)  # the histogram is made of all boards' own
