"""Failures as exceptions: classes by kind, and what they know."""
import errno
import pickle
import threading

import pytest

import orvane
from orvane import FailureKind, Within


def test_board_error_knows_board_place_operation_and_code(phy, board):
    board.inject("result", code=-121, procedure="mdio_read")
    with pytest.raises(orvane.BoardError) as raised:
        phy[30, 0xC010]
    error = raised.value
    assert (error.kind, error.board, error.port, error.phy) == (FailureKind.BOARD_ERROR, "OV0001", 0, 3)
    assert (error.operation, error.location) == ("read", "30.0xC010")
    assert error.code is orvane.Code.EREMOTEIO
    assert (error.errno, error.code_name, error.attempts) == (errno.EREMOTEIO, "EREMOTEIO", 1)
    assert 0 < error.seconds < 5
    assert str(error).startswith("OV0001:0 PHY 3: read 30.0xC010: board error, EREMOTEIO (-121) after 1 attempt in ")


def test_cause_of_a_board_error_is_the_systems_error_of_its_code(phy, board):
    board.inject("result", code=-13, procedure="mdio_read")
    with pytest.raises(orvane.BoardError) as raised:
        phy[30, 0]
    cause = raised.value.__cause__
    assert type(cause) is PermissionError
    assert (cause.errno, str(cause)) == (errno.EACCES, "[Errno 13] Permission denied, says the board")


def test_failure_without_a_code_has_no_cause(phy, board):
    board.inject("lose-reply", count=-1, procedure="mdio_read")
    with pytest.raises(orvane.TimedOut) as raised:
        phy.read(1, 2, within=0.1)
    assert raised.value.__cause__ is None


def test_failure_that_is_raised_twice_tells_each_time_where(phy, board):
    batch = orvane.Batch()
    reading = batch.read((1, 2))
    board.inject("result", code=-5, procedure="mdio_read")
    result = phy.run(batch)
    depths = []
    for _ in range(2):
        with pytest.raises(orvane.BoardError) as raised:
            result[reading]
        depths.append(len(raised.traceback))
    assert depths[0] == depths[1]


def test_code_without_a_name_stays_a_number(phy, board):
    board.inject("result", code=-4000, procedure="mdio_read")
    with pytest.raises(orvane.BoardError) as raised:
        phy[30, 0]
    assert (raised.value.code, raised.value.code_name, raised.value.errno) == (-4000, "-4000", 4000)


def test_silent_board_is_a_timeout_error_within_the_limit(phy, board):
    board.inject("lose-reply", count=-1, procedure="mdio_read")
    with pytest.raises(TimeoutError) as raised:
        phy.read(1, 2, within=0.3)
    assert isinstance(raised.value, orvane.TimedOut)
    assert raised.value.errno is None
    assert 0.3 <= raised.value.seconds < 2


def test_lost_write_is_sent_once_when_the_caller_says_so(phy, board):
    before = board.received("mdio_write")
    board.inject("lose-reply", procedure="mdio_write")
    with pytest.raises(orvane.TimedOut):
        phy.write((30, 0), 1, within=Within.once(0.3))
    assert board.received("mdio_write") - before == 1


def test_unknown_board_is_a_lookup_error(rack):
    with pytest.raises(LookupError) as raised:
        rack.open("OV9999:0", within=0.2)
    assert isinstance(raised.value, orvane.NoSuchPort)
    assert (raised.value.board, raised.value.phy) == ("OV9999", None)


@pytest.mark.parametrize("name", ["", "OV0001", "OV0001:x", "OV0001:20"])
def test_name_of_no_port_is_a_value_error(rack, name):
    with pytest.raises(ValueError) as raised:
        rack.open(name)
    assert isinstance(raised.value, orvane.InvalidArgument)


def test_second_exclusive_session_is_refused(phy, rack):
    with orvane.Rack() as other:
        holder = other.open("OV0001:0", exclusive=0x1111).phy(5)
        holder.open()
        with pytest.raises(orvane.Refused):
            rack.open("OV0001:0", exclusive=0x2222).phy(5).open(within=0.3)


def test_session_that_may_not_heal_is_lost(phy, board):
    board.do("forget-sessions")
    with pytest.raises(orvane.LostSession):
        phy.read(1, 2, within=Within(heal=False))


def test_cancellation_ends_a_call_of_another_thread(phy, board):
    cancellation = orvane.Cancellation()
    board.inject("lose-reply", count=-1, procedure="mdio_read")
    raised = []

    def read():
        try:
            phy.read(1, 2, within=Within(30, cancellation=cancellation))
        except orvane.Cancelled as error:
            raised.append(error)

    thread = threading.Thread(target=read)
    thread.start()
    assert repr(cancellation) == "<orvane.Cancellation>"
    cancellation.cancel()
    assert repr(cancellation) == "<orvane.Cancellation, cancelled>"
    thread.join(10)
    assert [error.kind for error in raised] == [FailureKind.CANCELLED]
    assert raised[0].seconds < 5


def test_error_survives_pickling(phy, board):
    board.inject("result", code=-121, procedure="mdio_read")
    with pytest.raises(orvane.BoardError) as raised:
        phy[30, 0]
    again = pickle.loads(pickle.dumps(raised.value))
    assert type(again) is orvane.BoardError
    assert (str(again), again.code, again.board) == (str(raised.value), -121, "OV0001")


@pytest.mark.parametrize("arguments", [{"seconds": -1}, {"seconds": float("nan")}, {"reads": -1}, {"writes": -2}])
def test_limits_that_make_no_sense_are_value_errors(arguments):
    with pytest.raises(ValueError):
        Within(**arguments)


def test_every_kind_has_its_class():
    classes = {orvane.errors.make("", kind=kind, code=0).__class__ for kind in FailureKind}
    assert len(classes) == len(FailureKind)
    assert all(issubclass(each, orvane.Error) for each in classes)
