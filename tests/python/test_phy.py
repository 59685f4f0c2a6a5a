"""Registers of a PHY, one and many."""
import sys
import threading
import time

import numpy
import pytest
from hypothesis import given, strategies

import orvane
from orvane import clause22, clause45, ext32


def test_register_that_was_written_reads_back(phy):
    phy[30, 0xC010] = 0xCAFE
    assert phy[30, 0xC010] == 0xCAFE
    assert phy.read(30, 0xC010) == phy.read((30, 0xC010)) == phy.read(clause45(30, 0xC010)) == 0xCAFE


def test_write_sets_the_register_on_the_board(phy, board):
    phy[30, 0x20] = 0x1234
    assert board.value((30, 0x20), phy=3) == 0x1234


def test_registers_of_the_other_spaces_are_apart(phy):
    phy[clause22(4)] = 0x4444
    phy[ext32(0x80004000)] = 0x89ABCDEF
    assert (phy[clause22(4)], phy[ext32(0x80004000)]) == (0x4444, 0x89ABCDEF)


def test_modify_replaces_the_bits_of_the_mask_and_returns_what_was_written(phy):
    phy[30, 1] = 0xFF00
    assert phy.modify((30, 1), 0x0FF0, 0x0120) == 0xF120
    assert phy[30, 1] == 0xF120


def test_range_is_read_as_an_array_of_words(phy):
    for number in range(4):
        phy[30, 0x100 + number] = number + 1
    values = phy.read(30, range(0x100, 0x104))
    assert values.dtype == numpy.uint16
    assert values.tolist() == [1, 2, 3, 4]


def test_range_with_a_step_reads_those_registers_only(phy):
    phy[30, 0x100:0x106] = [10, 11, 12, 13, 14, 15]
    assert phy.read(30, range(0x105, 0xFF, -2)).tolist() == [15, 13, 11]
    assert phy[30, 0x100:0x106:3].tolist() == [10, 13]


def test_empty_range_reads_nothing(phy, board):
    before = board.received("mdio_read")
    assert phy.read(30, range(0)).tolist() == []
    assert board.received("mdio_read") == before


def test_long_range_is_cut_into_blocks(phy, board):
    before = board.received("mdio_read")
    assert len(phy.read(30, range(4096))) == 4096
    assert board.received("mdio_read") - before == 5  # of 873 at most


def test_list_of_mixed_registers_is_read_in_its_order(phy):
    phy[30, 7] = 0x77
    phy[ext32(8)] = 0x12345678
    values = phy.read([(30, 7), ext32(8)])
    assert values.dtype == numpy.uint32
    assert values.tolist() == [0x77, 0x12345678]


def test_row_without_an_end_is_refused(phy):
    with pytest.raises(ValueError, match="needs an end"):
        phy[30, 5:]


def test_row_takes_as_many_values_as_it_has_registers(phy):
    with pytest.raises(ValueError, match="3 values for 2 registers"):
        phy[30, 0:2] = [1, 2, 3]


@pytest.mark.parametrize("key", [5, (1, 2, 3), (1.5, 2), None])
def test_what_is_no_register_is_a_type_error(phy, key):
    with pytest.raises(TypeError):
        phy[key]


@given(mmd=strategies.integers(), number=strategies.integers())
def test_registers_out_of_range_are_value_errors_with_the_limits(mmd, number):
    if 0 <= mmd <= 31 and 0 <= number <= 0xFFFF:
        assert clause45(mmd, number) == (orvane.Space.C45, mmd, number)
    else:
        with pytest.raises(ValueError, match="0 to (31|0xFFFF)$"):
            clause45(mmd, number)


@given(number=strategies.integers())
def test_registers_of_clause_22_are_0_to_31(number):
    if 0 <= number <= 31:
        assert clause22(number).number == number
    else:
        with pytest.raises(ValueError, match="0 to 31$"):
            clause22(number)


class TestSentNothing:
    """Values out of range never reach the board."""

    @pytest.fixture(scope="class")
    def open_phy(self, lab):
        with orvane.Rack() as rack:
            phy = rack.open("OV0002:0").phy(3)
            phy.open()
            yield phy

    @given(value=strategies.integers().filter(lambda value: not 0 <= value <= 0xFFFF))
    def test_word_out_of_range_is_a_value_error(self, lab, open_phy, value):
        before = lab["OV0002"].received("mdio_write")
        with pytest.raises(ValueError, match="0 to 0xffff$"):
            open_phy[30, 0] = value
        assert lab["OV0002"].received("mdio_write") == before

    @given(value=strategies.integers(0, 0xFFFFFFFF), address=strategies.integers(0, 0x3FFFFFFF).map(lambda n: n * 4))
    def test_every_word_of_the_extension_holds_every_value(self, open_phy, address, value):
        open_phy[ext32(address)] = value
        assert open_phy[ext32(address)] == value


def test_phys_out_of_range_are_value_errors_with_the_limits(rack, port):
    with pytest.raises(ValueError, match="PHY 32 is out of range: 0 to 31"):
        port.phy(32)
    with pytest.raises(ValueError, match="PHY 128 is out of range: 0 to 127"):
        rack.open("OV0001:10").phy(128)


def test_numpy_numbers_are_registers_and_values(phy):
    phy[numpy.uint8(30), numpy.int64(2)] = numpy.uint16(0xABCD)
    assert phy[30, 2] == 0xABCD


def test_same_phy_is_the_same_object(port):
    assert port.phy(3) is port.phy(3)


class Recorder:
    """Stands before something of the compiled module, and notes what is called."""

    def __init__(self, core):
        self._core = core
        self.called = []

    def __getattr__(self, name):
        self.called.append(name)
        return getattr(self._core, name)


@pytest.mark.parametrize("use, called", [
    (lambda phy: phy[1, 2], "read"), (lambda phy: phy.read((1, 2)), "read"),
    (lambda phy: phy.read(1, range(4096)), "read_row"), (lambda phy: phy[1, 0:4096], "read_row"),
    (lambda phy: phy.read([(1, 2), clause22(3)] * 2000), "run"),
    (lambda phy: phy.__setitem__((30, slice(0, 1000)), [0] * 1000), "run")])
def test_access_of_any_length_is_one_call_of_the_module(phy, use, called):
    phy._core = recorder = Recorder(phy._core)
    use(phy)
    assert recorder.called == [called]


def test_read_of_many_boards_is_one_call_of_the_module(rack, monkeypatch):
    phys = [port.phy(3) for port in rack.open_all("OV*:0")]
    recorder = Recorder(orvane._orvane)
    monkeypatch.setattr(sys.modules["orvane.rack"], "_orvane", recorder)
    assert len(list(orvane.read_all(phys, (1, 2)))) == 8
    assert recorder.called == ["read_all"]


def test_eight_threads_wait_for_their_boards_at_the_same_time(rack, lab):
    phys = [port.phy(3) for port in rack.open_all("OV*:0", phys=[3])]
    for each in lab.boards():
        each.inject("delay", milliseconds=500, count=-1, procedure="mdio_read")
    threads = [threading.Thread(target=phy.read, args=(1, 2)) for phy in phys]
    begun = time.monotonic()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for each in lab.boards():
        each.clear()
    assert len(threads) == 8
    assert 0.5 <= time.monotonic() - begun < 2  # one after the other: 4 s


def test_names_say_where(port):
    assert repr(port.phy(3)) == "<orvane.Phy OV0001:0 PHY 3>"
    assert repr(port) == "<orvane.Port OV0001:0, simple>"
    assert repr(clause45(30, 0xC010)) == "clause45(30, 0xC010)"
    assert [str(each) for each in (clause45(1, 2), clause22(2), ext32(4))] == ["1.0x0002", "c22.2", "ext32.0x00000004"]


def test_routed_register_reads_back(phy):
    routed = phy.routed()
    routed[27, 0x40] = 0x1234
    assert routed[27, 0x40] == 0x1234
    assert routed.modify((27, 0x40), 0xFF, 0x56) == 0x1256


def test_routed_failure_names_its_path(phy, board):
    board.inject("result", code=-5, count=-1, program="mdio")
    with pytest.raises(orvane.BoardError) as raised:
        phy.routed().read(27, 0x40, within=1)
    assert raised.value.operation == "read by firmware"


def test_hook_runs_before_the_call_that_noticed_the_loss_goes_on(phy, board):
    phy.on_reopen(lambda: phy.write((30, 9), 0x99))
    board.do("forget-sessions")
    board.set_value((30, 9), 0, phy=3)
    assert phy[30, 9] == 0x99


def test_what_a_hook_raises_leaves_the_call(phy, board):
    def hook():
        raise KeyError("restore")

    phy.on_reopen(hook)
    board.do("forget-sessions")
    with pytest.raises(KeyError, match="restore"):
        phy[1, 2]
