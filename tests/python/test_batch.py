"""Batches: any length, any mix, an outcome for each operation."""
import pytest
from hypothesis import given, settings, strategies

import orvane
from orvane import Batch, OperationState


def test_reading_gives_what_was_written_before_it(phy):
    batch = Batch()
    batch.write((30, 0x10), 0x1234)
    one = batch.read((30, 0x10))
    result = phy.run(batch)
    assert result[one] == 0x1234
    assert result.complete and result.failure is None
    assert repr(result) == "<orvane.BatchResult: 2 of 2 operations done>"


def test_refused_operation_has_the_boards_code_and_no_value(phy, board):
    batch = Batch()
    one = batch.read((30, 0x10))
    board.inject("result", code=-121, procedure="mdio_read")
    result = phy.run(batch)
    outcome = result.outcome(0)
    assert (outcome.state, outcome.value, outcome.code) == (OperationState.REFUSED, None, -121)
    assert isinstance(result.failure, orvane.BoardError)
    with pytest.raises(orvane.BoardError):
        result[one]


def test_what_was_not_sent_is_told_from_what_was_done(phy, board):
    batch = Batch()
    first = batch.read_all((30, number) for number in range(873))
    second = batch.read_all((30, number) for number in range(873))
    board.inject("lose-reply", count=-1, procedure="mdio_read")
    result = phy.run(batch, within=orvane.Within(0.3))
    assert set(result.states) <= {OperationState.UNKNOWN, OperationState.NOT_SENT}
    assert isinstance(result.failure, orvane.TimedOut)
    for readings in (first, second):
        with pytest.raises(TimeoutError):
            result[readings]


def test_reading_of_another_batch_is_an_index_error(phy):
    other, batch = Batch(), Batch()
    other.read((1, 2))
    reading = other.read((1, 2))
    batch.read((1, 2))
    with pytest.raises(IndexError):
        phy.run(batch)[reading]


def test_value_out_of_range_is_not_taken():
    batch = Batch()
    with pytest.raises(ValueError, match="0 to 0xffff"):
        batch.write((1, 2), 0x10000)
    assert len(batch) == 0


OPERATIONS = strategies.lists(
    strategies.tuples(strategies.integers(0, 7), strategies.one_of(strategies.none(), strategies.integers(0, 0xFFFF))),
    max_size=200)


class TestMix:
    @pytest.fixture(scope="class")
    def scratch(self):
        with orvane.Rack() as rack:
            yield rack.open("OV0003:0").phy(3)

    @settings(max_examples=40)
    @given(operations=OPERATIONS)
    def test_operations_happen_in_their_order(self, scratch, operations):
        registers = [0] * 8
        scratch[3, 0x9000:0x9008] = registers
        batch, expected = Batch(), []
        for number, value in operations:
            if value is None:
                expected.append((batch.read((3, 0x9000 + number)), registers[number]))
            else:
                registers[number] = value
                batch.write((3, 0x9000 + number), value)
        result = scratch.run(batch)
        assert [result[reading] for reading, _ in expected] == [value for _, value in expected]
        assert scratch[3, 0x9000:0x9008].tolist() == registers
