"""Racks and ports: finding, opening, closing, many boards at once."""
import logging
import queue
import time

import numpy
import pytest

import orvane


def test_search_finds_every_board(rack):
    found = rack.discover()
    assert [each.serial for each in found] == [f"OV{number:04}" for number in range(1, 9)]
    assert found[0].ports == (0, 1, 10)
    assert found.malformed == 0
    assert str(found[0]) == "OV0001 at 10.83.0.1, ports 0, 1, 10"
    assert "<td>OV0008</td>" in found._repr_html_()


def test_search_ends_when_it_is_told_that_it_is_enough(rack):
    told = []

    def enough(board):
        told.append(board)
        return len(told) == 2

    begun = time.monotonic()
    found = rack.discover(enough, within=60)
    assert time.monotonic() - begun < 30
    assert {each.serial for each in told} <= {each.serial for each in found}
    assert len(told) == 2


def test_what_the_end_of_a_search_raises_leaves_it(rack):
    def enough(board):
        raise KeyError(board.serial)

    with pytest.raises(KeyError, match="OV000"):
        rack.discover(enough, within=60)


def test_boards_are_asked_at_their_addresses(rack, lab):
    before = lab["OV0003"].received("discovery")
    found = rack.ask("10.83.0.2", "10.83.0.1")
    assert [(each.serial, each.address) for each in found] == [("OV0001", "10.83.0.1"), ("OV0002", "10.83.0.2")]
    assert lab["OV0003"].received("discovery") == before
    with pytest.raises(ValueError):
        rack.ask("nowhere")


def test_log_has_a_line_for_each_access_and_note(rack, board, tmp_path):
    rack.log_to(tmp_path / "access.log")
    phy = rack.open("OV0001:0").phy(3)
    phy[30, 0x11] = 0xBEEF
    rack.note("half way")
    phy[30, 0x11]
    rack.log_to(None)
    phy[30, 0x12]
    text = (tmp_path / "access.log").read_text()
    assert [each in text for each in ("BEEF", "half way")] == [True, True]
    assert sum("0011" in line for line in text.splitlines()) == 2
    assert "0012" not in text


def test_log_lines_come_to_a_function(rack, board):
    lines = []
    rack.log_to(lines.append)
    rack.open("OV0001:0").phy(3)[30, 0x11] = 0xBEEF
    rack.note("done")
    assert all(each.endswith("\n") for each in lines)
    assert sum("BEEF" in line for line in lines) == 1
    assert "done" in lines[-1]


def test_log_that_cannot_be_written_is_refused(rack, tmp_path):
    with pytest.raises(ValueError):
        rack.log_to(tmp_path / "nowhere" / "access.log")


def test_open_all_takes_the_ports_that_match(rack):
    assert [port.name for port in rack.open_all("OV000[12]:1*")] == ["OV0001:1", "OV0001:10", "OV0002:1", "OV0002:10"]


def test_open_all_opens_the_sessions_of_its_phys_together(rack, lab):
    ports = rack.open_all("OV000[12]:0", phys=[3, 4], exclusive=0x4711)
    assert [lab[serial].sessions for serial in ("OV0001", "OV0002")] == [2, 2]
    assert [repr(port) for port in ports] == ["<orvane.Port OV0001:0, exclusive 0x4711>",
                                              "<orvane.Port OV0002:0, exclusive 0x4711>"]
    assert ports.failures == {}


def test_open_all_tells_what_is_not_there_and_opens_the_rest(rack):
    ports = rack.open_all("OV9999:0", "OV0001:0", "XX*", within=0.5)
    assert [port.name for port in ports] == ["OV0001:0"]
    assert {name: type(failure) for name, failure in ports.failures.items()} == {
        "OV9999:0": orvane.NoSuchPort, "XX*": orvane.NoSuchPort}


def test_open_all_refuses_phys_that_no_port_has(rack):
    with pytest.raises(ValueError, match="PHY 128 is out of range: 0 to 127"):
        rack.open_all("OV0001:0", phys=[128])


def test_sessions_that_were_closed_together_open_again_with_their_next_use(rack, lab):
    phys = [port.phy(3) for port in rack.open_all("OV000[12]:0", phys=[3])]
    assert rack.close_sessions() == []
    assert [lab[serial].sessions for serial in ("OV0001", "OV0002")] == [0, 0]
    assert phys[0][1, 2] == phys[1][1, 2]


def test_known_board_is_opened_without_a_search(rack, lab):
    before = lab["OV0001"].received("discovery")
    rack.know("OV0001", "10.83.0.1")
    rack.open("ov0001:0").phy(3).open()
    assert lab["OV0001"].received("discovery") == before


def test_context_manager_closes_the_session_on_the_board(rack, board):
    with rack.open("OV0001:0", exclusive=0x4711) as port:
        phy = port.phy(3)
        phy[1, 2]
        assert (board.sessions, phy.is_open, phy.key) == (1, True, 0x4711)
    assert board.sessions == 0
    with pytest.raises(RuntimeError, match="^closed$"):
        phy[1, 2]
    with pytest.raises(RuntimeError, match="^closed$"):
        port.phy(4)


def test_port_that_is_closed_leaves_the_session_to_another_one(rack, board):
    ports = [rack.open("OV0001:0") for _ in range(2)]
    phys = [port.phy(3) for port in ports]
    phys[0].open()
    ports[0].close()
    assert (board.sessions, phys[1].is_open) == (1, True)
    ports[1].close()
    assert board.sessions == 0


def test_last_handle_closes_the_session(rack, board):
    phy = rack.open("OV0001:0").phy(3)
    phy[1, 2]
    assert board.sessions == 1
    del phy
    assert board.sessions == 0


def test_closed_rack_has_closed_its_sessions(lab):
    rack = orvane.Rack()
    phys = [rack.open(f"OV000{number}:0").phy(3) for number in (1, 2)]
    for phy in phys:
        phy.open()
    rack.close()
    assert [lab[serial].sessions for serial in ("OV0001", "OV0002")] == [0, 0]
    assert repr(rack) == "<orvane.Rack, closed>"
    with pytest.raises(RuntimeError, match="^closed$"):
        phys[0][1, 2]
    rack.close()


@pytest.mark.parametrize("arguments", [{"exclusive": 0x10000}, {"shared": -1}, {"exclusive": 1, "shared": 1}])
def test_access_that_makes_no_sense_is_a_value_error(rack, arguments):
    with pytest.raises(ValueError):
        rack.open("OV0001:0", **arguments)


def test_read_all_reads_every_board_in_order(rack, lab):
    ports = rack.open_all("OV*:0")
    for number, port in enumerate(ports):
        port.phy(3)[30, 0x30] = number
    values = orvane.read_all(ports, (30, 0x30), phy=3)
    assert list(values) == list(range(8))
    assert values.values.dtype == numpy.uint32
    assert repr(values) == "<orvane.Readings: 8 read>"


def test_board_that_fails_leaves_the_others_alone(rack, lab):
    phys = [port.phy(3) for port in rack.open_all("OV000[123]:0")]
    orvane.read_all(phys, (1, 2))
    lab["OV0002"].inject("result", code=-5, procedure="mdio_read")
    values = orvane.read_all(phys, (1, 2))
    assert values.values.mask.tolist() == [False, True, False]
    assert values[0] == values[2] == phys[0][1, 2]
    with pytest.raises(orvane.BoardError) as raised:
        values[1]
    assert raised.value.board == "OV0002"
    assert list(values.failures) == [1]


def test_read_all_of_nothing_is_empty():
    assert list(orvane.read_all([], (1, 2))) == []


def test_events_come_to_the_callback(rack, board):
    events = queue.Queue()
    rack.on_event(events.put)
    phy = rack.open("OV0001:0").phy(3)
    phy[1, 2]
    board.do("forget-sessions")
    phy[1, 2]
    kinds = [events.get(timeout=10).kind for _ in range(3)]
    assert kinds == [orvane.EventKind.OPENED, orvane.EventKind.LOST, orvane.EventKind.REOPENED]


def test_events_become_log_records(rack, board, caplog):
    done = queue.Queue()

    class Told(logging.Handler):
        def emit(self, record):
            done.put(record)

    logger = logging.getLogger("orvane.test")
    logger.setLevel(logging.DEBUG)
    logger.addHandler(Told())
    rack.log_events(logger)
    rack.open("OV0001:0").phy(3).open()
    record = done.get(timeout=10)
    assert record.getMessage() == "OV0001:0 PHY 3: opened"
    assert record.levelno == logging.INFO or record.levelno == logging.DEBUG
    assert (record.event.board, record.event.port, record.event.phy) == ("OV0001", 0, 3)


def test_callback_cannot_close_its_rack(rack, board):
    told = queue.Queue()

    def close(event):
        try:
            rack.close()
        except RuntimeError as problem:
            told.put(str(problem))

    rack.on_event(close)
    rack.open("OV0001:0").phy(3).open()
    assert "callback" in told.get(timeout=10)


def test_counters_count_calls_and_bytes(rack):
    phy = rack.open("OV0001:0").phy(3)
    for _ in range(5):
        phy[1, 2]
    counters = rack.counters()["OV0001"]
    mdio = counters.programs["mdio"]
    assert (counters.opens, mdio.calls, mdio.succeeded, mdio.failed) == (1, 5, 5, 0)
    assert mdio.bytes_sent > 0 and mdio.bytes_received > 0
    assert mdio.latency.count == 5
    assert repr(mdio.latency).startswith("<orvane.Latency of 5 calls, half of them within ")
    assert 0 < mdio.latency.percentile(50) <= mdio.latency.percentile(100) < 5
    with pytest.raises(ValueError):
        mdio.latency.percentile(101)
