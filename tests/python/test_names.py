"""Registers and fields by the names of a map, snapshots."""
import json

import pytest

import orvane

WREN = {
    "format": "orvane-map-1", "name": "wren", "include": ["ieee8023"],
    "blocks": {"CHIP": {
        "at": "30.0xD000",
        "registers": {
            "CONTROL": {"at": 0, "reset": "0x2000", "fields": {
                "SPEED": {"bits": "6,13", "values": {"0": "10 Mb/s", "1": "100 Mb/s", "2": "1000 Mb/s"}}, "LED": 0}},
            "ERRORS": {"at": 1, "access": "clear-on-read"},
            "SCRATCH": {"at": 2}}}},
}


@pytest.fixture(scope="module")
def wren(tmp_path_factory):
    file = tmp_path_factory.mktemp("maps") / "wren.json"
    file.write_text(json.dumps(WREN))
    return file


@pytest.fixture
def mapped(phy, wren):
    phy.use(wren)
    phy[30, 0xD000] = 0x2000
    phy[30, 0xD002] = 0
    return phy


def test_field_is_read_and_written_by_its_name(mapped):
    mapped["CHIP.CONTROL.SPEED"] = "1000 Mb/s"
    mapped["CHIP.CONTROL.LED"] = 1
    assert mapped[30, 0xD000] == 0x0041
    assert mapped["CHIP.CONTROL.SPEED"] == 2


def test_attributes_name_registers_and_fields(mapped):
    mapped.CHIP.CONTROL.SPEED = "10 Mb/s"
    mapped.CHIP.SCRATCH = 0x1234
    assert int(mapped.CHIP.CONTROL.SPEED) == 0
    assert mapped.CHIP.CONTROL.SPEED.text() == "10 Mb/s"
    assert mapped[30, 0xD002] == mapped.CHIP.SCRATCH.read() == 0x1234
    assert repr(mapped.CHIP.SCRATCH) == "<OV0001:0 PHY 3 CHIP.SCRATCH at 30.0xD002>"


def test_naming_reads_nothing(mapped, board):
    before = board.received("mdio_read")
    assert hasattr(mapped.CHIP, "ERRORS")
    dir(mapped.CHIP), repr(mapped.CHIP.ERRORS)
    assert board.received("mdio_read") == before


def test_names_complete(mapped):
    assert {"CHIP", "AN", "read"} <= set(dir(mapped))
    assert {"CONTROL", "ERRORS", "SCRATCH"} <= set(dir(mapped.CHIP))
    assert {"SPEED", "LED"} <= set(dir(mapped.CHIP.CONTROL))


def test_standard_names_are_there_without_a_map(rack, board):
    phy = rack.open("OV0002:0").phy(4)
    assert phy.AN.STATUS.LINK.read() in (0, 1)
    assert phy.map.name == "ieee8023" or "802.3" in phy.map.name
    assert "AN.STATUS.LINK" in phy.map


def test_unknown_name_is_an_attribute_error_that_suggests(mapped):
    with pytest.raises(AttributeError, match="there is no CHIP.CONTROLL; is CHIP.CONTROL meant?"):
        mapped.CHIP.CONTROLL
    with pytest.raises(AttributeError):
        mapped.CHIP_CONTROL = 1
    with pytest.raises(ValueError):
        mapped["CHIP.NOTHING"]


def test_value_that_does_not_fit_is_refused_unsent(mapped, board):
    before = board.received("mdio_write")
    for value in (4, -1, "1 Tb/s"):
        with pytest.raises(ValueError):
            mapped.CHIP.CONTROL.SPEED = value
    assert board.received("mdio_write") == before


def test_snapshots_differ_in_the_fields_that_changed(mapped):
    before = mapped.snapshot("CHIP")
    mapped.CHIP.CONTROL.SPEED = "10 Mb/s"
    diff = before.diff(mapped.snapshot("CHIP"))
    assert [str(each) for each in diff] == ["CHIP.CONTROL.SPEED: 100 Mb/s -> 10 Mb/s"]
    assert before["CHIP.CONTROL"] == 0x2000
    assert before.left_out == ["CHIP.ERRORS"]
    assert "<td>CHIP.CONTROL</td><td>30.0xD000</td><td>0x2000</td>" in before._repr_html_()


def test_notebook_shows_the_registers_that_changed_and_marks_the_fields(mapped):
    before = mapped.snapshot("CHIP")
    mapped.CHIP.CONTROL.SPEED = "10 Mb/s"
    mapped.CHIP.SCRATCH = 7
    rows = before.diff(mapped.snapshot("CHIP"))._repr_html_().split("<tr>")[2:]
    assert rows == [
        "<td>CHIP.CONTROL</td><td>30.0xD000</td><td>0x2000, <mark>SPEED 100 Mb/s</mark>, LED 0</td>"
        "<td>0x0000, <mark>SPEED 10 Mb/s</mark>, LED 0</td></tr>",
        "<td>CHIP.SCRATCH</td><td>30.0xD002</td><td><mark>0x0000</mark></td><td><mark>0x0007</mark></td></tr></table>"]


def test_restore_brings_a_snapshot_back(mapped):
    before = mapped.snapshot("CHIP")
    mapped.CHIP.SCRATCH = 7
    assert mapped.restore(before) == (2, [])
    assert mapped[30, 0xD002] == 0


def test_value_is_explained_without_a_board(wren):
    known = orvane.Map.load(wren)
    explained = known.decode((30, 0xD000), 0x0041)
    assert explained == known.decode("CHIP.CONTROL", 0x0041)
    assert str(explained) == "CHIP.CONTROL (30.0xD000) = 0x0041\n    SPEED 1000 Mb/s\n    LED 1"
    assert explained.fields[0] == ("SPEED", 2, "1000 Mb/s")


def test_value_of_no_register_is_not_explained(wren):
    known = orvane.Map.load(wren)
    with pytest.raises(KeyError, match="wren has no register CHIP.CONTROLL; is CHIP.CONTROL meant?"):
        known.decode("CHIP.CONTROLL", 1)
    with pytest.raises(KeyError, match=r"wren has no register \(30, 9\)"):
        known.decode((30, 9), 1)
    with pytest.raises(ValueError):
        known.decode((30, 0xD000), 0x10000)


def test_file_that_is_no_map_is_told_with_its_problems(tmp_path):
    file = tmp_path / "bad.json"
    file.write_text('{"format": "orvane-map-1"}')
    with pytest.raises(orvane.MapError, match="bad.json"):
        orvane.Map.load(file)
