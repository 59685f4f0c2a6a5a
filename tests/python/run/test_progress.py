"""Progress while a run goes on, and the rest time that it tells."""
import io
import types

import pytest

from orvane.run import progress


class Terminal(io.StringIO):
    """Standard error that is a terminal."""

    def isatty(self):
        return True


@pytest.fixture
def clock(monkeypatch):
    """A clock that stands still until it is moved."""
    clock = types.SimpleNamespace(now=100.0)
    monkeypatch.setattr(progress.time, "monotonic", lambda: clock.now)
    return clock


def watched(told, *, missing=100, finished=0, failed=0):
    recorder = types.SimpleNamespace(finished=finished, failed=failed)
    return progress.Progress(types.SimpleNamespace(missing=missing), recorder, told.append), recorder


@pytest.mark.parametrize("seconds, finished, failed, text", [
    (10, 0, 0, "0 of 100 points, rest: not known before the first points"),
    (10, 20, 0, "20 of 100 points, rest: 40 s"),
    (3600, 50, 3, "50 of 100 points, 3 failed, rest: 60 min"),
    (36000, 50, 0, "50 of 100 points, rest: 10.0 h"),
    (10, 100, 0, "100 of 100 points, rest: 0 s"),
])
def test_progress_tells_points_and_rest_time(clock, seconds, finished, failed, text):
    shown, recorder = watched([])
    recorder.finished, recorder.failed = finished, failed
    assert shown.text(seconds) == text


def test_points_of_an_earlier_session_do_not_count(clock):
    shown, recorder = watched([], missing=10, finished=5)
    recorder.finished = 7
    assert shown.text(4) == "2 of 10 points, rest: 16 s"


def test_file_gets_a_line_each_half_minute(clock):
    told = []
    shown, recorder = watched(told)
    for second in range(61):
        clock.now = 100.0 + second
        recorder.finished = second
        shown.show()
    assert told == ["30 of 100 points, rest: 70 s", "60 of 100 points, rest: 40 s"]


def test_terminal_has_one_line_that_is_renewed_and_cleared(clock, monkeypatch):
    screen = Terminal()
    monkeypatch.setattr(progress.sys, "stderr", screen)
    with watched([])[0] as shown:
        shown.show()
        clock.now += 0.5
        shown.show()
    assert screen.getvalue() == "\r\033[K0 of 100 points, rest: not known before the first points\r\033[K"
