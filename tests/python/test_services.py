"""The board's services at work on its devices."""
import sys

import numpy
import pytest

import orvane
from orvane import Shift, Transfer


def test_i2c_reads_what_it_wrote(phy):
    phy.i2c.write(2, 0x50, bytes([0x40]) + b"Orv")
    assert phy.i2c.read(2, 0x50, 0x40, 3) == b"Orv"
    assert phy.i2c.read_register(2, 0x50, 0x41, 1, 2) == b"rv"


def test_i2c_blocks_reach_several_buses(phy):
    phy.i2c.write_block([Transfer(0, 0x50, 0x20, data=b"\1\2"), Transfer(1, 0x50, 0x30, data=b"\3\4\5")])
    assert phy.i2c.read_block([Transfer(0, 0x50, 0x20, length=2), Transfer(1, 0x50, 0x30, length=3)]) == b"\1\2\3\4\5"
    phy.i2c.write_block([Transfer(0, 0x50, 0x20, data=b"\xFF")], mask=0x0E)
    assert phy.i2c.read(0, 0x50, 0x20, 1) == b"\x0F"


@pytest.mark.parametrize("arguments", [(10, 0x50, 0, 1), (0, 0x80, 0, 1), (0, 0x50, 256, 1), (0, 0x50, 0, 256)])
def test_i2c_arguments_out_of_range_are_value_errors(phy, arguments):
    with pytest.raises(ValueError, match="out of range: [01] to"):
        phy.i2c.read(*arguments)


def test_absent_i2c_device_is_a_board_error(phy):
    with pytest.raises(orvane.BoardError) as raised:
        phy.i2c.read(0, 0x51, 0, 1)
    assert raised.value.code is orvane.Code.EREMOTEIO


def test_gpio_output_shows_what_was_written(phy):
    phy.gpio.enable_output([1], [1])
    phy.gpio[1] = 1
    assert phy.gpio[1] == 1
    assert phy.gpio.output_enables([1, 2]) == [1, 0]
    phy.gpio.reset()
    assert phy.gpio.output_enables([1]) == [0]


def test_jtag_shifts_are_as_long_as_their_tms(phy):
    shifted = phy.jtag.shift(Shift(tms="1111101100"), Shift("1" * 13, "0000000000001", "10100"))
    assert shifted == ["1111111111", "1000010000000"]
    assert phy.jtag.max_bytes() > 0


def test_capture_is_an_array_of_samples(phy, board):
    samples = phy.adc.capture(6)
    assert samples.dtype == numpy.uint8
    assert len(samples) == 6
    assert board.executions("adc_start") == board.executions("adc_stop") == 1


def test_capture_is_a_curve_in_a_notebook(phy):
    shown = phy.adc.capture(64)._repr_html_()
    assert shown.startswith("<div><svg ") and shown.endswith("</svg></div>")
    assert phy.adc.capture(64)._repr_html_() == shown


def test_capture_without_matplotlib_is_a_table_of_its_bounds(phy, monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib", None)
    samples = phy.adc.capture(64)
    assert (f"<td>64</td><td>{samples.min()}</td><td>{samples.mean()}</td><td>{samples.max()}</td>"
            in samples._repr_html_())


def test_target_temperature_is_reached(phy):
    phy.thermal[0].target = 85.0
    assert phy.thermal[0].target == 85.0
    assert phy.thermal[0].settled(within=60) == pytest.approx(85.0, abs=0.1)
    phy.thermal.disconnect()


def test_services_of_a_port_go_through_its_first_phy(rack, board):
    with rack.open("OV0001:0", exclusive=0x4711) as port:
        port.phy(3).open()
        assert port.shell.ping() >= 0
        port.i2c.write(0, 0x50, b"\0\1")
        assert board.sessions == 1


def test_board_tells_of_itself(phy):
    pings = (phy.shell.ping(), phy.shell.ping_session(), phy.shell.ping_keep_alive())
    assert all(0 < seconds < 5 for seconds in pings)
    assert phy.shell.address == "10.83.0.1"
    services = phy.shell.services()
    assert {"setup", "mdio", "i2c", "jtag", "gpio", "keepAlive", "adc", "thermal"} <= set(services)
    assert all(0 < port <= 0xFFFF for port in services.values())
    assert phy.shell.error_record(-5) == (0, 0)


def test_unknown_command_has_a_status(phy):
    assert phy.shell.run("nonsense").status != 0


def test_words_of_the_extension_follow_each_other(phy):
    phy[orvane.ext32(0x104)] = 0x44
    phy[orvane.ext32(0x100)] = 1
    assert phy.mdio.read_next() == 0x44
    phy.mdio.write_current(0x45)
    assert phy.mdio.read_current() == 0x45
