"""What a rack counts, as Prometheus reads it."""
import dataclasses
import shutil
import subprocess
import sys
import threading

import pytest

import orvane
from orvane.metrics import EventCounts, Exposition, expose


def samples(text):
    """Values by name and labels."""
    return {line.rpartition(" ")[0]: float(line.rpartition(" ")[2]) for line in text.splitlines() if line[0] != "#"}


def exposed(rack, events=None, **how):
    told = Exposition()
    expose(told, rack.counters(), events or EventCounts(), 0, {}, **how)
    return samples(told.text())


def orvane_metrics(*words):
    return subprocess.run([sys.executable, "-m", "orvane.metrics", *words], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=60)


@pytest.fixture
def calm(lab):
    """All boards without faults."""
    for board in lab.boards():
        board.clear()


def test_three_lost_replies_show_as_three_repeats(rack, phy, board):
    before = exposed(rack).get('orvane_repeats_total{board="OV0001",program="mdio"}', 0)
    board.inject("lose-reply", procedure="mdio_read", count=3)
    phy[1, 2]
    told = exposed(rack)
    assert told['orvane_repeats_total{board="OV0001",program="mdio"}'] == before + 3
    assert told['orvane_calls_total{board="OV0001",program="mdio",outcome="succeeded"}'] == 1


def test_code_of_the_board_and_silence_are_outcomes_of_their_own(rack, phy, board):
    board.inject("result", procedure="mdio_read", code=-121)
    with pytest.raises(orvane.BoardError):
        phy[1, 2]
    board.inject("lose-reply", procedure="mdio_read", count=-1)
    with pytest.raises(orvane.TimedOut):
        phy.read((1, 2), within=0.3)
    told = exposed(rack)
    assert told['orvane_calls_total{board="OV0001",program="mdio",outcome="board_error"}'] == 1
    assert told['orvane_calls_total{board="OV0001",program="mdio",outcome="timed_out"}'] == 1
    assert told['orvane_calls_total{board="OV0001",program="mdio",outcome="failed"}'] == 0


def test_histogram_has_every_call_and_grows_with_its_bounds(rack, phy):
    for _ in range(20):
        phy[1, 2]
    told = exposed(rack)
    buckets = [value for name, value in told.items()
               if name.startswith("orvane_call_duration_seconds_bucket") and '"mdio"' in name]
    assert buckets == sorted(buckets) and buckets[-1] == 20
    assert told['orvane_call_duration_seconds_count{program="mdio"}'] == 20
    assert 0 < told['orvane_call_duration_seconds_sum{program="mdio"}'] < 20


def test_sessions_are_counted_while_they_are_open(rack, board):
    events = EventCounts()
    told = {kind: threading.Event() for kind in (orvane.EventKind.OPENED, orvane.EventKind.CLOSED)}

    def take(event):
        events.take(event)
        if event.kind in told:
            told[event.kind].set()

    rack.on_event(take)
    phy = rack.open("OV0001:0").phy(3)
    phy.open()
    assert told[orvane.EventKind.OPENED].wait(30)
    opened = exposed(rack, events)['orvane_sessions{board="OV0001"}']
    phy.close()
    assert told[orvane.EventKind.CLOSED].wait(30)
    assert (opened, exposed(rack, events)['orvane_sessions{board="OV0001"}']) == (1, 0)


def test_session_is_awaited_until_its_event_has_come(rack, board):
    events = EventCounts()
    goes_on = threading.Event()

    def take(event):
        goes_on.wait(30)
        events.take(event)

    rack.on_event(take)
    phy = rack.open("OV0001:0").phy(3)
    phy.open()
    early = events.await_session("OV0001", 0)
    goes_on.set()
    assert (early, events.await_session("OV0001", 30), events.sessions("OV0001")) == (False, True, 1)


def test_boards_beyond_the_most_are_counted_together(rack, calm):
    for port in rack.open_all("OV*:0", phys=[3]):
        port.phy(3).read(1, 2)
    told = exposed(rack, most_boards=2)
    boards = {name.split('"')[1] for name in told if 'board="' in name}
    assert boards == {"OV0001", "OV0002", "other"}
    assert told['orvane_calls_total{board="other",program="mdio",outcome="succeeded"}'] == 6
    assert told["orvane_boards"] == 8


def test_label_of_a_hostile_name_stays_a_label():
    told = Exposition()
    told.gauge("it", "Text.", 1, board='a"} 7\nevil{b="\\')
    assert told.text() == '# HELP it Text.\n# TYPE it gauge\nit{board="a\\"} 7\\nevil{b=\\"\\\\"} 1\n'


def test_no_label_is_a_register(rack, phy):
    phy[30, 0xC010] = 0xCAFE
    told = Exposition()
    expose(told, rack.counters(), EventCounts(), 0, {"OV0001": {0: 25.0}})
    labels = {part.split("=")[0] for name in samples(told.text()) if "{" in name
              for part in name.partition("{")[2].rstrip("}").split(",")}
    assert labels == {"board", "program", "outcome", "channel", "le", "version"}


def test_round_without_a_file_is_printed(calm):
    ended = orvane_metrics("OV0001:0", "OV0002:0")
    told = samples(ended.stdout)
    assert (ended.returncode, ended.stderr) == (0, "")
    assert told['orvane_board_up{board="OV0001"}'] == told['orvane_board_up{board="OV0002"}'] == 1
    assert told['orvane_temperature_celsius{board="OV0001",channel="0"}'] == 25.0
    assert told['orvane_sessions{board="OV0001"}'] == 1


def test_board_that_does_not_answer_is_a_metric(board, calm):
    board.inject("lose-request", procedure="ping", count=-1)
    ended = orvane_metrics("OV0001:0")
    assert ended.returncode == 0
    assert samples(ended.stdout)['orvane_board_up{board="OV0001"}'] == 0


def test_file_is_replaced_as_a_whole_and_may_be_read_by_others(calm, tmp_path):
    file = tmp_path / "orvane.prom"
    file.write_text("old\n")
    with file.open() as reader:
        assert orvane_metrics("OV0001:0", "--textfile", str(file)).returncode == 0
        assert reader.read() == "old\n"
    assert 'orvane_board_up{board="OV0001"} 1\n' in file.read_text()
    assert file.stat().st_mode & 0o777 == 0o644
    assert list(tmp_path.iterdir()) == [file]


def test_folder_that_is_not_there_is_told(calm):
    ended = orvane_metrics("OV0001:0", "--textfile", "/no/folder/orvane.prom")
    assert ended.returncode == 1
    assert ended.stderr.startswith("orvane: metrics: [Errno 2] No such file or directory")


@pytest.mark.skipif(shutil.which("promtool") is None, reason="needs promtool (Debian: prometheus)")
def test_checker_of_prometheus_has_nothing_to_say(calm):
    text = orvane_metrics("OV*:0").stdout
    checked = subprocess.run(["promtool", "check", "metrics"], input=text, text=True, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT)
    assert (checked.returncode, checked.stdout) == (0, "")


def test_sum_of_boards_has_every_count():
    assert {each.name for each in dataclasses.fields(orvane.ProgramCounters)} == {
        "calls", "succeeded", "failed", "timed_out", "board_errors", "repeats", "bytes_sent", "bytes_received",
        "latency"}
