"""A port on another host, by the program that a driver runs there; here without ssh in between."""
import io
import pickle
import struct
import sys

import pytest

pytest.importorskip("labgrid.driver", reason="needs labgrid (Debian package python3-labgrid)")

import orvane  # noqa: E402
from orvane.labgrid.remote import HostConnection, HostError  # noqa: E402
from orvane.labgrid.wire import receive  # noqa: E402


@pytest.fixture
def connection():
    """A connection to the program."""
    connection = HostConnection([sys.executable, "-m", "orvane.labgrid.agent"], "lab1")
    yield connection
    connection.close()


@pytest.fixture
def port(connection, board):
    """Port 0 of OV0001, there."""
    return connection.opener.open("OV0001", "10.83.0.1", 0, 0x4711, 5.0)


@pytest.fixture
def phy(port):
    """Its PHY 3, there."""
    phy = port.phy(3)
    phy.open()
    return phy


def test_registers_are_read_and_written_there(phy, board):
    phy[30, 0xC010] = 0xCAFE
    assert phy[30, 0xC010] == 0xCAFE == board.value((30, 0xC010), phy=3)
    assert list(phy.read(1, range(2, 4))) == [0x0A5C, 0x1E83]
    assert list(phy[1, 2:4]) == [0x0A5C, 0x1E83]
    phy.write(orvane.clause22(4), 0x1234, within=orvane.Within.once(2.0))
    assert phy.modify(orvane.clause22(4), 0x00FF, 0x0056) == 0x1256
    assert (phy.id, phy.is_open, phy.key) == (3, True, 0x4711)
    assert repr(phy) == "<orvane.Phy OV0001:0 PHY 3> on lab1"


def test_session_is_exclusive_and_ends_with_the_connection(connection, phy, board, rack):
    with pytest.raises(orvane.Refused):
        rack.open("OV0001:0").phy(3).open()
    assert board.sessions == 1
    connection.close()
    assert board.sessions == 0
    with pytest.raises(HostError, match="the connection to lab1 has ended"):
        phy[1, 2]


def test_services_and_names_are_used_there(port, phy):
    port.i2c.write(0, 0x50, b"\x10hello")
    assert port.i2c.read(0, 0x50, 0x10, 5) == b"hello"
    assert port.adc.capture(4).dtype == "uint8"
    port.thermal[0].target = 30.0
    assert port.thermal[0].target == 30.0
    phy.PMA.CONTROL1.LOOPBACK = 1
    assert int(phy.PMA.CONTROL1.LOOPBACK) == 1 == phy["PMA.CONTROL1.LOOPBACK"]
    before = phy.snapshot("PMA.CONTROL*")
    phy["PMA.CONTROL1.LOOPBACK"] = 0
    assert "PMA.CONTROL1.LOOPBACK: 1 -> 0" in str(before.diff(phy.snapshot("PMA.CONTROL*")))
    assert phy.shell.run("uname").errors == b"uname: command not found\n"


def test_batch_is_carried_out_there(phy):
    batch = orvane.Batch()
    batch.write((30, 0x10), 0x1234)
    one = batch.read((30, 0x10))
    many = batch.read_all((1, number) for number in range(2, 4))
    result = phy.run(batch)
    assert result.complete
    assert result[one] == 0x1234
    assert list(result[many]) == [0x0A5C, 0x1E83]


def test_failures_are_raised_here(phy):
    with pytest.raises(ValueError, match="MMD 40 is out of range"):
        phy[40, 0]
    with pytest.raises(orvane.BoardError) as raised:
        phy.i2c.read(0, 0x51, 0, 1)
    assert (raised.value.board, raised.value.errno) == ("OV0001", 121)
    with pytest.raises(AttributeError):
        phy.read.nothing
    assert phy[1, 2] == 0x0A5C


def test_what_cannot_travel_is_a_type_error_and_the_connection_goes_on(phy):
    with pytest.raises(TypeError, match="cannot be sent to lab1"):
        phy.together(lambda: None)
    with pytest.raises(TypeError, match="cannot be sent to lab1"):
        phy.read(1, 2, within=orvane.Within(cancellation=orvane.Cancellation()))
    assert phy[1, 2] == 0x0A5C


def test_program_that_does_not_start_is_told(board):
    connection = HostConnection(["false"], "lab1")
    with pytest.raises(HostError, match="log in by ssh without a password"):
        connection.opener.open("OV0001", "10.83.0.1", 0, 0, 5.0)


@pytest.mark.parametrize("message", [
    b"cposix\nsystem\n(S'true'\ntR.", b"corvane.lab\nrun\n(tR.", b"cbuiltins\neval\n(S'1'\ntR.",
    b"\x80\x04\x8c\x0dorvane.errors\x8c\x10subprocess.Popen\x93]\x8c\x04true\x94a\x85R."])
def test_message_that_would_run_something_is_refused(message):
    with pytest.raises(pickle.UnpicklingError, match="is not taken from another host"):
        receive(io.BytesIO(struct.pack("!I", len(message)) + message), int)


def test_driver_uses_the_exporters_host(environment, board, monkeypatch):
    from labgrid.resource.common import NetworkResource

    target = environment("""
        targets:
          main:
            resources:
              NetworkOrvanePort: {host: lab1, device: OV0001, address: 10.83.0.1, phy: 3, key: 0x4711}
            drivers:
              OrvaneDriver: {python: %s}
    """ % sys.executable).get_target()
    resource = target.get_resource("NetworkOrvanePort", wait_avail=False)
    resource.extra = {"proxy": "lab1", "proxy_required": True}
    monkeypatch.setattr(NetworkResource, "command_prefix", ["env"])
    resource.poll = lambda: setattr(resource, "avail", True)
    driver = target.get_driver("OrvaneDriver")
    assert driver.read(1, 2) == 0x0A5C
    driver.write((30, 0xC010), 0xBEEF)
    assert board.value((30, 0xC010), phy=3) == 0xBEEF
    assert driver.phy.key == 0x4711
    target.deactivate(driver)
    assert board.sessions == 0
