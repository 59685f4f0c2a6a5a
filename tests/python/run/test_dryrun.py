"""A dry run: every kind of access is told by name, none is made."""
import json

import pytest

import orvane
from orvane.run import dryrun

WREN = {"format": "orvane-map-1", "name": "wren", "blocks": {"CHIP": {"at": "30.0xD000", "registers": {
    "CONTROL": {"at": 0, "fields": {"SPEED": "6,13", "LED": 0}},
    "ERRORS": {"at": 1, "access": "clear-on-read"},
    "STATUS": {"at": 2, "access": "ro"}}}, "PAGED": {
    "at": "30.0xE001", "page": {"select": "PAGE", "value": 7}, "registers": {"WIDTH": {"at": 0}}}},
    "registers": {"PAGE": {"at": "30.0xE000"}}}


def batch(phy):
    work = orvane.Batch()
    work.write((30, 0xD000), 1)
    reading = work.read((30, 0xD002))
    result = phy.run(work)
    assert (result.complete, result[reading], result.outcome(0).value) == (True, 0, 1)


@pytest.fixture
def told(lab, tmp_path):
    """told(step) gives the lines of its dry run."""
    (tmp_path / "wren.json").write_text(json.dumps(WREN))
    before = [board.received("mdio_mixedblock") + board.received("open_connection") for board in lab.boards()]

    def lines(step):
        run = orvane.Run("dry", boards="OV0001:0", phy=3, map=tmp_path / "wren.json", level=[0])
        run.point(lambda p, level: step(p.phy))
        found = []
        dryrun.print_steps(run, found.append)
        return found[1:-1]

    yield lines
    assert before == [board.received("mdio_mixedblock") + board.received("open_connection") for board in lab.boards()]


@pytest.mark.parametrize("step, lines", [
    (lambda phy: phy[30, 0xD000], ["  read  30.0xD000         CHIP.CONTROL"]),
    (lambda phy: phy.write((30, 0xD000), 1), ["  write 30.0xD000 0x0001  CHIP.CONTROL: SPEED 0, LED 1"]),
    (lambda phy: phy.CHIP.CONTROL.LED.write(1), ["  write CHIP.CONTROL.LED = 1"]),
    (lambda phy: phy.modify((30, 0xD000), 1, 1), [
        "  read  30.0xD000         CHIP.CONTROL", "  write 30.0xD000 0x0001  CHIP.CONTROL: SPEED 0, LED 1"]),
    (lambda phy: phy.read(1, range(8)), ["  read  8 from 1.0x0000"]),
    (batch, ["  write 30.0xD000 0x0001  CHIP.CONTROL: SPEED 0, LED 1", "  read  30.0xD002         CHIP.STATUS"]),
    (lambda phy: phy.snapshot("CHIP"), ["  read  30.0xD000         CHIP.CONTROL",
                                        "  read  30.0xD002         CHIP.STATUS"]),
    (lambda phy: phy.restore(phy.snapshot("CHIP")), [
        "  read  30.0xD000         CHIP.CONTROL", "  read  30.0xD002         CHIP.STATUS",
        "  write 30.0xD000 0x0000  CHIP.CONTROL: SPEED 0, LED 0"]),
    (lambda phy: phy.together(lambda: phy.write((1, 0), 2)), ["  write 1.0x0000 0x0002"]),
])
def test_access_is_told_by_name_and_not_made(told, step, lines):
    assert told(step) == lines


def test_routed_access_is_told_step_by_step(told):
    assert told(lambda phy: phy.routed(over_clause22=True).read(30, 0xD000)) == [
        "  write c22.13 0x001E", "  write c22.14 0xD000", "  write c22.13 0x401E", "  read  c22.14"]


def test_snapshot_on_a_page_ends_with_the_page_as_it_was(told):
    assert told(lambda phy: phy.snapshot("PAGED.WIDTH")) == [
        "  write 30.0xE000 0x0007  PAGE", "  read  30.0xE001         PAGED.WIDTH", "  and the pages as they were"]
