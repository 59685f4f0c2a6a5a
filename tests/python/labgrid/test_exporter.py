"""The exporter's parts: which boards it finds, what it says of them, and the lock."""
import json

import pytest

pytest.importorskip("labgrid.remote.exporter", reason="needs labgrid (Debian package python3-labgrid)")

from labgrid.remote.exporter import BrokenResourceError  # noqa: E402

import orvane  # noqa: E402
from orvane.labgrid import BoardManager  # noqa: E402
from orvane.labgrid.exporter import OrvanePortExport, configuration, main, parameters, place_commands  # noqa: E402
from orvane.labgrid.locks import Keys, Locks  # noqa: E402
from orvane.labgrid.scout import Scout, addresses_of  # noqa: E402


@pytest.mark.parametrize("text, addresses", [
    ("10.83.0.1", ["10.83.0.1"]), ("10.83.0.1-3", ["10.83.0.1", "10.83.0.2", "10.83.0.3"]),
    ("10.83.0.0/30", ["10.83.0.1", "10.83.0.2"]), ("OV*:0", None), ("7", None)])
def test_words_are_addresses_or_names(text, addresses):
    if text == "7":
        with pytest.raises(ValueError):
            addresses_of(text)
    else:
        assert addresses_of(text) == addresses


def test_network_with_too_many_addresses_is_refused():
    with pytest.raises(ValueError, match="65536 addresses are too many, 4096 at most"):
        addresses_of("10.83.0.0/16")


def test_search_finds_ports_whose_names_fit_with_their_tags(rack, board):
    found = Scout(rack, ["ov000[12]:0", "OV0003:1"], [], [3]).look()
    assert [(each.device, each.address, each.port, each.phy) for each in found] == [
        ("OV0001", "10.83.0.1", 0, 3), ("OV0002", "10.83.0.2", 0, 3), ("OV0003", "10.83.0.3", 1, 3)]
    assert found[0].tags() == {"board": "host", "serial": "ov0001", "port": "0", "phy": "3", "phy_id": "0a5c1e83"}


def test_boards_at_addresses_are_found_without_a_search(rack, lab):
    before = lab["OV0004"].received("discovery")
    assert [each.device for each in Scout(rack, [], ["10.83.0.1", "10.83.0.99"], [0]).look()] == ["OV0001"]
    assert lab["OV0004"].received("discovery") == before


def test_phy_that_somebody_holds_is_found_without_its_identifier_until_it_is_free(rack, board):
    scout = Scout(rack, [], ["10.83.0.1"], [3])
    with orvane.Rack() as other:
        holder = other.open("OV0001:0", exclusive=0x4711).phy(3)
        holder.open()
        assert scout.look()[0].identifier is None
    assert scout.look()[0].identifier == 0x0A5C1E83


def test_configuration_is_that_of_labgrids_own_exporter(rack, board):
    found = Scout(rack, [], ["10.83.0.1"], [3]).look()
    assert configuration(found, "lab1") == """\
OV0001:
  port0-phy3:
    cls: NetworkOrvanePort
    host: lab1
    device: OV0001
    address: 10.83.0.1
    port: 0
    phy: 3
"""


def test_places_are_made_by_these_commands(rack, board):
    assert place_commands(Scout(rack, [], ["10.83.0.1"], [3]).look(), "lab1") == """\
labgrid-client -p ov0001-0-3 create
labgrid-client -p ov0001-0-3 add-match lab1/OV0001/NetworkOrvanePort/port0-phy3
labgrid-client -p ov0001-0-3 set-tags board=host serial=ov0001 port=0 phy=3 phy_id=0a5c1e83
"""


def test_program_prints_the_configuration(capsys, board):
    assert main(["--write", "--hostname", "lab1", "--phy", "3", "10.83.0.1"]) == 0
    assert "host: lab1" in capsys.readouterr().out


def test_program_adds_tags_that_it_is_told(capsys, board):
    assert main(["--places", "-n", "lab1", "--tag", "board=wren", "--tag", "room=b12", "10.83.0.1"]) == 0
    assert "set-tags board=wren room=b12 serial=ov0001 port=0 phy=0 phy_id=" in capsys.readouterr().out


def test_program_refuses_a_tag_that_no_reservation_could_ask_for(capsys):
    with pytest.raises(SystemExit):
        main(["--places", "--tag", "Board=Wren", "10.83.0.1"])
    assert "Board=Wren: a tag is of lower-case letters" in capsys.readouterr().err


def test_program_refuses_too_many_addresses(capsys):
    with pytest.raises(SystemExit) as ended:
        main(["--write", "10.0.0.0/8"])
    assert ended.value.code == 2
    assert "16777216 addresses are too many" in capsys.readouterr().err


def test_key_is_kept_for_an_acquisition_and_new_for_the_next(tmp_path):
    file = tmp_path / "state" / "keys.json"
    keys = Keys(file)
    first = keys.key_for("OV0001:0/3", "wren")
    assert 1 <= first <= 0xFFFF
    assert keys.key_for("OV0001:0/3", "wren") == first == Keys(file).key_for("OV0001:0/3", "wren")
    keys.forget("OV0001:0/3")
    assert json.loads(file.read_text()) == {}
    assert len({Keys(tmp_path / str(turn)).key_for("OV0001:0/3", "wren") for turn in range(20)}) > 15


@pytest.fixture
def export(rack, board, tmp_path):
    """OV0001 as the exporter has it."""
    OrvanePortExport.locks = Locks(rack, Keys(tmp_path / "keys.json"))
    found, = Scout(rack, [], ["10.83.0.1"], [3]).look()
    export = OrvanePortExport({"avail": False, "cls": "OrvanePort", "params": parameters(found)}, host="lab1")
    BoardManager.get().watch.next_round()
    export.poll()
    assert export.avail
    yield export
    export.release()


def test_acquired_board_is_locked_with_the_key_that_is_told(export, board, rack):
    export.acquire("wren")
    told = export.asdict()
    assert told["acquired"] == "wren" and told["cls"] == "NetworkOrvanePort"
    assert told["params"]["extra"]["lock"] == "held for place wren"
    assert board.sessions == 1
    with orvane.Rack() as other, pytest.raises(orvane.Refused):
        other.open("OV0001:0").phy(3).open()
    with orvane.Rack() as other:
        other.open("OV0001:0", exclusive=told["params"]["key"]).phy(3).open()


def test_released_board_is_free_at_once(export, board):
    export.acquire("wren")
    export.release()
    assert board.sessions == 0
    assert export.params["key"] is None
    export.acquire("wren")
    assert board.sessions == 1


def test_board_that_somebody_holds_is_not_acquired(export, board):
    with orvane.Rack() as other:
        holder = other.open("OV0001:0", exclusive=0x4711).phy(3)
        holder.open()
        with pytest.raises(BrokenResourceError, match="wren cannot be locked: OV0001:0 PHY 3: open: refused") as raised:
            export.acquire("wren")
        assert raised.value.__cause__ is None and raised.value.__suppress_context__
        assert export.acquired is None and export.broken is None
        assert export.params["extra"]["lock"].startswith("refused since")
    export.acquire("wren")
    assert export.params["extra"]["lock"] == "held for place wren"


def test_board_that_is_not_there_is_acquired_and_locked_when_it_comes(export, board):
    board.do("kill")
    try:
        assert BoardManager.get().watch.next_round()
        export.poll()
        assert not export.avail
        export.acquire("wren")
        assert export.params["key"] is None
    finally:
        board.do("start")
    assert BoardManager.get().watch.next_round()
    export.poll()
    assert export.params["extra"]["lock"] == "held for place wren"
    assert board.sessions == 1
